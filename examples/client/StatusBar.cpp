#include "StatusBar.h"

#include "Host.h"
#include "TransferView.h"

#include <common/FormField.h>
#include <common/QuickView.h>
#include <models/CasinoInfo.h>
#include <models/UserInfo.h>
#include <money/MoneySpinnerWidget.h>
#include <money/MoneyStrings.h>
#include <time/CasinoTime.h>

#include <QHBoxLayout>
#include <QMainWindow>
#include <QStatusBar>
#include <QToolButton>

namespace {

// Keys of texts by EConnectionState.
constexpr const char *STATE_KEYS[] = {"CONNECTION_NONE", "CONNECTION_CONNECTING", "CONNECTION_CONNECTED",
                                      "CONNECTION_RECONNECTING"};

// Creates the view of the bad beat jackpot, hidden until the game server has sent it.
QWidget *CreateJackpot(QWidget *parent)
{
    CCasinoInfo *info = CCasinoInfo::GetInstance();
    auto *view = new QWidget(parent);
    auto *title = new QLabel(view);
    Texts::Bind(title, &QLabel::setText, "JACKPOT");
    auto *digits = new CMoneySpinnerWidget(info->GetBadBeatJackpotSpinner(), view);
    digits->setStyleSheet(QStringLiteral("font-weight: bold")); // a font would go with the brand's next style sheet
    auto *layout = new QHBoxLayout(view);
    layout->setContentsMargins(0, 0, view->fontMetrics().averageCharWidth(), 0);
    layout->addWidget(title);
    layout->addWidget(digits);
    view->setVisible(info->GetBadBeatJackpotValue() > 0);
    QObject::connect(info, &CCasinoInfo::signal_BadBeatJackpotChanged, view, &QWidget::show);
    // The spinner keeps the sign of the language in which it was set.
    QObject::connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, view, [info] {
        info->GetBadBeatJackpotSpinner()->slot_SetMoneyType(info->GetBadBeatJackpotMoneyType());
    });
    return view;
}

QString MoneyText()
{
    const CUserInfo *user = CUserInfo::GetInstance();
    if (!user->IsLoggedIn())
        return QString();
    return Texts::Get(
        "CASHIER", {{"#real#", Globals::MoneyToString(user->GetAccountCurrency(), user->GetRealMoney(), true)},
                    {"#play#", Globals::MoneyToString(GlobalDefines::MONEYTYPE_PLAY, user->GetPlayMoney(), true)}});
}

// Until the server has sent its time, the clock has no time of day.
QString ClockText()
{
    const CCasinoTime *clock = CCasinoTime::GetInstance();
    const bool known = clock->GetTimeUTCServer() != 0;
    return known ? clock->GetTimeString() + QLatin1Char(' ') + clock->GetTimezoneString() : QString();
}

// Creates the line with the user's money, or a way to log in; in QML it also shows the content of \a account, which
// is hidden then.
QWidget *CreateAccountLine(QWidget *parent, CHost &host, QWidget *account)
{
    auto *widgets = new QWidget(parent);
    auto *logIn = CreateField<QToolButton>(widgets, "logInButton");
    Texts::Bind(logIn, &QToolButton::setText, "LOGIN_TITLE");
    logIn->setFocusPolicy(Qt::StrongFocus);
    QObject::connect(logIn, &QToolButton::clicked, &host, &CHost::signal_LoginRequested);
    auto *money = CreateField<QLabel>(widgets, "cashier");
    const int gap = parent->fontMetrics().averageCharWidth();
    auto *row = new QHBoxLayout(widgets);
    row->setContentsMargins(0, 0, gap, gap);
    row->addWidget(logIn);
    row->addWidget(money);
    const auto show = [=] {
        const bool isLoggedIn = CUserInfo::GetInstance()->IsLoggedIn();
        logIn->setHidden(isLoggedIn);
        money->setVisible(isLoggedIn);
        money->setText(MoneyText());
    };
    Texts::Follow(money, show, CUserInfo::GetInstance(), &CUserInfo::signal_LoginStateChanged,
                  &CUserInfo::signal_RealMoneyChanged, &CUserInfo::signal_PlayMoneyChanged,
                  &CUserInfo::signal_AccountCurrencyChanged);
    auto *line = new CQuickView(widgets, QUrl(QStringLiteral("qrc:/client/AccountLine.qml")),
                                {{QStringLiteral("host"), QVariant::fromValue<QObject *>(&host)}}, parent);
    QObject::connect(line, &CQuickView::signal_QuickShown, account, &QWidget::setHidden);
    account->setHidden(line->IsQuickShown());
    return line;
}

} // namespace

QWidget *CreateStatus(QMainWindow *window, CHost &host)
{
    auto *connection = CreateField<QLabel>(window, "connectionState");
    const auto showState = [=, &host] {
        const CServerLink &link = host.GetServerLink();
        connection->setText(Texts::Get(STATE_KEYS[link.GetState()], {{"#address#", link.GetAddress()}}));
    };
    Texts::Follow(connection, showState, &host, &CHost::signal_ConnectionStateChanged);

    auto *account = new QWidget(window);
    auto *user = CreateField<QLabel>(account, "user");
    user->setTextFormat(Qt::PlainText); // users choose their nicknames
    const CUserInfo *info = CUserInfo::GetInstance();
    const auto showUser = [=] { user->setText(info->IsLoggedIn() ? info->GetNickname() : Texts::Get("USER_NONE")); };
    Texts::Follow(user, showUser, info, &CUserInfo::signal_LoginStateChanged);
    auto *layout = new QHBoxLayout(account);
    const int gap = window->fontMetrics().averageCharWidth();
    layout->setContentsMargins(gap, 0, gap, 0);
    if (CCasinoInfo::GetInstance()->UsesJackpot())
        layout->addWidget(CreateJackpot(account));
    layout->addWidget(user);

    auto *clock = CreateField<QLabel>(window, "clock");
    Texts::Follow(
        clock, [=] { clock->setText(ClockText()); }, CCasinoTime::GetInstance(),
        &CCasinoTime::signal_TimeStringChanged, &CCasinoTime::signal_ServerTimeChanged,
        &CCasinoTime::signal_TimeZoneChanged);
    window->statusBar()->addPermanentWidget(connection); // no message hides it
    window->statusBar()->addPermanentWidget(CreateTransferView(window));
    window->statusBar()->addPermanentWidget(account);
    window->statusBar()->addPermanentWidget(clock);
    Q_INIT_RESOURCE(client); // of a static library
    return CreateAccountLine(window, host, account);
}
