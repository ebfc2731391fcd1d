#include "UserInfoDataModel.h"

namespace {

constexpr int LABEL_WIDTH = 42;

} // namespace

CUserInfoDataModel::CUserInfoDataModel(QObject *parent)
    : QObject(parent)
{
    // The types that the properties and signals name.
    qRegisterMetaType<CPlayerModel *>();
    qRegisterMetaType<GlobalDefines::MoneyType>();
    qRegisterMetaType<GlobalDefines::MoneyValue>("GlobalDefines::MoneyValue");
    CUserInfoDataModel::Reset();
}

DATA_MODEL_DEFINE(CUserInfoDataModel, USER_INFO_DATA_TABLE, LABEL_WIDTH);
