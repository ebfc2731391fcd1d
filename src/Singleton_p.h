#pragma once

#include <QObject>
#include <QSharedPointer>

#include <type_traits>

namespace Singleton {

// A QObject may be in the middle of delivering one of its own signals when it is destroyed, so it ends at the next
// turn of the event loop; other classes end at once.
template <typename T>
QSharedPointer<T> MakeShared(T *instance)
{
    if constexpr (std::is_base_of_v<QObject, T>)
        return QSharedPointer<T>(instance, &QObject::deleteLater);
    else
        return QSharedPointer<T>(instance);
}

} // namespace Singleton

// Defines the static member m_Instance and the operations GetInstance(), IsExisting() and DestroyInstance() that the
// class declares. It stands in exactly one source file of the library. In a header, each shared object could end up
// with an m_Instance of its own, and host and plugins would talk to different objects. Main thread. The constructor
// must not lead back to GetInstance() of its own class, which would create another one, and so on.
#define PLUGININTERFACE_DEFINE_SINGLETON(Class)            \
    QSharedPointer<Class> Class::m_Instance;               \
    Class *Class::GetInstance()                            \
    {                                                      \
        if (!m_Instance)                                   \
            m_Instance = Singleton::MakeShared(new Class); \
        return m_Instance.data();                          \
    }                                                      \
    bool Class::IsExisting()                               \
    {                                                      \
        return !m_Instance.isNull();                       \
    }                                                      \
    void Class::DestroyInstance()                          \
    {                                                      \
        m_Instance.clear();                                \
    }                                                      \
    static_assert(true, "takes the semicolon behind the macro")
