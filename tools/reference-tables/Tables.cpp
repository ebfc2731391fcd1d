#include "Tables.h"

#include <models/PlayerDataTable.h>
#include <models/UserInfoDataTable.h>
#include <money/MoneySpinnerDataTable.h>
#include <plugin/EventTable_p.h>
#include <settings/ConfigTable.h>
#include <settings/SettingsTable.h>

#include <QHash>
#include <QStringList>

namespace {

QString Code(const QString &text)
{
    return QLatin1Char('`') + text + QLatin1Char('`');
}

QString Row(const QStringList &cells)
{
    return QLatin1String("| ") + cells.join(QLatin1String(" | ")) + QLatin1String(" |\n");
}

QString Head(const QStringList &cells)
{
    return Row(cells) + QLatin1Char('|') + QStringLiteral("---|").repeated(cells.size()) + QLatin1Char('\n');
}

// Returns the default of a table's row, which is a C++ expression, for readers.
QString Default(const QString &expression)
{
    static const QHash<QString, QString> configKeys{
#define CONFIG_KEY(type, Name, key, defaultValue, property, readers) \
    {QStringLiteral("config->Get" #Name "()"), QStringLiteral(#key)},
        CONFIG_TABLE(CONFIG_KEY)
#undef CONFIG_KEY
    };
    if (configKeys.contains(expression))
        return QLatin1String("that of the configuration, ") + Code(configKeys.value(expression));
    return expression.endsWith(QLatin1String("()")) ? QStringLiteral("empty") : Code(expression);
}

} // namespace

QString Tables::Settings()
{
    QString page =
        QStringLiteral(
            "# Settings {#settings}\n\n"
            "The settings of `CSettingsBase`, in the order of the class. For a row of the name `Volume` there "
            "are `GetVolume()`, `SetVolume()`, `signal_VolumeChanged()` and a property under the key. A keyed "
            "setting is a hash of values, one under each sub-key, and has `GetVolumeByKey()` and "
            "`SetVolumeByKey()` too. In the file a row of scope User belongs to a user and one of scope Global "
            "to the installation; area and key are columns of `tbl_settings`.\n\n") +
        Head({QStringLiteral("Name"), QStringLiteral("Key"), QStringLiteral("Type"), QStringLiteral("Area"),
              QStringLiteral("Scope"), QStringLiteral("Default")});
#define SETTING(Type, Name, key, area, scope, defaultValue)                                      \
    page += Row({QStringLiteral(#Name), Code(QStringLiteral(#key)), Code(QStringLiteral(#Type)), \
                 QStringLiteral(#area), QStringLiteral(#scope), Default(QStringLiteral(#defaultValue))});
#define KEYED_SETTING(Type, Name, key, area, scope, defaultValue)                                           \
    page += Row({QStringLiteral(#Name), Code(QStringLiteral(#key "[subkey]")), Code(QStringLiteral(#Type)), \
                 QStringLiteral(#area), QStringLiteral(#scope), Default(QStringLiteral(#defaultValue))});
    SETTINGS_TABLE(SETTING, KEYED_SETTING)
#undef SETTING
#undef KEYED_SETTING
    return page;
}

QString Tables::Events()
{
    QString page =
        QStringLiteral(
            "# Events {#events}\n\n"
            "The events that the library composes for a plugin, and those that it takes apart for one before "
            "anybody else sees them. `P2ME` goes to the host, `M2PE` comes from the host, and `DESI` goes to "
            "whoever has registered for it. Numbers are little-endian; a counted text is 16 bits of length and "
            "then its bytes. All other tags belong to the plugins and to the game server.\n\n") +
        Head({QStringLiteral("Tags"), QStringLiteral("Payload"), QStringLiteral("Meaning")});
#define EVENT(Name, first, second, payload, meaning) \
    page += Row({Code(QStringLiteral(first " " second)), QStringLiteral(payload), QStringLiteral(meaning)});
    EVENT_TABLE(EVENT)
#undef EVENT
    return page;
}

QString Tables::Models()
{
    QString page = QStringLiteral(
        "# Fields of the data models {#models}\n\n"
        "Each field is a property of the model. For a row of the name `Nickname` there are "
        "`GetNickname()`, `SetNickname()`, and `signal_NicknameChanged()`, which brings the new value and "
        "comes only where it differs. Streams hold the fields in this order, but no pointer.\n");
#define FIELD(Type, prefix, Name, SignalType, defaultValue)                                               \
    page += Row({QStringLiteral(#Name), Code(QStringLiteral(#prefix #Name)), Code(QStringLiteral(#Type)), \
                 Default(QStringLiteral(#defaultValue))});
#define MODEL(Class, TABLE)                                                                                   \
    page += QLatin1String("\n## " #Class "\n\n") + Head({QStringLiteral("Name"), QStringLiteral("Property"),  \
                                                         QStringLiteral("Type"), QStringLiteral("Default")}); \
    TABLE(FIELD)
    MODEL(CPlayerDataModel, PLAYER_DATA_TABLE)
    MODEL(CUserInfoDataModel, USER_INFO_DATA_TABLE)
    MODEL(CMoneySpinnerDataModel, MONEY_SPINNER_DATA_TABLE)
#undef MODEL
#undef FIELD
    return page;
}
