#pragma once

#include <DataModel.h>

#include <QDataStream>
#include <QDebug>

#include <cstddef>

// Expands the table of a data model in its source file.

namespace DataModel {

template <typename Type>
void Write(QDataStream &stream, const Type &field)
{
    if constexpr (std::is_enum_v<Type>)
        stream << static_cast<qint32>(field);
    else
        stream << field;
}

template <typename Object>
void Write(QDataStream &, const QPointer<Object> &)
{
}

// If the stream doesn't hold a field completely, the field gets its default rather than a value made from the first
// bytes. std::decay_t lets the field alone determine the type.
template <typename Type>
void Read(QDataStream &stream, Type &field, const std::decay_t<Type> &defaultValue)
{
    stream >> field;
    if (stream.status() != QDataStream::Ok)
        field = defaultValue;
}

template <typename Object>
void Read(QDataStream &, QPointer<Object> &, std::nullptr_t)
{
}

// Prints an enumeration or a single byte as a number; a byte would be a character.
template <typename Type>
void Print(QDebug &debug, const Type &field)
{
    if constexpr (std::is_enum_v<Type> || std::is_same_v<Type, unsigned char>)
        debug << static_cast<int>(field);
    else
        debug << field;
}

template <typename Object>
void Print(QDebug &debug, const QPointer<Object> &field)
{
    if (field)
        debug << *field;
    else
        debug << "none";
}

template <typename Member>
void PrintLine(QDebug &debug, int line, const char *label, int labelWidth, const Member &field)
{
    if (line > 0)
        debug << Qt::endl;
    debug << QByteArray(label).leftJustified(labelWidth).append(':').constData();
    Print(debug, field);
}

} // namespace DataModel

// Statements for one row in the functions of DATA_MODEL_DEFINE, whose variables they use.
#define DATA_MODEL_RESET(Type, prefix, Name, SignalType, defaultValue) Set##Name(defaultValue);
#define DATA_MODEL_WRITE(Type, prefix, Name, SignalType, defaultValue) \
    DataModel::Write(stream, model.m_##prefix##Name);
#define DATA_MODEL_READ(Type, prefix, Name, SignalType, defaultValue) \
    DataModel::Read(stream, model.m_##prefix##Name, defaultValue);
#define DATA_MODEL_PRINT(Type, prefix, Name, SignalType, defaultValue) \
    DataModel::PrintLine(debug, line++, "m_" #prefix #Name, labelWidth, model.m_##prefix##Name);

// Defines, in the source file of the class, its declared Reset() and LoadedFromStream(), and the stream operators.
// labelColumns is the width of a label before its colon.
#define DATA_MODEL_DEFINE(Class, TABLE, labelColumns)                \
    void Class::Reset()                                              \
    {                                                                \
        TABLE(DATA_MODEL_RESET)                                      \
    }                                                                \
    void Class::LoadedFromStream() {}                                \
    QDataStream &operator<<(QDataStream &stream, const Class &model) \
    {                                                                \
        TABLE(DATA_MODEL_WRITE)                                      \
        return stream;                                               \
    }                                                                \
    QDataStream &operator>>(QDataStream &stream, Class &model)       \
    {                                                                \
        TABLE(DATA_MODEL_READ)                                       \
        model.LoadedFromStream();                                    \
        return stream;                                               \
    }                                                                \
    QDebug operator<<(QDebug debug, const Class &model)              \
    {                                                                \
        constexpr int labelWidth = labelColumns;                     \
        int line = 0;                                                \
        TABLE(DATA_MODEL_PRINT)                                      \
        return debug;                                                \
    }                                                                \
    QDebug operator<<(QDebug debug, Class *model)                    \
    {                                                                \
        return debug << *model;                                      \
    }                                                                \
    static_assert(true, "takes the semicolon behind the macro")
