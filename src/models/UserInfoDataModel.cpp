#include "UserInfoDataModel.h"

#include <DataModel_p.h>

CUserInfoDataModel::CUserInfoDataModel(QObject *parent)
    : QObject(parent)
{
    // The types that properties and signals use.
    qRegisterMetaType<CPlayerModel *>();
    qRegisterMetaType<GlobalDefines::MoneyType>();
    qRegisterMetaType<GlobalDefines::MoneyValue>("GlobalDefines::MoneyValue");
    CUserInfoDataModel::Reset();
}

CUserInfoDataModel::~CUserInfoDataModel() = default;

DATA_MODEL_DEFINE(CUserInfoDataModel, USER_INFO_DATA_TABLE, 42);
