#pragma once

#include <Export.h>

#include <QObject>
#include <QPointer>
#include <QString>

#include <type_traits>

class QDataStream;
class QDebug;

// What all data models have in common. A data model is a QObject of plain fields, and its table names each field
// once: ROW(type, prefix, Name, signalType, default)
//
// DATA_MODEL_FIELDS expands the table inside the class. Of a row it makes the member m_prefixName, the property
// prefixName, GetName(), SetName(), which emits only where the value differs, and signal_NameChanged(signalType). A
// field that is a pointer to a QObject is guarded: it reads as null once the object is gone, and no stream carries
// it.
//
// An enumeration travels in a stream as 32 bits; its own operator>> reads it.

namespace DataModel {

template <typename Type>
using TMember = std::conditional_t<std::is_pointer_v<Type>, QPointer<std::remove_pointer_t<Type>>, Type>;

template <typename Type>
using TGetter = std::conditional_t<std::is_same_v<Type, QString>, const QString &, Type>;

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
#define DATA_MODEL_FIELDS(Class, TABLE)                                                  \
    TABLE(DATA_MODEL_PROPERTY)                                                           \
public:                                                                                  \
    TABLE(DATA_MODEL_ACCESS)                                                             \
    friend PLUGININTERFACE_EXPORT QDataStream &operator<<(QDataStream &, const Class &); \
    friend PLUGININTERFACE_EXPORT QDataStream &operator>>(QDataStream &, Class &);       \
    friend PLUGININTERFACE_EXPORT QDebug operator<<(QDebug, const Class &);              \
Q_SIGNALS:                                                                               \
    TABLE(DATA_MODEL_SIGNAL)                                                             \
private:                                                                                 \
    TABLE(DATA_MODEL_MEMBER)
