#pragma once

// The fields of CPlayerDataModel in the order of the class, its properties and its stream format; see DataModel.h.
// clang-format off
#define PLAYER_DATA_TABLE(ROW) \
    ROW(QString, str, Nickname, QString, QString()) \
    ROW(bool, b, Buddy, bool, false) \
    ROW(QString, str, InfoText, QString, QString()) \
    ROW(unsigned char, uc, Sex, quint8, 0) \
    ROW(unsigned int, ul, VipLevel, quint32, 0) \
    ROW(unsigned short, us, CartoonAvatar, quint16, 0) \
    ROW(unsigned int, ul, CustomAvatar, quint32, 0) \
    ROW(unsigned char, uc, Rating, quint8, 0) \
    ROW(QString, str, Notes, QString, QString()) \
    ROW(bool, b, Online, bool, false) \
    ROW(bool, b, BuddyBlocked, bool, false) \
    ROW(bool, b, ChatBlock, bool, false) \
    ROW(unsigned int, ul, TagID, quint32, 0)
// clang-format on
