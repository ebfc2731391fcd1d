#pragma once

#include <Export.h>

#include <QString>
#include <QVariant>

/// Typed conversions of database values. No state, any thread.
namespace DBValue {

/// The kinds of values, with the numbers that databases hold.
enum DBConfigType : qint32 {
    DBT_Bool = 0,
    DBT_Int = 1,
    DBT_Double = 2,
    DBT_String = 3,
};

/// Converts \a value and answers whether that worked; \a type has no effect. For ToBool() everything but
/// "false", "off", "no" and "0", in any case, is true.
/// @{
PLUGININTERFACE_EXPORT bool ToBool(bool &out, const QVariant &value, DBConfigType type);
PLUGININTERFACE_EXPORT bool ToInt(int &out, const QVariant &value, DBConfigType type);
PLUGININTERFACE_EXPORT bool ToDouble(double &out, const QVariant &value, DBConfigType type);
PLUGININTERFACE_EXPORT bool ToString(QString &out, const QVariant &value, DBConfigType type);
/// @}

/// The kind of a variant; all but bool, int and double are strings.
PLUGININTERFACE_EXPORT DBConfigType ToType(const QVariant &value);
/// The kind that a stored number names; DBT_String if it names none.
PLUGININTERFACE_EXPORT DBConfigType ToTypeFromDB(const QVariant &value);
/// "bool", "int", "double" or "string"; empty for any other number.
PLUGININTERFACE_EXPORT QString ToTypeString(DBConfigType type);

} // namespace DBValue
