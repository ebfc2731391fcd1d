#include "WebPages.h"

#include <common/Note.h>
#include <settings/Config.h>

#include <QDesktopServices>
#include <QHash>
#include <QUrl>

namespace {

using TGetter = const QString &(CConfigBase::*)() const;

const QHash<int, TGetter> GETTERS{{WebLinks::Website, &CConfig::GetLinkWebsite},
                                  {WebLinks::SignUp, &CConfig::GetLinkSignUp},
                                  {WebLinks::Login, &CConfig::GetLinkLogin},
                                  {WebLinks::ForgotPassword, &CConfig::GetLinkForgotPwd},
                                  {WebLinks::UpgradeAccount, &CConfig::GetLinkUpgradeAccount},
                                  {WebLinks::TellAFriend, &CConfig::GetLinkTellAFriend},
                                  {WebLinks::TellAFriendConditions, &CConfig::GetLinkTellAFriendConditions},
                                  {WebLinks::News, &CConfig::GetLinkNews},
                                  {WebLinks::Newsletter, &CConfig::GetLinkNewsNewsletter},
                                  {WebLinks::NewsletterArchive, &CConfig::GetLinkNewsNewsletterArchiv},
                                  {WebLinks::NewsTournaments, &CConfig::GetLinkNewsTournaments},
                                  {WebLinks::Announcement, &CConfig::GetLinkAnnouncement},
                                  {WebLinks::MyAccount, &CConfig::GetLinkGotoMyAccount},
                                  {WebLinks::ChangePassword, &CConfig::GetLinkMyAccountChangePwd},
                                  {WebLinks::ChangeEmail, &CConfig::GetLinkMyAccountChangeEmail},
                                  {WebLinks::HandHistoryOverview, &CConfig::GetLinkMyAccountHandHistoryOverview},
                                  {WebLinks::GameHistory, &CConfig::GetLinkGameHistory},
                                  {WebLinks::Cashier, &CConfig::GetLinkCashier},
                                  {WebLinks::Deposit, &CConfig::GetLinkDeposit},
                                  {WebLinks::CashOut, &CConfig::GetLinkCashout},
                                  {WebLinks::UploadCustomAvatar, &CConfig::GetLinkUploadCustomAvatar},
                                  {WebLinks::GeneralRules, &CConfig::GetLinkGamerulesGeneral},
                                  {WebLinks::HoldemRules, &CConfig::GetLinkGamerulesHoldem},
                                  {WebLinks::OmahaRules, &CConfig::GetLinkGamerulesOmaha},
                                  {WebLinks::OmahaHiLoRules, &CConfig::GetLinkGamerulesOmahaHiLo},
                                  {WebLinks::SevenCardRules, &CConfig::GetLinkGamerules7card},
                                  {WebLinks::TournamentRules, &CConfig::GetLinkGamerulesTournaments},
                                  {WebLinks::Faq, &CConfig::GetLinkHelpFaq},
                                  {WebLinks::ContactUs, &CConfig::GetLinkHelpContactUs},
                                  {WebLinks::LiveSupport, &CConfig::GetLinkLiveSupport},
                                  {WebLinks::SiteMap, &CConfig::GetLinkHelpSitemap},
                                  {WebLinks::NetworkStatus, &CConfig::GetLinknetstatus},
                                  {WebLinks::AboutUs, &CConfig::GetLinkInfoAboutUs},
                                  {WebLinks::FairGames, &CConfig::GetLinkAboutUsFairGames},
                                  {WebLinks::Licence, &CConfig::GetLinkAboutUsLicence},
                                  {WebLinks::Privacy, &CConfig::GetLinkAboutUsPrivacy},
                                  {WebLinks::Security, &CConfig::GetLinkAboutUsSecurity},
                                  {WebLinks::Terms, &CConfig::GetLinkAboutUsTerms},
                                  {WebLinks::BadBeatJackpot, &CConfig::GetLinkBBJ},
                                  {WebLinks::Tournament, &CConfig::GetLinkTournament},
                                  {WebLinks::TournamentPrizes, &CConfig::GetLinkTrnPrizes},
                                  {WebLinks::TournamentLevels, &CConfig::GetLinkTrnLevels},
                                  {WebLinks::PlayerClub, &CConfig::GetLinkPlayerClub},
                                  {WebLinks::PlayerClubConditions, &CConfig::GetLinkPlayerClubConditions},
                                  {WebLinks::CommunityEvents, &CConfig::GetLinkCommunityEvents},
                                  {WebLinks::CommunityLogin, &CConfig::GetLinkCommunityLogin},
                                  {WebLinks::CommunityForum, &CConfig::GetLinkCommunityForum}};

} // namespace

QString WebPages::GetAddress(WebLinks::id page)
{
    const TGetter getter = GETTERS.value(page);
    return getter ? (CConfig::GetInstance()->*getter)() : QString();
}

void WebPages::Open(const QUrl &address)
{
    if (!QDesktopServices::openUrl(address))
        Note(QStringLiteral("The desktop has no program for %1").arg(address.toString()), CConsole::MC_General);
}
