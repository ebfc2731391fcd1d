#pragma once

#include <DataModel.h>

#include <QDataStream>
#include <QDebug>

#include <cstddef>

// How the source file of a data model expands its table.

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

// A field that the stream doesn't hold whole gets its default, not what could be made of its front. The default's
// type follows from the field's alone.
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

// Numbers of a single byte are no characters.
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

// Rows of the functions that DATA_MODEL_DEFINE makes, whose names they use.
#define DATA_MODEL_RESET(Type, prefix, Name, SignalType, defaultValue) Set##Name(defaultValue);
#define DATA_MODEL_WRITE(Type, prefix, Name, SignalType, defaultValue) \
    DataModel::Write(stream, model.m_##prefix##Name);
#define DATA_MODEL_READ(Type, prefix, Name, SignalType, defaultValue) \
    DataModel::Read(stream, model.m_##prefix##Name, defaultValue);
#define DATA_MODEL_PRINT(Type, prefix, Name, SignalType, defaultValue) \
    DataModel::PrintLine(debug, line++, "m_" #prefix #Name, labelWidth, model.m_##prefix##Name);

// Stands in the source file: Reset() and LoadedFromStream(), which the class declares, and its stream operators. A
// label takes so many columns before its colon.
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
