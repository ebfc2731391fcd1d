#include "MoneySpinnerDataModel.h"

#include <DataModel_p.h>

CMoneySpinnerDataModel::CMoneySpinnerDataModel(QObject *parent)
    : QObject(parent)
{
    CMoneySpinnerDataModel::Reset();
}

CMoneySpinnerDataModel::~CMoneySpinnerDataModel() = default;

DATA_MODEL_DEFINE(CMoneySpinnerDataModel, MONEY_SPINNER_DATA_TABLE, 33);
