#pragma once

#include <Export.h>
#include <money/MoneySpinner.h>
#include <plugin/GlobalDefines.h>

#include <QObject>
#include <QSharedPointer>
#include <QString>

#include <array>

/// Information about the whole casino: how much is going on, the bad beat jackpot, and what kind of casino the
/// operator has set up.
///
/// The host sets the counts and the jackpot. The operator's settings are read when the object is created and never
/// change; see also InitCasinoInfo(). The databases of CConfig, CSettings and CTranslation must be initialised. Main
/// thread.
class PLUGININTERFACE_EXPORT CCasinoInfo : public QObject
{
    Q_OBJECT

    /// The properties for QML. Each is described at its getter.
    /// @{
    Q_PROPERTY(int currentPlayers READ GetPokerPlayerCount NOTIFY signal_CurrentPlayersChanged)
    Q_PROPERTY(int currentTables READ GetPokerTableCount NOTIFY signal_CurrentTablesChanged)
    Q_PROPERTY(int currentTournaments READ GetPokerTournamentCount NOTIFY signal_CurrentTournamentsChanged)
    Q_PROPERTY(bool usesJackpot READ UsesJackpot NOTIFY signal_usesJackpotChanged)
    Q_PROPERTY(int jackpotValue READ GetBadBeatJackpotValue NOTIFY signal_BadBeatJackpotChanged)
    Q_PROPERTY(QString jackpotCurrency READ GetBadBeatJackpotCurrency NOTIFY signal_BadBeatJackpotCurrencyChanged)
    Q_PROPERTY(QString jackpotLink READ GetBadBeatJackpotLink CONSTANT)
    Q_PROPERTY(bool hasJackpotLink READ HasBadBeatJackpotLink CONSTANT)
    Q_PROPERTY(bool playmoneyOnly READ IsPlaymoneyOnly NOTIFY signal_IsPlaymoneyOnlyChanged)
    Q_PROPERTY(bool upgradeAvailable READ IsUpgradeAvailable NOTIFY signal_IsUpgradeAvailableChanged)
    Q_PROPERTY(bool showPlayerAndTableCounts READ IsShowPlayerAndTableCounts CONSTANT)
    Q_PROPERTY(QObject *jackpotSpinner READ GetBadBeatJackpotSpinner CONSTANT)
    /// @}

public:
    /// Constructs an object in addition to the shared one.
    explicit CCasinoInfo(QObject *parent = nullptr);
    ~CCasinoInfo() override;

    /// Returns the object, creating it on first use; the library owns it.
    static CCasinoInfo *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Destroys the object at the next turn of the event loop.
    static void DestroyInstance();

    /// Reads the rating tables and creates the user's folder in the documents. A folder with the casino's former name
    /// is moved there. The host calls this once.
    void InitCasinoInfo();

    /// The number of players, tables or tournaments in the whole casino. The setters emit the change signal if the
    /// number differs.
    /// @{
    unsigned int GetPokerPlayerCount() const;
    void SetPokerPlayerCount(unsigned int count);
    unsigned int GetPokerTableCount() const;
    void SetPokerTableCount(unsigned short count);
    unsigned int GetPokerTournamentCount() const;
    void SetPokerTournamentCount(unsigned short count);
    /// @}

    /// Sets the bad beat jackpot. \a moneyCode is the server's letter for a money type, \a value is in the smallest
    /// unit of that type.
    void SetBadBeatJackpot(char moneyCode, unsigned int value);
    /// Returns the jackpot in the smallest unit of its money type; 0 until the host has set it.
    unsigned int GetBadBeatJackpotValue() const;
    /// Returns the money type of the jackpot; MONEYTYPE_EURO until the host has set it.
    GlobalDefines::MoneyType GetBadBeatJackpotMoneyType() const;
    /// Returns the currency sign of the jackpot.
    QString GetBadBeatJackpotCurrency() const;
    /// Returns the jackpot for the screen, with its sign and in groups of three digits.
    QString BadBeatJackpotToString() const;
    /// Returns the operator's page about the jackpot, the configuration's `link_bbj`; empty if there is none.
    QString GetBadBeatJackpotLink() const;
    /// Returns whether the operator has a page about the jackpot.
    bool HasBadBeatJackpotLink() const;
    /// Returns the display that runs to each new jackpot value. It lives as long as this object.
    CMoneySpinner *GetBadBeatJackpotSpinner();

    /// Returns whether the operator shows a jackpot.
    bool UsesJackpot() const;
    /// Returns whether the operator has no real money.
    bool IsPlaymoneyOnly() const;
    /// Returns whether the operator has a page that turns a play money account into a real money one.
    bool IsUpgradeAvailable() const;
    /// Returns whether the operator allows counts of players, tables and tournaments to be shown.
    bool IsShowPlayerAndTableCounts() const;

    /// Returns a cell of the rating table. \a row is a rating from 0 to 5, \a column is 0 or 1; neither is checked.
    /// All cells are 0 before InitCasinoInfo().
    unsigned char GetRatingSetting(unsigned char row, unsigned char column) const;
    /// Returns a cell of the table of rating warnings, like GetRatingSetting().
    unsigned char GetRatingWarningSetting(unsigned char row, unsigned char column) const;

    /// Returns the path of the user's folder in the documents; empty without a login and before InitCasinoInfo().
    QString GetPersonalDirPath() const;

Q_SIGNALS:
    /// Emitted when the jackpot's amount has changed.
    void signal_BadBeatJackpotChanged(unsigned int value);
    /// Emitted when the jackpot's currency has changed, before a new amount is signalled.
    void signal_BadBeatJackpotCurrencyChanged(GlobalDefines::MoneyType type);
    /// Never emitted by the library, because the operator's settings don't change.
    /// @{
    void signal_usesJackpotChanged();
    void signal_IsPlaymoneyOnlyChanged();
    void signal_IsUpgradeAvailableChanged();
    /// @}
    /// Emitted when the number has changed.
    /// @{
    void signal_CurrentPlayersChanged();
    void signal_CurrentTablesChanged();
    void signal_CurrentTournamentsChanged();
    /// @}

private:
    static constexpr int RATINGS = 6;
    using TRatingTable = std::array<std::array<unsigned char, 2>, RATINGS>;

    void InitRatingSettings();
    void InitPersonalDirPath();
    static TRatingTable ReadRatingTable(const TRatingTable &builtIn, const QString &text);

    unsigned int m_ulPokerPlayerCount = 0;
    unsigned short m_usPokerTableCount = 0;
    unsigned short m_usPokerTournamentCount = 0;
    GlobalDefines::MoneyType m_mtBadBeatJackpot = GlobalDefines::MONEYTYPE_EURO;
    unsigned int m_ulBadBeatJackpot = 0;
    bool m_bUsesJackpot;
    QString m_strBadBeatJackpotLink;
    CMoneySpinner m_BadBeatJackpotSpinner;
    bool m_bPlaymoneyOnly;
    bool m_bUpgradeAvailable;
    TRatingTable m_aucRatingSettings{};
    TRatingTable m_aucRatingWarningSettings{};
    QString m_strPersonalDirPath;
    bool m_bShowPlayerAndTableCounts;

    static QSharedPointer<CCasinoInfo> m_Instance;
};
