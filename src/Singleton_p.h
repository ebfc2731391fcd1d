#pragma once

#include <QObject>
#include <QSharedPointer>

#include <type_traits>

namespace Singleton {

// A QObject may be emitting one of its own signals when it is released, so it is deleted at the next turn of the
// event loop. Objects of other classes are deleted at once.
template <typename T>
QSharedPointer<T> MakeShared(T *instance)
{
    if constexpr (std::is_base_of_v<QObject, T>)
        return QSharedPointer<T>(instance, &QObject::deleteLater);
    else
        return QSharedPointer<T>(instance);
}

} // namespace Singleton

// Defines the static member m_Instance and the functions GetInstance(), IsExisting() and DestroyInstance(), which the
// class declares. It is used in exactly one source file of the library: if it were in a header, each shared object
// could have an m_Instance of its own, and the host and the plugins would use different objects. The functions are
// for the main thread. The constructor of the class must not call GetInstance() of the class, not even indirectly:
// that would create objects without end.
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
