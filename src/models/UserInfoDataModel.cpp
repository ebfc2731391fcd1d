#include "UserInfoDataModel.h"

#include <DataModel_p.h>

CUserInfoDataModel::CUserInfoDataModel(QObject *parent)
    : QObject(parent)
{
    // The types that the properties and signals name.
    qRegisterMetaType<CPlayerModel *>();
    qRegisterMetaType<GlobalDefines::MoneyType>();
    qRegisterMetaType<GlobalDefines::MoneyValue>("GlobalDefines::MoneyValue");
    CUserInfoDataModel::Reset();
}

CUserInfoDataModel::~CUserInfoDataModel() = default;

DATA_MODEL_DEFINE(CUserInfoDataModel, USER_INFO_DATA_TABLE, 42);
