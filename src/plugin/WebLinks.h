#pragma once

#include <QMetaType>

/// The web pages that the host can open, or for which it can get a web session.
namespace WebLinks {

/// The pages. A page is sent as four bytes in the event "P2ME" "WLID". The library passes on any value, known or not.
/// The operator determines the address of a page. A released number is never given to another page.
enum id : qint32 {
    NoPage = 0,

    // The operator's site.
    Website = 1,
    SignUp = 2,
    Login = 3,
    ForgotPassword = 4,
    UpgradeAccount = 5,
    TellAFriend = 6,
    TellAFriendConditions = 7,
    News = 8,
    Newsletter = 9,
    NewsletterArchive = 10,
    NewsTournaments = 11,
    Announcement = 12,

    // The account.
    MyAccount = 13,
    ChangePassword = 14,
    ChangeEmail = 15,
    HandHistoryOverview = 16,
    GameHistory = 17,
    Cashier = 18,
    Deposit = 19,
    CashOut = 20,
    UploadCustomAvatar = 21,

    // Rules and help.
    GeneralRules = 22,
    HoldemRules = 23,
    OmahaRules = 24,
    OmahaHiLoRules = 25,
    SevenCardRules = 26,
    TournamentRules = 27,
    Faq = 28,
    ContactUs = 29,
    LiveSupport = 30,
    SiteMap = 31,
    NetworkStatus = 32,

    // About the operator.
    AboutUs = 33,
    FairGames = 34,
    Licence = 35,
    Privacy = 36,
    Security = 37,

    // Sessions for the synchronisation of settings; no page is shown for them.
    SettingsSyncFetch = 38, ///< The first request after a login.
    SettingsSyncSend = 39,  ///< Sending local changes.

    Terms = 40,

    // Play and community.
    BadBeatJackpot = 41,
    Tournament = 42,
    TournamentPrizes = 43,
    TournamentLevels = 44,
    PlayerClub = 45,
    PlayerClubConditions = 46,
    CommunityEvents = 47,
    CommunityLogin = 48,
    CommunityForum = 49,
};

} // namespace WebLinks

Q_DECLARE_METATYPE(WebLinks::id)
