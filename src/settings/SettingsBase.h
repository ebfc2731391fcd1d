#pragma once

#include <Export.h>
#include <settings/SettingsTable.h>

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>
#include <QVariant>

#include <type_traits>

/// Every user setting as a typed member with a getter, a setter, a change signal and a property for QML. The
/// settings stand in SETTINGS_TABLE, which makes the page \ref settings; CSettings stores them.
///
/// Of a row `Volume` with the key `volume` there are `int GetVolume() const`, `signal_VolumeChanged()`, the property
/// `volume`, and `SetVolume(value, sender = 0, save = true)`. The setter signals a value that differs, and stores the
/// value, new or not, unless \a save is false. The property's writer does so without a sender.
///
/// A model that listens to a setting which it also writes passes itself as \a sender, and its slot does nothing while
/// GetCaller() is the model itself: that is its own change coming back.
///
/// A keyed setting, such as the window positions, is a hash from a sub-key, in any case, to a value.
/// `GetWinPosByKey(subKey)` and `SetWinPosByKey(subKey, value, sender, save)` work on one entry; a sub-key that has
/// none gets one, with an empty value, 0 or false, even when it is only read. `SetWinPos()` takes a whole hash, with
/// lower-case sub-keys, and never stores it.
///
/// A QByteArray has to hold text, as Base64 is: it is stored as one. Main thread.
class PLUGININTERFACE_EXPORT CSettingsBase : public QObject
{
    Q_OBJECT

#define SETTINGS_PROPERTY(Type, Name, key, area, scope, defaultValue) \
    Q_PROPERTY(Type key READ Get##Name WRITE Set##Name NOTIFY signal_##Name##Changed)
    SETTINGS_TABLE(SETTINGS_PROPERTY, SETTINGS_PROPERTY)
#undef SETTINGS_PROPERTY

public:
    /// The values of a keyed setting by their sub-keys in lower case.
    /// @{
    using TWinPos = QHash<QString, QByteArray>;
    using THeaderSizes = QHash<QString, QString>;
    using THeaderSortingColumn = QHash<QString, int>;
    using THeaderSortingOrder = QHash<QString, bool>;
    using TSelBackground = QHash<QString, int>;
    using TSelSubTheme = QHash<QString, int>;
    /// @}

private:
    /// Numbers and bools travel by value, all else by reference.
    template <typename Type>
    using TValue = std::conditional_t<std::is_arithmetic_v<Type>, Type, const Type &>;

public:
    /// All settings at their defaults.
    CSettingsBase();
    ~CSettingsBase() override;

    /// Stores a value. \a user is a nickname, empty for a value of the installation; \a timestamp is seconds since
    /// 1970 UTC, negative for the time of writing.
    virtual void Save(const QString &user, const QString &area, const QString &key, const QVariant &value,
                      qint64 timestamp) = 0;

    /// The user whose settings these are; all empty when nobody is logged in. The setters neither signal nor store.
    /// @{
    const QString &GetNickname() const;
    void SetNickname(const QString &nickname);
    const QString &GetUsername() const;
    void SetUsername(const QString &username);
    const QString &GetPwd() const;
    void SetPwd(const QString &pwd);
    /// @}

    /// Who makes the change that is being signalled; null at all other times, for a change without a sender, and for
    /// those listeners that come behind one which has set something itself. Never dereferenced here.
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

    /// All settings of the user by key, those of the installation left out. An entry of a keyed setting has the key
    /// "key[subkey]".
    QHash<QString, QVariant> GetSettings() const;
    /// Applies stored values by key, through the setters and without a sender. Those of the user override those of
    /// the installation, but never change a setting of scope Global. Keys match in any case, unknown ones are
    /// ignored, and settings that aren't named keep their values. A bool is true for the text "true" alone, and text
    /// that is no number is 0. If a listener changes the user on the way, what is left isn't applied.
    void SetSettings(QHash<QString, QVariant> globals, QHash<QString, QVariant> userValues, bool save);
    /// All settings at their defaults, without signals and without storing. The user stays.
    void Reset();

protected:
    /// For Save(): whether the setter that calls it has found another value than before.
    bool IsChanged() const;
    /// Whether the key, with its sub-key and in any case, is that of a setting of scope Global.
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
    // After the settings, whose places plugins know from the getters: by the setter that stores its value just now.
    bool m_bChanged = false;
};
