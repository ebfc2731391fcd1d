#pragma once

#include <Export.h>

#include <QString>
#include <QVariant>

/// Converts database values to types. The functions have no state and may be called from any thread.
namespace DBValue {

/// The types of values, with the numbers that databases contain.
enum DBConfigType : qint32 {
    DBT_Bool = 0,
    DBT_Int = 1,
    DBT_Double = 2,
    DBT_String = 3,
};

/// Converts \a value and returns whether that succeeded. \a type is ignored. ToBool() converts everything to true
/// except "false", "off", "no" and "0", in any case.
/// @{
PLUGININTERFACE_EXPORT bool ToBool(bool &out, const QVariant &value, DBConfigType type);
PLUGININTERFACE_EXPORT bool ToInt(int &out, const QVariant &value, DBConfigType type);
PLUGININTERFACE_EXPORT bool ToDouble(double &out, const QVariant &value, DBConfigType type);
PLUGININTERFACE_EXPORT bool ToString(QString &out, const QVariant &value, DBConfigType type);
/// @}

/// Returns the type of \a value: DBT_String unless it is a bool, an int or a double.
PLUGININTERFACE_EXPORT DBConfigType ToType(const QVariant &value);
/// Returns the type for a stored number, or DBT_String if the number is unknown.
PLUGININTERFACE_EXPORT DBConfigType ToTypeFromDB(const QVariant &value);
/// Returns "bool", "int", "double" or "string", or an empty string for any other number.
PLUGININTERFACE_EXPORT QString ToTypeString(DBConfigType type);

} // namespace DBValue
