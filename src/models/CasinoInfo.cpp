#include "CasinoInfo.h"

#include <Singleton_p.h>
#include <files/FileFunctions.h>
#include <files/Pathes.h>
#include <files/PrivateFiles_p.h>
#include <models/UserInfo.h>
#include <money/MoneyStrings.h>
#include <settings/Config.h>
#include <settings/Settings.h>

#include <QDir>
#include <QStringList>

PLUGININTERFACE_DEFINE_SINGLETON(CCasinoInfo);

namespace {

constexpr int MONEY_TYPE_PLAY_ONLY = 1; // value of the configuration's `moneytype`

} // namespace

CCasinoInfo::CCasinoInfo(QObject *parent)
    : QObject(parent)
    , m_bUsesJackpot(CConfig::GetInstance()->GetDisplayBadBeatJackpot())
    , m_strBadBeatJackpotLink(CConfig::GetInstance()->GetLinkBBJ())
    , m_BadBeatJackpotSpinner(0, GlobalDefines::MONEYTYPE_EURO)
    , m_bPlaymoneyOnly(CConfig::GetInstance()->GetMoneyType() == MONEY_TYPE_PLAY_ONLY)
    , m_bUpgradeAvailable(!CConfig::GetInstance()->GetLinkUpgradeAccount().isEmpty())
    , m_bShowPlayerAndTableCounts(CConfig::GetInstance()->GetShowPlayerAndTableCounts())
{
}

CCasinoInfo::~CCasinoInfo() = default;

void CCasinoInfo::InitCasinoInfo()
{
    InitRatingSettings();
    InitPersonalDirPath();
}

unsigned int CCasinoInfo::GetPokerPlayerCount() const
{
    return m_ulPokerPlayerCount;
}

void CCasinoInfo::SetPokerPlayerCount(unsigned int count)
{
    if (m_ulPokerPlayerCount == count)
        return;
    m_ulPokerPlayerCount = count;
    Q_EMIT signal_CurrentPlayersChanged();
}

unsigned int CCasinoInfo::GetPokerTableCount() const
{
    return m_usPokerTableCount;
}

void CCasinoInfo::SetPokerTableCount(unsigned short count)
{
    if (m_usPokerTableCount == count)
        return;
    m_usPokerTableCount = count;
    Q_EMIT signal_CurrentTablesChanged();
}

unsigned int CCasinoInfo::GetPokerTournamentCount() const
{
    return m_usPokerTournamentCount;
}

void CCasinoInfo::SetPokerTournamentCount(unsigned short count)
{
    if (m_usPokerTournamentCount == count)
        return;
    m_usPokerTournamentCount = count;
    Q_EMIT signal_CurrentTournamentsChanged();
}

void CCasinoInfo::SetBadBeatJackpot(char moneyCode, unsigned int value)
{
    const GlobalDefines::MoneyType type = Globals::GetMoneyType(moneyCode);
    m_BadBeatJackpotSpinner.slot_SetMoneyType(type);
    m_BadBeatJackpotSpinner.slot_SetValue(value);
    if (m_mtBadBeatJackpot != type) {
        m_mtBadBeatJackpot = type;
        Q_EMIT signal_BadBeatJackpotCurrencyChanged(type);
    }
    if (m_ulBadBeatJackpot != value) {
        m_ulBadBeatJackpot = value;
        Q_EMIT signal_BadBeatJackpotChanged(value);
    }
}

unsigned int CCasinoInfo::GetBadBeatJackpotValue() const
{
    return m_ulBadBeatJackpot;
}

GlobalDefines::MoneyType CCasinoInfo::GetBadBeatJackpotMoneyType() const
{
    return m_mtBadBeatJackpot;
}

QString CCasinoInfo::GetBadBeatJackpotCurrency() const
{
    return Globals::MoneyTypeToString(m_mtBadBeatJackpot);
}

QString CCasinoInfo::BadBeatJackpotToString() const
{
    return Globals::MoneyToString(m_mtBadBeatJackpot, m_ulBadBeatJackpot, true);
}

QString CCasinoInfo::GetBadBeatJackpotLink() const
{
    return m_strBadBeatJackpotLink;
}

bool CCasinoInfo::HasBadBeatJackpotLink() const
{
    return !m_strBadBeatJackpotLink.isEmpty();
}

CMoneySpinner *CCasinoInfo::GetBadBeatJackpotSpinner()
{
    return &m_BadBeatJackpotSpinner;
}

bool CCasinoInfo::UsesJackpot() const
{
    return m_bUsesJackpot;
}

bool CCasinoInfo::IsPlaymoneyOnly() const
{
    return m_bPlaymoneyOnly;
}

bool CCasinoInfo::IsUpgradeAvailable() const
{
    return m_bUpgradeAvailable;
}

bool CCasinoInfo::IsShowPlayerAndTableCounts() const
{
    return m_bShowPlayerAndTableCounts;
}

unsigned char CCasinoInfo::GetRatingSetting(unsigned char row, unsigned char column) const
{
    return m_aucRatingSettings[row][column];
}

unsigned char CCasinoInfo::GetRatingWarningSetting(unsigned char row, unsigned char column) const
{
    return m_aucRatingWarningSettings[row][column];
}

QString CCasinoInfo::GetPersonalDirPath() const
{
    return CUserInfo::GetInstance()->IsLoggedIn() ? m_strPersonalDirPath : QString();
}

void CCasinoInfo::InitRatingSettings()
{
    constexpr TRatingTable settings{{{0, 5}, {0, 4}, {1, 3}, {2, 2}, {3, 1}, {4, 0}}};
    constexpr TRatingTable warnings{{{0, 5}, {1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}}};
    const CConfig *config = CConfig::GetInstance();
    m_aucRatingSettings = ReadRatingTable(settings, config->GetTableRating());
    m_aucRatingWarningSettings = ReadRatingTable(warnings, config->GetTableRatingWarning());
}

void CCasinoInfo::InitPersonalDirPath()
{
    CSettings *settings = CSettings::GetInstance();
    const QString former = settings->GetPersonalDirPath();
    const QString path = Pathes::PersonalDir() + QLatin1Char('/') + CConfig::GetInstance()->GetProductname();
    QString error; // ignored: if the old folder can't be moved, the user keeps it
    if (!former.isEmpty() && former != path && QDir(former).exists())
        FileFunctions::MoveDir(former, path, error);
    PrivateFiles::MakeFolder(path);
    m_strPersonalDirPath = path;
    if (former != path)
        settings->SetPersonalDirPath(path, this, true);
}

// The text is a list such as "0,(0,5),1,(0,4)": the number of a row, and its two values in brackets. Values that
// can't be read are 0; invalid rows and values that don't fit are skipped.
CCasinoInfo::TRatingTable CCasinoInfo::ReadRatingTable(const TRatingTable &builtIn, const QString &text)
{
    TRatingTable table = builtIn;
    const QStringList items = text.split(QLatin1Char(')'));
    for (const QString &item : items) {
        const QStringList pieces = item.split(QLatin1Char('('));
        if (pieces.size() < 2)
            continue;
        bool good = false;
        const unsigned int row = QString(pieces.at(0)).remove(QLatin1Char(',')).toUInt(&good);
        const QString &values = pieces.at(1);
        const auto comma = values.indexOf(QLatin1Char(','));
        const int first = values.left(comma).toInt();
        const int second = values.mid(comma + 1).toInt();
        const auto fits = [](int value) { return value >= 0 && value <= 255; };
        if (good && row < RATINGS && comma >= 0 && fits(first) && fits(second))
            table[row] = {static_cast<unsigned char>(first), static_cast<unsigned char>(second)};
    }
    return table;
}
