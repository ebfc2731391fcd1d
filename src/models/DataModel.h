#pragma once

#include <QDataStream>
#include <QDebug>
#include <QObject>
#include <QPointer>
#include <QString>

#include <type_traits>

// What all data models have in common. A data model is a QObject of plain fields, and its table names each field
// once: ROW(type, prefix, Name, signalType, default)
//
// DATA_MODEL_FIELDS expands the table inside the class, DATA_MODEL_DEFINE in its source file. Of a row they make the
// member m_prefixName, the property prefixName, GetName(), SetName(), which emits only where the value differs, and
// signal_NameChanged(signalType). A field that is a pointer to a QObject is guarded: it reads as null once the object
// is gone, and no stream carries it.
//
// An enumeration travels in a stream as 32 bits; its own operator>> reads it.

namespace DataModel {

template <typename Type>
using TMember = std::conditional_t<std::is_pointer_v<Type>, QPointer<std::remove_pointer_t<Type>>, Type>;

template <typename Type>
using TGetter = std::conditional_t<std::is_same_v<Type, QString>, const QString &, Type>;

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

// A field that the stream doesn't hold whole gets its default, not what could be made of its front.
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
    debug << (QByteArray(label).leftJustified(labelWidth) + ':').constData();
    Print(debug, field);
}

} // namespace DataModel

#define DATA_MODEL_PROPERTY(Type, prefix, Name, SignalType, defaultValue) \
    Q_PROPERTY(Type prefix##Name READ Get##Name WRITE Set##Name NOTIFY signal_##Name##Changed)
#define DATA_MODEL_ACCESS(Type, prefix, Name, SignalType, defaultValue) \
    DataModel::TGetter<Type> Get##Name() const                          \
    {                                                                   \
        return m_##prefix##Name;                                        \
    }                                                                   \
    void Set##Name(Type value)                                          \
    {                                                                   \
        if (m_##prefix##Name == value)                                  \
            return;                                                     \
        m_##prefix##Name = value;                                       \
        Q_EMIT signal_##Name##Changed(value);                           \
    }
#define DATA_MODEL_SIGNAL(Type, prefix, Name, SignalType, defaultValue) void signal_##Name##Changed(SignalType value);
#define DATA_MODEL_MEMBER(Type, prefix, Name, SignalType, defaultValue) \
    DataModel::TMember<Type> m_##prefix##Name = defaultValue;

// Stands in the class behind Q_OBJECT; what follows it is private.
#define DATA_MODEL_FIELDS(Class, TABLE)                           \
    TABLE(DATA_MODEL_PROPERTY)                                    \
public:                                                           \
    TABLE(DATA_MODEL_ACCESS)                                      \
    friend QDataStream &operator<<(QDataStream &, const Class &); \
    friend QDataStream &operator>>(QDataStream &, Class &);       \
    friend QDebug operator<<(QDebug, const Class &);              \
Q_SIGNALS:                                                        \
    TABLE(DATA_MODEL_SIGNAL)                                      \
private:                                                          \
    TABLE(DATA_MODEL_MEMBER)

#define DATA_MODEL_RESET(Type, prefix, Name, SignalType, defaultValue) Set##Name(defaultValue);
#define DATA_MODEL_WRITE(Type, prefix, Name, SignalType, defaultValue) \
    DataModel::Write(stream, model.m_##prefix##Name);
#define DATA_MODEL_READ(Type, prefix, Name, SignalType, defaultValue) \
    DataModel::Read(stream, model.m_##prefix##Name, defaultValue);
#define DATA_MODEL_PRINT(Type, prefix, Name, SignalType, defaultValue) \
    DataModel::PrintLine(debug, line++, "m_" #prefix #Name, labelWidth, model.m_##prefix##Name);

// Stands in the source file: Reset(), LoadedFromStream() and the stream operators of the class.
#define DATA_MODEL_DEFINE(Class, TABLE, LABEL_WIDTH)                 \
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
        constexpr int labelWidth = LABEL_WIDTH;                      \
        int line = 0;                                                \
        TABLE(DATA_MODEL_PRINT)                                      \
        return debug;                                                \
    }                                                                \
    QDebug operator<<(QDebug debug, Class *model)                    \
    {                                                                \
        return debug << *model;                                      \
    }                                                                \
    static_assert(true, "takes the semicolon behind the macro")
