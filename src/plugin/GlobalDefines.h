#pragma once

#include <Export.h>

#include <QObject>
#include <QString>

class QDataStream;

/// The vocabulary that the library, the host and every plugin share.
///
/// The numbers are fixed: packets of the game server and stored streams hold them. Each enumeration is an `int`
/// underneath, so that any number read from outside is a valid, if unknown, value of it. In QML the enumerators are
/// reached as `GlobalDefines.MONEYTYPE_DOLLAR` once RegisterQML() was called.
class PLUGININTERFACE_EXPORT GlobalDefines : public QObject
{
    Q_OBJECT
    // For the description that QML tools read; the type itself is registered by RegisterQML().
    Q_CLASSINFO("QML.Element", "GlobalDefines")

public:
    /// An amount in the smallest unit of its MoneyType: hundredths, but whole chips for MONEYTYPE_PLAY and
    /// MONEYTYPE_TOURN.
    using MoneyValue = unsigned int;

    /// ASCII codes of the server's one-letter money code.
    enum MoneyType : int {
        MONEYTYPE_DOLLAR = 'R',
        MONEYTYPE_PLAY = 'P',
        MONEYTYPE_EURO = 'E',
        MONEYTYPE_TOURN = 'T',
        MONEYTYPE_POINTS = 'S',
        MONEYTYPE_UNKNOWN = '-',
    };
    Q_ENUM(MoneyType)

    /// ASCII codes of the server's one-letter limit code.
    enum LimitType : int {
        LT_NO_LIMIT = 'N',
        LT_POT_LIMIT = 'P',
        LT_FIXED_LIMIT = 'F',
    };
    Q_ENUM(LimitType)

    /// ASCII codes of the server's one-letter table code.
    enum TableType : int {
        TT_NORMAL = 'N',
        TT_PRIVATE = 'P',
        TT_RESTRICTED = 'R',
        TT_TOURNAMENT = 'T',
        TT_SITANDGO = 'S',
    };
    Q_ENUM(TableType)

    /// Games; for the server's four letters see Globals::GetGameType().
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

    /// How a table came to be opened; single bits.
    enum TableConnectTypes : int {
        TCT_Standard = 1,
        TCT_Reseated = 2,
        TCT_SeatMe = 4,
    };
    Q_ENUM(TableConnectTypes)

    /// How far a tournament is, in the server's numbers.
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

    /// Kinds of tournaments, in the server's numbers.
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

    /// How a countdown is written.
    enum CountdownStringType : int {
        CST_Normal = 0,
        CST_MinAndSecs = 1,
        CST_Seconds = 2,
    };
    Q_ENUM(CountdownStringType)

    /// In which directions a window lies outside the screen; used as QFlags.
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

/// Reads one signed 32-bit integer straight into the enumeration: whatever number the stream holds, without a
/// range check, and 0 at the stream's end. Writing an enumeration needs no operator of its own.
/// @{
PLUGININTERFACE_EXPORT QDataStream &operator>>(QDataStream &stream, GlobalDefines::MoneyType &value);
PLUGININTERFACE_EXPORT QDataStream &operator>>(QDataStream &stream, GlobalDefines::LimitType &value);
PLUGININTERFACE_EXPORT QDataStream &operator>>(QDataStream &stream, GlobalDefines::TableType &value);
PLUGININTERFACE_EXPORT QDataStream &operator>>(QDataStream &stream, GlobalDefines::GameType &value);
/// @}

/// Free functions of several headers. What those of a header have in common, their thread above all, stands with the
/// file; those of plugin/GlobalDefines.h turn the shared enumerations into server codes and translation keys, and
/// back, have no state, and may be called from any thread.
namespace Globals {

/// The money type of a server letter, MONEYTYPE_UNKNOWN for a letter that is none.
PLUGININTERFACE_EXPORT GlobalDefines::MoneyType GetMoneyType(char letter);
/// The limit of a server letter, LT_NO_LIMIT for a letter that is none.
PLUGININTERFACE_EXPORT GlobalDefines::LimitType GetLimitType(char letter);
/// The table type of a server letter, TT_NORMAL for a letter that is none.
PLUGININTERFACE_EXPORT GlobalDefines::TableType GetTableType(char letter);
/// The game of a server code. Case and everything behind the fourth character are ignored; an unknown code is
/// GT_HOLDEM.
PLUGININTERFACE_EXPORT GlobalDefines::GameType GetGameType(const QString &code);
/// Writes the server code of \a type, exactly four letters without a terminator, to \a code. An unknown game leaves
/// the buffer as it is.
PLUGININTERFACE_EXPORT void GetGameType(GlobalDefines::GameType type, char *code);

/// Translation key of a game's name, empty for an unknown game.
PLUGININTERFACE_EXPORT QString GetGameNameKey(GlobalDefines::GameType type);
/// The same for a server code, where an unknown code reads as Hold'em.
PLUGININTERFACE_EXPORT QString GetGameNameKey(QString code);
/// Translation key of a limit, in its long or short form; empty for an unknown limit.
PLUGININTERFACE_EXPORT QString GetLimitKey(GlobalDefines::LimitType limit, bool shortForm);
/// The same for the server's letter.
PLUGININTERFACE_EXPORT QString GetLimitKey(QChar letter, bool shortForm);
/// Translation key of a month, 1 to 12; empty for any other number.
PLUGININTERFACE_EXPORT QString GetMonthKey(int month);
/// Translation key of a GlobalDefines::TournamentStatus. Transitional statuses read as the one a player knows;
/// "UNKNOWN" for any other number.
PLUGININTERFACE_EXPORT QString GetTournamentStatusLongKey(int status);

/// English name of a game with its limit, such as "NL Hold'em". It is not translated. Fixed and unknown limits have
/// no prefix, an unknown game has no name.
PLUGININTERFACE_EXPORT QString GetUntranslatedGameName(GlobalDefines::GameType type, GlobalDefines::LimitType limit);

} // namespace Globals
