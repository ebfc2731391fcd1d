#pragma once

// The fields of CUserInfoDataModel in the order of the class, its properties and its stream format; see DataModel.h.
// clang-format off
#define USER_INFO_DATA_TABLE(ROW) \
    ROW(QString, str, Username, QString, QString()) \
    ROW(QString, str, PasswordHashed, QString, QString()) \
    ROW(GlobalDefines::MoneyType, mt, AccountCurrency, GlobalDefines::MoneyType, GlobalDefines::MONEYTYPE_UNKNOWN) \
    ROW(GlobalDefines::MoneyValue, mv, RealMoney, GlobalDefines::MoneyValue, 0) \
    ROW(GlobalDefines::MoneyValue, mv, PlayMoney, GlobalDefines::MoneyValue, 0) \
    ROW(GlobalDefines::MoneyValue, mv, PointsRM, GlobalDefines::MoneyValue, 0) \
    ROW(GlobalDefines::MoneyValue, mv, PointsPM, GlobalDefines::MoneyValue, 0) \
    ROW(bool, b, CashierInfoUpdate, bool, false) \
    ROW(bool, b, HiddenFromBuddyList, bool, false) \
    ROW(unsigned char, uc, PlayerRating, quint8, 0) \
    ROW(bool, b, ChatBlocked, bool, false) \
    ROW(unsigned char, uc, PlayerStatus, quint8, 0) \
    ROW(unsigned int, ul, LoginTime, quint32, 0) \
    ROW(GlobalDefines::MoneyValue, mv, LoginBalance, GlobalDefines::MoneyValue, 0) \
    ROW(unsigned int, ul, LastReportTime, quint32, 0) \
    ROW(GlobalDefines::MoneyValue, mv, LastReportBalance, GlobalDefines::MoneyValue, 0) \
    ROW(CPlayerModel *, p, PlayerModel, CPlayerModel *, nullptr) \
    ROW(bool, b, LoginState, bool, false)
// clang-format on
