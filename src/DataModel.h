#pragma once

#include <Export.h>

#include <QObject>
#include <QPointer>
#include <QString>

#include <type_traits>

class QDataStream;
class QDebug;

// The macros that all data models share. A data model is a QObject with plain fields, and its table names each field
// once: ROW(type, prefix, Name, signalType, default)
//
// DATA_MODEL_FIELDS expands the table inside the class. Each row becomes the member m_prefixName, the property
// prefixName, GetName(), SetName(), which emits only if the value differs, and signal_NameChanged(signalType). A
// field that is a pointer to a QObject is held as a QPointer: it reads as null once the object is destroyed, and is
// never streamed.
//
// DATA_MODEL_WATCHED_FIELDS does the same for a class that declares `FieldChanged(EField field)`. Each setter calls
// it after storing the value and before emitting the signal. A class that acts on its own changes therefore needs no
// connection to itself, which would cost each object one connection per field.
//
// Streams hold an enumeration as 32 bits; its own operator>> reads it.

namespace DataModel {

template <typename Type>
using TMember = std::conditional_t<std::is_pointer_v<Type>, QPointer<std::remove_pointer_t<Type>>, Type>;

template <typename Type>
using TGetter = std::conditional_t<std::is_same_v<Type, QString>, const QString &, Type>;

} // namespace DataModel

#define DATA_MODEL_PROPERTY(Type, prefix, Name, SignalType, defaultValue) \
    Q_PROPERTY(Type prefix##Name READ Get##Name WRITE Set##Name NOTIFY signal_##Name##Changed)
#define DATA_MODEL_ACCESS_WITH(Type, prefix, Name, changed) \
    DataModel::TGetter<Type> Get##Name() const              \
    {                                                       \
        return m_##prefix##Name;                            \
    }                                                       \
    void Set##Name(Type value)                              \
    {                                                       \
        if (m_##prefix##Name == value)                      \
            return;                                         \
        m_##prefix##Name = value;                           \
        changed;                                            \
        Q_EMIT signal_##Name##Changed(value);               \
    }
#define DATA_MODEL_ACCESS(Type, prefix, Name, SignalType, defaultValue) \
    DATA_MODEL_ACCESS_WITH(Type, prefix, Name, static_cast<void>(0))
#define DATA_MODEL_WATCHED_ACCESS(Type, prefix, Name, SignalType, defaultValue) \
    DATA_MODEL_ACCESS_WITH(Type, prefix, Name, FieldChanged(EField::Name))
#define DATA_MODEL_FIELD(Type, prefix, Name, SignalType, defaultValue) Name,
#define DATA_MODEL_SIGNAL(Type, prefix, Name, SignalType, defaultValue) void signal_##Name##Changed(SignalType value);
#define DATA_MODEL_MEMBER(Type, prefix, Name, SignalType, defaultValue) \
    DataModel::TMember<Type> m_##prefix##Name = defaultValue;

// Place one of these two in the class, after Q_OBJECT. What follows it is private.
#define DATA_MODEL_FIELDS(Class, TABLE) DATA_MODEL_FIELDS_WITH(Class, TABLE, DATA_MODEL_ACCESS)
#define DATA_MODEL_WATCHED_FIELDS(Class, TABLE)    \
protected:                                         \
    enum class EField { TABLE(DATA_MODEL_FIELD) }; \
    DATA_MODEL_FIELDS_WITH(Class, TABLE, DATA_MODEL_WATCHED_ACCESS)
#define DATA_MODEL_FIELDS_WITH(Class, TABLE, ACCESS)                                     \
    TABLE(DATA_MODEL_PROPERTY)                                                           \
public:                                                                                  \
    TABLE(ACCESS)                                                                        \
    friend PLUGININTERFACE_EXPORT QDataStream &operator<<(QDataStream &, const Class &); \
    friend PLUGININTERFACE_EXPORT QDataStream &operator>>(QDataStream &, Class &);       \
    friend PLUGININTERFACE_EXPORT QDebug operator<<(QDebug, const Class &);              \
Q_SIGNALS:                                                                               \
    TABLE(DATA_MODEL_SIGNAL)                                                             \
private:                                                                                 \
    TABLE(DATA_MODEL_MEMBER)
