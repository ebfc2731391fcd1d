#pragma once

#include <Export.h>
#include <money/MoneySpinner.h>
#include <plugin/GlobalDefines.h>

#include <QObject>
#include <QSharedPointer>
#include <QString>

#include <array>

/// What is true of the casino rather than of a player: how much is going on, the bad beat jackpot, and what kind of
/// casino the operator has set up.
///
/// The host feeds counts and jackpot. The operator's part is read when the object is created and stays; see also
/// InitCasinoInfo(). Needs the databases of CConfig, CSettings and CTranslation. Main thread.
class PLUGININTERFACE_EXPORT CCasinoInfo : public QObject
{
    Q_OBJECT

    /// For QML, each as its getter says.
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
    /// Makes an object beside the shared one.
    explicit CCasinoInfo(QObject *parent = nullptr);
    ~CCasinoInfo() override;

    /// Creates the object on first use; the library owns it.
    static CCasinoInfo *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// The object ends at the next turn of the event loop.
    static void DestroyInstance();

    /// For the host, once: reads the rating tables, and makes the user's folder in the documents, to which it moves
    /// the one that bears the casino's former name.
    void InitCasinoInfo();

    /// How much is going on in the whole casino. A setter signals a number that differs.
    /// @{
    unsigned int GetPokerPlayerCount() const;
    void SetPokerPlayerCount(unsigned int count);
    unsigned int GetPokerTableCount() const;
    void SetPokerTableCount(unsigned short count);
    unsigned int GetPokerTournamentCount() const;
    void SetPokerTournamentCount(unsigned short count);
    /// @}

    /// \a moneyCode is the server's letter of a money type, \a value in its smallest unit.
    void SetBadBeatJackpot(char moneyCode, unsigned int value);
    /// In the smallest unit of its type; 0 until the host has set one.
    unsigned int GetBadBeatJackpotValue() const;
    /// MONEYTYPE_EURO until the host has set one.
    GlobalDefines::MoneyType GetBadBeatJackpotMoneyType() const;
    /// The currency's sign.
    QString GetBadBeatJackpotCurrency() const;
    /// The amount for the screen, with its sign and in groups of three digits.
    QString BadBeatJackpotToString() const;
    /// The operator's page about it, the configuration's `link_bbj`; empty if there is none.
    QString GetBadBeatJackpotLink() const;
    /// Whether the operator has such a page.
    bool HasBadBeatJackpotLink() const;
    /// The display that runs to each new value. It lives as long as this object.
    CMoneySpinner *GetBadBeatJackpotSpinner();

    /// Whether the operator shows a jackpot.
    bool UsesJackpot() const;
    /// Whether the operator has no real money.
    bool IsPlaymoneyOnly() const;
    /// Whether the operator has a page on which an account for play money becomes one for real money.
    bool IsUpgradeAvailable() const;
    /// Whether the operator lets the counts above be shown.
    bool IsShowPlayerAndTableCounts() const;

    /// A cell of a rating table: \a row is a rating from 0 to 5, \a column 0 or 1; neither is checked. All cells are
    /// 0 before InitCasinoInfo().
    unsigned char GetRatingSetting(unsigned char row, unsigned char column) const;
    /// The same of the table of warnings.
    unsigned char GetRatingWarningSetting(unsigned char row, unsigned char column) const;

    /// The user's folder in the documents; empty without a login, and before InitCasinoInfo().
    QString GetPersonalDirPath() const;

Q_SIGNALS:
    /// Another amount.
    void signal_BadBeatJackpotChanged(unsigned int value);
    /// Another currency; the amount that belongs to it comes next.
    void signal_BadBeatJackpotCurrencyChanged(GlobalDefines::MoneyType type);
    /// Never emitted by the library: what the operator has set up stays.
    /// @{
    void signal_usesJackpotChanged();
    void signal_IsPlaymoneyOnlyChanged();
    void signal_IsUpgradeAvailableChanged();
    /// @}
    /// Another number than before.
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
