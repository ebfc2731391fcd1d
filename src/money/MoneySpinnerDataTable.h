#pragma once

// The fields of CMoneySpinnerDataModel in the order of the class, its properties and its stream format; see
// DataModel.h.
// clang-format off
#define MONEY_SPINNER_DATA_TABLE(ROW) \
    ROW(QString, str, C2, QString, QString()) \
    ROW(QString, str, C1, QString, QString()) \
    ROW(QString, str, DS, QString, QString()) \
    ROW(QString, str, D1, QString, QString()) \
    ROW(QString, str, D2, QString, QString()) \
    ROW(QString, str, D3, QString, QString()) \
    ROW(QString, str, TS, QString, QString()) \
    ROW(QString, str, D4, QString, QString()) \
    ROW(QString, str, D5, QString, QString()) \
    ROW(QString, str, D6, QString, QString()) \
    ROW(QString, str, D7, QString, QString()) \
    ROW(QString, str, Currency, QString, QString()) \
    ROW(bool, b, ShowComma, bool, false)
// clang-format on
