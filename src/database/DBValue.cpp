#include "DBValue.h"

#include <files/FileHelpers.h>

bool DBValue::ToBool(bool &out, const QVariant &value, DBConfigType)
{
    out = Globals::ToBool(value.toString(), true);
    return true;
}

bool DBValue::ToInt(int &out, const QVariant &value, DBConfigType)
{
    bool ok = false;
    out = value.toInt(&ok);
    return ok;
}

bool DBValue::ToDouble(double &out, const QVariant &value, DBConfigType)
{
    bool ok = false;
    out = value.toDouble(&ok);
    return ok;
}

bool DBValue::ToString(QString &out, const QVariant &value, DBConfigType)
{
    out = value.toString();
    return true;
}

DBValue::DBConfigType DBValue::ToType(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::Bool:
        return DBT_Bool;
    case QMetaType::Int:
        return DBT_Int;
    case QMetaType::Double:
        return DBT_Double;
    default:
        return DBT_String;
    }
}

DBValue::DBConfigType DBValue::ToTypeFromDB(const QVariant &value)
{
    bool ok = false;
    const int number = value.toInt(&ok);
    return ok && number >= DBT_Bool && number <= DBT_String ? static_cast<DBConfigType>(number) : DBT_String;
}

QString DBValue::ToTypeString(DBConfigType type)
{
    switch (type) {
    case DBT_Bool:
        return QStringLiteral("bool");
    case DBT_Int:
        return QStringLiteral("int");
    case DBT_Double:
        return QStringLiteral("double");
    case DBT_String:
        return QStringLiteral("string");
    }
    return QString();
}
