#pragma once

#include <Export.h>
#include <settings/ConfigTable.h>

#include <QHash>
#include <QObject>
#include <QString>
#include <QVariant>

#include <type_traits>

/// Every value of the operator's configuration as a typed member with a built-in default, a getter and a constant
/// property for QML.
///
/// The getters are `int GetCashierSwapTime() const`, `bool GetMyBestHand() const`, `const QString &GetLinkCashier()
/// const` and so on, one for each row of CONFIG_TABLE, which makes the page \ref md_config_keys. The property bears
/// the key's name without underscores but for a few. Nothing tells of a change: a value is read where it is needed,
/// and what SetConfigs() sets later reaches only those who read it later. Reading is safe from any thread as long as
/// nobody calls SetConfigs().
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
    /// All values at their built-in defaults.
    CConfigBase();
    ~CConfigBase() override;

#define CONFIG_GETTER(type, Name, key, defaultValue, property, readers) \
    TGetter<type> Get##Name() const                                     \
    {                                                                   \
        return m_##Name;                                                \
    }
    CONFIG_TABLE(CONFIG_GETTER)
#undef CONFIG_GETTER

    /// Applies values by their keys, which match in any case; a key that is none is ignored. Text that is no number
    /// is 0 for a number; for a bool only "true", in lower case, is true. Main thread.
    void SetConfigs(QHash<QString, QVariant> configs);

private:
    void Reset();

#define CONFIG_MEMBER(type, Name, key, defaultValue, property, readers) type m_##Name{};
    CONFIG_TABLE(CONFIG_MEMBER)
#undef CONFIG_MEMBER
};
