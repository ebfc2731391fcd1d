#pragma once

#include <Export.h>
#include <settings/SettingsTable.h>

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>
#include <QVariant>

#include <type_traits>

/// The user settings. Each is a typed member with a getter, a setter, a change signal and a property for QML. They
/// are listed in SETTINGS_TABLE, from which the page \ref settings is made. CSettings stores them.
///
/// A row `Volume` with the key `volume` provides `int GetVolume() const`, `signal_VolumeChanged()`, the property
/// `volume`, and `SetVolume(value, sender = 0, save = true)`. The setter emits the signal if the value differs, and
/// stores the value, new or not, unless \a save is false. Writing the property calls the setter without a sender.
///
/// A model that writes a setting and listens to it passes itself as \a sender. Its slot does nothing while
/// GetCaller() returns the model, because the change is its own.
///
/// A keyed setting, such as the window positions, is a hash from a sub-key, in any case, to a value.
/// `GetWinPosByKey(subKey)` and `SetWinPosByKey(subKey, value, sender, save)` access one entry. A missing entry is
/// created, with an empty value, 0 or false, even by reading. `SetWinPos()` sets the whole hash, with lower-case
/// sub-keys, and never stores it.
///
/// A QByteArray must hold text, such as Base64, because it is stored as text. Main thread.
class PLUGININTERFACE_EXPORT CSettingsBase : public QObject
{
    Q_OBJECT

#define SETTINGS_PROPERTY(Type, Name, key, area, scope, defaultValue) \
    Q_PROPERTY(Type key READ Get##Name WRITE Set##Name NOTIFY signal_##Name##Changed)
    SETTINGS_TABLE(SETTINGS_PROPERTY, SETTINGS_PROPERTY)
#undef SETTINGS_PROPERTY

public:
    /// The type of a keyed setting, which holds values by lower-case sub-keys.
    /// @{
    using TWinPos = QHash<QString, QByteArray>;
    using THeaderSizes = QHash<QString, QString>;
    using THeaderSortingColumn = QHash<QString, int>;
    using THeaderSortingOrder = QHash<QString, bool>;
    using TSelBackground = QHash<QString, int>;
    using TSelSubTheme = QHash<QString, int>;
    /// @}

private:
    /// Passes numbers and bools by value, all other types by reference.
    template <typename Type>
    using TValue = std::conditional_t<std::is_arithmetic_v<Type>, Type, const Type &>;

public:
    /// Creates the object with all settings at their defaults.
    CSettingsBase();
    ~CSettingsBase() override;

    /// Stores a value. \a user is a nickname, or empty for a value of the installation. \a timestamp is in seconds
    /// since 1970 UTC, or negative for the time of writing.
    virtual void Save(const QString &user, const QString &area, const QString &key, const QVariant &value,
                      qint64 timestamp) = 0;

    /// The user to whom the settings belong; all three are empty when nobody is logged in. The setters neither emit
    /// signals nor store.
    /// @{
    const QString &GetNickname() const;
    void SetNickname(const QString &nickname);
    const QString &GetUsername() const;
    void SetUsername(const QString &username);
    const QString &GetPwd() const;
    void SetPwd(const QString &pwd);
    /// @}

    /// Returns the sender of the change that is being signalled. Null at all other times, for a change without a
    /// sender, and for slots that are called after a slot that has set something itself. The object is never
    /// dereferenced here.
    const QObject *GetCaller() const;

#define SETTINGS_ACCESS(Type, Name, key, area, scope, defaultValue) \
    TValue<Type> Get##Name() const                                  \
    {                                                               \
        return m_##Name;                                            \
    }                                                               \
    void Set##Name(TValue<Type> value, const QObject *sender = nullptr, bool save = true);
#define SETTINGS_KEYED_ACCESS(Type, Name, key, area, scope, defaultValue)                                          \
    SETTINGS_ACCESS(Type, Name, key, area, scope, defaultValue)                                                    \
    Type::mapped_type Get##Name##ByKey(const QString &subKey);                                                     \
    void Set##Name##ByKey(const QString &subKey, TValue<Type::mapped_type> value, const QObject *sender = nullptr, \
                          bool save = true);
    SETTINGS_TABLE(SETTINGS_ACCESS, SETTINGS_KEYED_ACCESS)
#undef SETTINGS_ACCESS
#undef SETTINGS_KEYED_ACCESS

    /// Returns all settings of the user by key, without those of the installation. An entry of a keyed setting has
    /// the key "key[subkey]".
    QHash<QString, QVariant> GetSettings() const;
    /// Applies stored values by key, through the setters and without a sender. \a userValues override \a globals, but
    /// never change a setting of scope Global. Keys are case-insensitive, unknown ones are ignored, and settings that
    /// aren't named keep their values. A bool is true only for the text "true", and text that isn't a number is 0. If
    /// a slot changes the user meanwhile, the remaining values aren't applied.
    void SetSettings(QHash<QString, QVariant> globals, QHash<QString, QVariant> userValues, bool save);
    /// Resets all settings to their defaults, without signals and without storing. The user is kept.
    void Reset();

protected:
    /// Returns whether the setter that is calling Save() has changed the value.
    bool IsChanged() const;
    /// Returns whether \a key, with its sub-key and in any case, belongs to a setting of scope Global.
    static bool IsGlobal(const QString &key);

Q_SIGNALS:
#define SETTINGS_SIGNAL(Type, Name, key, area, scope, defaultValue) void signal_##Name##Changed();
    SETTINGS_TABLE(SETTINGS_SIGNAL, SETTINGS_SIGNAL)
#undef SETTINGS_SIGNAL

private:
    struct SEntry;

    static const SEntry *FindEntry(const QString &key);
    template <typename Type>
    bool Assign(Type &member, const Type &value, const QObject *sender, void (CSettingsBase::*signal)());

    QString m_strNickname;
    QString m_strUsername;
    QString m_strPwd;
    const QObject *m_pCaller = nullptr;

#define SETTINGS_MEMBER(Type, Name, key, area, scope, defaultValue) Type m_##Name{};
    SETTINGS_TABLE(SETTINGS_MEMBER, SETTINGS_MEMBER)
#undef SETTINGS_MEMBER
    // Set while a setter stores a changed value. It comes after the settings because the inline getters in plugins
    // depend on their offsets.
    bool m_bChanged = false;
};
