#pragma once

#include <Export.h>

#include <QObject>
#include <QString>

class QDataStream;

/// The enumerations that the library, the host and all plugins share.
///
/// The numbers are fixed because packets of the game server and stored streams contain them. Each enumeration is
/// based on `int`, so any number read from outside is a valid, if unknown, value of it. After RegisterQML(), QML code
/// refers to an enumerator as `GlobalDefines.MONEYTYPE_DOLLAR`.
class PLUGININTERFACE_EXPORT GlobalDefines : public QObject
{
    Q_OBJECT
    // QML tools read this for their description of the type. RegisterQML() registers the type itself.
    Q_CLASSINFO("QML.Element", "GlobalDefines")

public:
    /// An amount in the smallest unit of its MoneyType: hundredths, or whole chips for MONEYTYPE_PLAY and
    /// MONEYTYPE_TOURN.
    using MoneyValue = unsigned int;

    /// The types of money, as ASCII codes of the server's letters.
    enum MoneyType : int {
        MONEYTYPE_DOLLAR = 'R',
        MONEYTYPE_PLAY = 'P',
        MONEYTYPE_EURO = 'E',
        MONEYTYPE_TOURN = 'T',
        MONEYTYPE_POINTS = 'S',
        MONEYTYPE_UNKNOWN = '-',
    };
    Q_ENUM(MoneyType)

    /// The betting limits, as ASCII codes of the server's letters.
    enum LimitType : int {
        LT_NO_LIMIT = 'N',
        LT_POT_LIMIT = 'P',
        LT_FIXED_LIMIT = 'F',
    };
    Q_ENUM(LimitType)

    /// The types of tables, as ASCII codes of the server's letters.
    enum TableType : int {
        TT_NORMAL = 'N',
        TT_PRIVATE = 'P',
        TT_RESTRICTED = 'R',
        TT_TOURNAMENT = 'T',
        TT_SITANDGO = 'S',
    };
    Q_ENUM(TableType)

    /// The games. Globals::GetGameType() converts the server's codes of four letters.
    enum GameType : int {
        GT_HOLDEM = 1,
        GT_OMAHA = 2,
        GT_OMAHA_HILO = 3,
        GT_SEVEN_CARD = 4,
        GT_SEVEN_CARD_HILO = 5,
        GT_NOBADBEAT = 6,
        GT_BADUGI = 7,
        GT_SEVEN_CARD_CHOICE = 8,
        GT_2TO7 = 9,
        GT_5CARD = 10,
    };
    Q_ENUM(GameType)

    /// The ways in which a table was opened, as single bits.
    enum TableConnectTypes : int {
        TCT_Standard = 1,
        TCT_Reseated = 2,
        TCT_SeatMe = 4,
    };
    Q_ENUM(TableConnectTypes)

    /// The status of a tournament, in the server's numbers.
    enum TournamentStatus : int {
        TRNSTATUS_ANNOUNCED = 1,
        TRNSTATUS_REGISTERING = 2,
        TRNSTATUS_SEATING = 3,
        TRNSTATUS_SEATED = 11,
        TRNSTATUS_RUNNING = 4,
        TRNSTATUS_ONBREAK = 5,
        TRNSTATUS_STARTINGBREAK = 13,
        TRNSTATUS_COMPLETED = 6,
        TRNSTATUS_COMPLETING = 12,
        TRNSTATUS_CANCELLED = 7,
        TRNSTATUS_CANCELLING = 10,
        TRNSTATUS_ONHOLD = 8,
        TRNSTATUS_NOTYETANNOUNCED = 9,
        TRNSTATUS_STARTINGADDON = 14,
        TRNSTATUS_ADDONPERIOD = 15,
        TRNSTATUS_LATE_REG = 22,
    };
    Q_ENUM(TournamentStatus)

    /// The types of tournaments, in the server's numbers.
    enum TournamentType : int {
        TRNTYPE_Regular = 1,
        TRNTYPE_Satellite = 2,
        TRNTYPE_FreeRoll = 3,
        TRNTYPE_Special = 4,
        TRNTYPE_Private = 5,
        TRNTYPE_SitAndGo = 6,
        TRNTYPE_Restricted = 7,
        TRNTYPE_MultiTableSnG = 8,
    };
    Q_ENUM(TournamentType)

    /// The formats of a countdown.
    enum CountdownStringType : int {
        CST_Normal = 0,
        CST_MinAndSecs = 1,
        CST_Seconds = 2,
    };
    Q_ENUM(CountdownStringType)

    /// The directions in which a window lies outside the screen; used as QFlags.
    enum ScreenPositionOutside : int {
        SPO_None = 0,
        SPO_Horizontal = 1,
        SPO_Vertical = 2,
    };
    Q_ENUM(ScreenPositionOutside)

    GlobalDefines();
    ~GlobalDefines() override;

    /// Registers the QML module "GlobalDefines" 1.0 with the type "GlobalDefines", and the enumerations as meta-types
    /// under their qualified names. The host calls it once, before it loads any QML.
    static void RegisterQML();
};

/// Reads a signed 32-bit integer into \a value, without a range check; at the end of the stream \a value becomes 0.
/// Writing an enumeration needs no operator of its own.
/// @{
PLUGININTERFACE_EXPORT QDataStream &operator>>(QDataStream &stream, GlobalDefines::MoneyType &value);
PLUGININTERFACE_EXPORT QDataStream &operator>>(QDataStream &stream, GlobalDefines::LimitType &value);
PLUGININTERFACE_EXPORT QDataStream &operator>>(QDataStream &stream, GlobalDefines::TableType &value);
PLUGININTERFACE_EXPORT QDataStream &operator>>(QDataStream &stream, GlobalDefines::GameType &value);
/// @}

/// Free functions that are declared in several headers. The page of each file says what its functions have in common,
/// above all their thread. Those of plugin/GlobalDefines.h convert between the shared enumerations and server codes,
/// and from both to translation keys. They have no state and may be called from any thread.
namespace Globals {

/// Returns the type of money for a letter of the server, or MONEYTYPE_UNKNOWN for an unknown letter.
PLUGININTERFACE_EXPORT GlobalDefines::MoneyType GetMoneyType(char letter);
/// Returns the limit for a letter of the server, or LT_NO_LIMIT for an unknown letter.
PLUGININTERFACE_EXPORT GlobalDefines::LimitType GetLimitType(char letter);
/// Returns the type of table for a letter of the server, or TT_NORMAL for an unknown letter.
PLUGININTERFACE_EXPORT GlobalDefines::TableType GetTableType(char letter);
/// Returns the game for a code of the server, or GT_HOLDEM for an unknown code. Ignores case and all characters after
/// the fourth.
PLUGININTERFACE_EXPORT GlobalDefines::GameType GetGameType(const QString &code);
/// Writes the server's code for \a type to \a code: exactly four letters, without a terminator. Leaves the buffer
/// unchanged for an unknown game.
PLUGININTERFACE_EXPORT void GetGameType(GlobalDefines::GameType type, char *code);

/// Returns the translation key of a game's name, or an empty string for an unknown game.
PLUGININTERFACE_EXPORT QString GetGameNameKey(GlobalDefines::GameType type);
/// Returns the translation key of the game's name for a code of the server. An unknown code counts as Hold'em.
PLUGININTERFACE_EXPORT QString GetGameNameKey(QString code);
/// Returns the translation key of a limit in its long or short form, or an empty string for an unknown limit.
PLUGININTERFACE_EXPORT QString GetLimitKey(GlobalDefines::LimitType limit, bool shortForm);
/// Returns the translation key of the limit for a letter of the server, in its long or short form.
PLUGININTERFACE_EXPORT QString GetLimitKey(QChar letter, bool shortForm);
/// Returns the translation key of \a month, 1 to 12, or an empty string for any other number.
PLUGININTERFACE_EXPORT QString GetMonthKey(int month);
/// Returns the translation key of a GlobalDefines::TournamentStatus, or "UNKNOWN" for any other number. A
/// transitional status has the key of the status that players know.
PLUGININTERFACE_EXPORT QString GetTournamentStatusLongKey(int status);

/// Returns the English name of a game with its limit, such as "NL Hold'em". The name is not translated. Fixed and
/// unknown limits have no prefix, and an unknown game has no name.
PLUGININTERFACE_EXPORT QString GetUntranslatedGameName(GlobalDefines::GameType type, GlobalDefines::LimitType limit);

} // namespace Globals
