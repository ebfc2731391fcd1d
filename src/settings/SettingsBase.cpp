#include "SettingsBase.h"

#include <settings/Config.h>

#include <QJSValue>

namespace {

template <typename Type>
Type FromStored(const QVariant &value)
{
    if constexpr (std::is_same_v<Type, bool>)
        return value.toString() == QLatin1String("true");
    else
        return value.value<Type>();
}

QString ToStoredKey(const QString &key, const QString &subKey)
{
    return key + QLatin1Char('[') + subKey + QLatin1Char(']');
}

template <typename Hash>
void InsertEntries(QHash<QString, QVariant> &settings, const QString &key, const Hash &hash)
{
    for (auto entry = hash.cbegin(); entry != hash.cend(); ++entry)
        settings.insert(ToStoredKey(key, entry.key()), QVariant(entry.value()));
}

// Returns the part of a stored key by which its entry is found, and splits off the sub-key of a keyed setting.
QString SplitKey(const QString &storedKey, QString &subKey)
{
    const auto bracket = storedKey.indexOf(QLatin1Char('['));
    if (bracket < 0)
        return storedKey;
    subKey = storedKey.mid(bracket + 1);
    subKey.chop(1);
    return storedKey.left(bracket + 1);
}

template <typename Hash>
Hash FromMap(const QVariantMap &map)
{
    Hash hash;
    for (auto entry = map.cbegin(); entry != map.cend(); ++entry)
        hash.insert(entry.key().toLower(), entry.value().value<typename Hash::mapped_type>());
    return hash;
}

// Registers the type under the name that its property uses, and lets QML write an object to it.
template <typename Hash>
void RegisterKeyedType(const char *name)
{
    qRegisterMetaType<Hash>(name);
    if (!QMetaType::hasRegisteredConverterFunction<QVariantMap, Hash>())
        QMetaType::registerConverter<QVariantMap, Hash>(&FromMap<Hash>);
    if (!QMetaType::hasRegisteredConverterFunction<QJSValue, Hash>())
        QMetaType::registerConverter<QJSValue, Hash>(
            [](const QJSValue &value) { return FromMap<Hash>(value.toVariant().toMap()); });
}

} // namespace

struct CSettingsBase::SEntry
{
    enum EScope {
        User,
        Global,
    } eScope;
    void (*Apply)(CSettingsBase &settings, const QString &subKey, const QVariant &value, bool save);
};

CSettingsBase::CSettingsBase()
{
#define SETTINGS_NOTHING(Type, Name, key, area, scope, defaultValue)
#define SETTINGS_REGISTER(Type, Name, key, area, scope, defaultValue) RegisterKeyedType<Type>(#Type);
    SETTINGS_TABLE(SETTINGS_NOTHING, SETTINGS_REGISTER)
#undef SETTINGS_NOTHING
#undef SETTINGS_REGISTER
    Reset();
}

CSettingsBase::~CSettingsBase() = default;

const QString &CSettingsBase::GetNickname() const
{
    return m_strNickname;
}

void CSettingsBase::SetNickname(const QString &nickname)
{
    m_strNickname = nickname;
}

const QString &CSettingsBase::GetUsername() const
{
    return m_strUsername;
}

void CSettingsBase::SetUsername(const QString &username)
{
    m_strUsername = username;
}

const QString &CSettingsBase::GetPwd() const
{
    return m_strPwd;
}

void CSettingsBase::SetPwd(const QString &pwd)
{
    m_strPwd = pwd;
}

const QObject *CSettingsBase::GetCaller() const
{
    return m_pCaller;
}

QHash<QString, QVariant> CSettingsBase::GetSettings() const
{
    QHash<QString, QVariant> settings;
#define SETTINGS_GET(Type, Name, key, area, scope, defaultValue) \
    if constexpr (SEntry::scope == SEntry::User)                 \
        settings.insert(QStringLiteral(#key), QVariant(m_##Name));
#define SETTINGS_KEYED_GET(Type, Name, key, area, scope, defaultValue) \
    if constexpr (SEntry::scope == SEntry::User)                       \
        InsertEntries(settings, QStringLiteral(#key), m_##Name);
    SETTINGS_TABLE(SETTINGS_GET, SETTINGS_KEYED_GET)
#undef SETTINGS_GET
#undef SETTINGS_KEYED_GET
    return settings;
}

void CSettingsBase::SetSettings(QHash<QString, QVariant> globals, QHash<QString, QVariant> userValues, bool save)
{
    QHash<QString, QVariant> merged;
    merged.reserve(globals.size() + userValues.size());
    for (auto value = globals.cbegin(); value != globals.cend(); ++value)
        merged.insert(value.key().toLower(), value.value());
    for (auto value = userValues.cbegin(); value != userValues.cend(); ++value) {
        const QString key = value.key().toLower();
        if (!IsGlobal(key))
            merged.insert(key, value.value());
    }
    QString subKey;
    const QString user = m_strNickname;
    for (auto value = merged.cbegin(); value != merged.cend() && user == m_strNickname; ++value) {
        if (const SEntry *entry = FindEntry(SplitKey(value.key(), subKey)))
            entry->Apply(*this, subKey, value.value(), save);
    }
}

bool CSettingsBase::IsChanged() const
{
    return m_bChanged;
}

bool CSettingsBase::IsGlobal(const QString &key)
{
    QString subKey;
    const SEntry *entry = FindEntry(SplitKey(key.toLower(), subKey));
    return entry && entry->eScope == SEntry::Global;
}

void CSettingsBase::Reset()
{
    const CConfig *config = CConfig::GetInstance();
#define SETTINGS_RESET(Type, Name, key, area, scope, defaultValue) m_##Name = defaultValue;
    SETTINGS_TABLE(SETTINGS_RESET, SETTINGS_RESET)
#undef SETTINGS_RESET
}

const CSettingsBase::SEntry *CSettingsBase::FindEntry(const QString &key)
{
    static const QHash<QString, SEntry> entries{
#define SETTINGS_ENTRY(Type, Name, key, area, scope, defaultValue)                                    \
    {QStringLiteral(#key),                                                                            \
     {SEntry::scope, [](CSettingsBase &settings, const QString &, const QVariant &value, bool save) { \
          settings.Set##Name(FromStored<Type>(value), nullptr, save);                                 \
      }}},
#define SETTINGS_KEYED_ENTRY(Type, Name, key, area, scope, defaultValue)                                    \
    {QStringLiteral(#key "["),                                                                              \
     {SEntry::scope, [](CSettingsBase &settings, const QString &subKey, const QVariant &value, bool save) { \
          settings.Set##Name##ByKey(subKey, FromStored<Type::mapped_type>(value), nullptr, save);           \
      }}},
        SETTINGS_TABLE(SETTINGS_ENTRY, SETTINGS_KEYED_ENTRY)
#undef SETTINGS_ENTRY
#undef SETTINGS_KEYED_ENTRY
    };
    const auto entry = entries.constFind(key);
    return entry == entries.constEnd() ? nullptr : &*entry;
}

// Returns whether the value differs and the user is still the same, because a slot may log out.
template <typename Type>
bool CSettingsBase::Assign(Type &member, const Type &value, const QObject *sender, void (CSettingsBase::*signal)())
{
    m_pCaller = sender;
    const QString user = m_strNickname;
    const bool differs = member != value;
    if (differs) {
        member = value;
        Q_EMIT(this->*signal)();
    }
    m_pCaller = nullptr;
    return differs && user == m_strNickname;
}

#define SETTINGS_USER(scope) (SEntry::scope == SEntry::Global ? QString() : m_strNickname)
#define SETTINGS_SETTER(Type, Name, key, area, scope, defaultValue)                                          \
    void CSettingsBase::Set##Name(TValue<Type> value, const QObject *sender, bool save)                      \
    {                                                                                                        \
        m_bChanged = Assign<Type>(m_##Name, value, sender, &CSettingsBase::signal_##Name##Changed);          \
        if (save)                                                                                            \
            Save(SETTINGS_USER(scope), QStringLiteral(#area), QStringLiteral(#key), QVariant(m_##Name), -1); \
        m_bChanged = false;                                                                                  \
    }
// Assigns the whole hash, but never stores it.
#define SETTINGS_KEYED_SETTER(Type, Name, key, area, scope, defaultValue)                                         \
    void CSettingsBase::Set##Name(const Type &value, const QObject *sender, bool)                                 \
    {                                                                                                             \
        Assign<Type>(m_##Name, value, sender, &CSettingsBase::signal_##Name##Changed);                            \
    }                                                                                                             \
    auto CSettingsBase::Get##Name##ByKey(const QString &subKey)->Type::mapped_type                                \
    {                                                                                                             \
        return m_##Name[subKey.toLower()];                                                                        \
    }                                                                                                             \
    void CSettingsBase::Set##Name##ByKey(const QString &subKey, TValue<Type::mapped_type> value,                  \
                                         const QObject *sender, bool save)                                        \
    {                                                                                                             \
        const QString lowerKey = subKey.toLower();                                                                \
        m_bChanged =                                                                                              \
            Assign<Type::mapped_type>(m_##Name[lowerKey], value, sender, &CSettingsBase::signal_##Name##Changed); \
        if (save)                                                                                                 \
            Save(SETTINGS_USER(scope), QStringLiteral(#area), ToStoredKey(QStringLiteral(#key), lowerKey),        \
                 QVariant(m_##Name[lowerKey]), -1);                                                               \
        m_bChanged = false;                                                                                       \
    }
SETTINGS_TABLE(SETTINGS_SETTER, SETTINGS_KEYED_SETTER)
#undef SETTINGS_SETTER
#undef SETTINGS_KEYED_SETTER
#undef SETTINGS_USER
