#pragma once

#include <Export.h>
#include <settings/ConfigTable.h>

#include <QHash>
#include <QObject>
#include <QString>
#include <QVariant>

#include <type_traits>

/// The values of the operator's configuration. Each is a typed member with a built-in default, a getter and a
/// constant property for QML.
///
/// The getters are `int GetCashierSwapTime() const`, `bool GetMyBestHand() const`, `const QString &GetLinkCashier()
/// const` and so on, one for each row of CONFIG_TABLE, from which the page \ref md_config_keys is made. With a few
/// exceptions, a property is named like the key, without underscores. There are no change signals: a value is read
/// when it is needed, and a later SetConfigs() affects only later reads. Reading is safe from any thread as long as
/// nothing calls SetConfigs().
class PLUGININTERFACE_EXPORT CConfigBase : public QObject
{
    Q_OBJECT

#define CONFIG_PROPERTY(type, Name, key, defaultValue, property, readers) \
    Q_PROPERTY(type property READ Get##Name CONSTANT)
    CONFIG_TABLE(CONFIG_PROPERTY)
#undef CONFIG_PROPERTY

    template <typename Type>
    using TGetter = std::conditional_t<std::is_same_v<Type, QString>, const QString &, Type>;

public:
    /// Creates the object with all values at their built-in defaults.
    CConfigBase();
    ~CConfigBase() override;

#define CONFIG_GETTER(type, Name, key, defaultValue, property, readers) \
    TGetter<type> Get##Name() const                                     \
    {                                                                   \
        return m_##Name;                                                \
    }
    CONFIG_TABLE(CONFIG_GETTER)
#undef CONFIG_GETTER

    /// Sets values by their keys, which are case-insensitive; unknown keys are ignored. Text that isn't a number sets
    /// a number to 0. Only "true", in lower case, sets a bool to true. Main thread.
    void SetConfigs(QHash<QString, QVariant> configs);

private:
    void Reset();

#define CONFIG_MEMBER(type, Name, key, defaultValue, property, readers) type m_##Name{};
    CONFIG_TABLE(CONFIG_MEMBER)
#undef CONFIG_MEMBER
};
