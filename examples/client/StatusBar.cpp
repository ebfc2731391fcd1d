#include "StatusBar.h"

#include "Host.h"
#include "TransferView.h"

#include <common/FormField.h>
#include <common/QuickView.h>
#include <models/CasinoInfo.h>
#include <models/UserInfo.h>
#include <money/MoneySpinner.h>
#include <money/MoneySpinnerWidget.h>
#include <money/MoneyStrings.h>
#include <time/CasinoTime.h>

#include <QHBoxLayout>
#include <QMainWindow>
#include <QPainter>
#include <QPushButton>
#include <QRegularExpression>
#include <QStatusBar>
#include <QTimer>
#include <QToolButton>

namespace {

// Keys of texts by EConnectionState.
constexpr const char *STATE_KEYS[] = {"CONNECTION_NONE", "CONNECTION_CONNECTING", "CONNECTION_CONNECTED",
                                      "CONNECTION_RECONNECTING"};
constexpr QRgb STATE_COLOURS[] = {0xff8b9196, 0xffd9a02b, 0xff2f9a5c, 0xffc94a3d};
constexpr int OFFLINE_MS = 1000;
const QRegularExpression NOT_ZERO(QStringLiteral("[1-9]"));
const QStringList CENTS_REPLACE{QStringLiteral("D7"), QStringLiteral("TS2"), QStringLiteral("D6")};

// Returns a disc, as high as a letter.
QPixmap MakeDot(QRgb colour, const QWidget *view)
{
    const int size = view->fontMetrics().capHeight();
    QPixmap dot(QSize(size, size) * view->devicePixelRatioF());
    dot.setDevicePixelRatio(view->devicePixelRatioF());
    dot.fill(Qt::transparent);
    QPainter painter(&dot);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(colour));
    painter.drawEllipse(0, 0, size, size);
    return dot;
}

// Hides the digits before the first one that counts, all of which are zero: no other amount has them.
void HideLeadingZeros(const QWidget *view, const CMoneySpinner *spinner)
{
    bool counts = false;
    for (const char *place : {"D7", "TS2", "D6", "D5", "D4", "TS", "D3", "D2", "D1"}) {
        const QLatin1String name(place);
        counts = counts || view->findChild<QLabel *>(QLatin1String("LB_") + name)->text().contains(NOT_ZERO);
        const bool isShown = counts || name == QLatin1String("D1");
        const bool isHidden = spinner->GetShowComma() && CENTS_REPLACE.contains(name);
        view->findChild<QFrame *>(QLatin1String("F_") + name)->setVisible(isShown && !isHidden);
    }
}

// Creates the view of the bad beat jackpot, hidden until the game server has sent it.
QWidget *CreateJackpot(QWidget *parent)
{
    CCasinoInfo *info = CCasinoInfo::GetInstance();
    CMoneySpinner *spinner = info->GetBadBeatJackpotSpinner();
    auto *view = new QWidget(parent);
    auto *title = new QLabel(view);
    Texts::Bind(title, &QLabel::setText, "JACKPOT");
    auto *digits = new CMoneySpinnerWidget(spinner, view);
    digits->setStyleSheet(QStringLiteral("font-weight: bold")); // a font would go with the brand's next style sheet
    auto *layout = new QHBoxLayout(view);
    layout->setContentsMargins(QMargins());
    layout->addWidget(title);
    layout->addWidget(digits);
    view->setVisible(info->GetBadBeatJackpotValue() > 0);
    QObject::connect(info, &CCasinoInfo::signal_BadBeatJackpotChanged, view, &QWidget::show);
    // The spinner keeps the sign of the language in which it was set.
    QObject::connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, view,
                     [=] { spinner->slot_SetMoneyType(info->GetBadBeatJackpotMoneyType()); });
    using TDigits = CMoneySpinner;
    Texts::Follow(
        digits, [=] { HideLeadingZeros(digits, spinner); }, spinner, &TDigits::signal_D2Changed,
        &TDigits::signal_D3Changed, &TDigits::signal_D4Changed, &TDigits::signal_D5Changed,
        &TDigits::signal_D6Changed, &TDigits::signal_D7Changed, &TDigits::signal_ShowCommaChanged);
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

// Creates the line with the user, the money and the jackpot, or a way to log in.
QWidget *CreateAccountLine(QWidget *parent, CHost &host)
{
    auto *widgets = new QWidget(parent);
    auto *user = CreateField<QLabel>(widgets, "user");
    user->setTextFormat(Qt::PlainText);                       // users choose their nicknames
    user->setStyleSheet(QStringLiteral("font-weight: bold")); // as the jackpot's
    auto *logIn = CreateField<QToolButton>(widgets, "logInButton");
    Texts::Bind(logIn, &QToolButton::setText, "LOGIN_TITLE");
    logIn->setFocusPolicy(Qt::StrongFocus);
    QObject::connect(logIn, &QToolButton::clicked, &host, &CHost::signal_LoginRequested);
    auto *money = CreateField<QLabel>(widgets, "cashier");
    const int gap = parent->fontMetrics().averageCharWidth();
    auto *row = new QHBoxLayout(widgets);
    row->setContentsMargins(2 * gap, 0, gap, gap);
    row->setSpacing(2 * gap);
    for (QWidget *part : {static_cast<QWidget *>(user), static_cast<QWidget *>(logIn), static_cast<QWidget *>(money)})
        row->addWidget(part);
    if (CCasinoInfo::GetInstance()->UsesJackpot())
        row->addWidget(CreateJackpot(widgets));
    const CUserInfo *info = CUserInfo::GetInstance();
    const auto show = [=] {
        user->setText(info->IsLoggedIn() ? info->GetNickname() : Texts::Get("USER_NONE"));
        logIn->setHidden(info->IsLoggedIn());
        money->setVisible(info->IsLoggedIn());
        money->setText(MoneyText());
    };
    Texts::Follow(money, show, info, &CUserInfo::signal_LoginStateChanged, &CUserInfo::signal_RealMoneyChanged,
                  &CUserInfo::signal_PlayMoneyChanged, &CUserInfo::signal_AccountCurrencyChanged);
    return new CQuickView(widgets, QUrl(QStringLiteral("qrc:/client/AccountLine.qml")),
                          {{QStringLiteral("host"), QVariant::fromValue<QObject *>(&host)}}, parent);
}

// Creates a dot in the colour of the connection's state, and its text; the address is in the tooltip.
QWidget *CreateConnectionState(QWidget *parent, const CHost &host)
{
    auto *view = new QWidget(parent);
    auto *dot = CreateField<QLabel>(view, "connectionDot");
    auto *state = CreateField<QLabel>(view, "connectionState");
    auto *row = new QHBoxLayout(view);
    row->setContentsMargins(QMargins());
    row->addWidget(dot);
    row->addWidget(state);
    const auto show = [=, &host] {
        const CServerLink &link = host.GetServerLink();
        state->setText(Texts::Get(STATE_KEYS[link.GetState()]));
        const QString encryption = link.GetEncryption();
        view->setToolTip(encryption.isEmpty() ? link.GetAddress()
                                              : link.GetAddress() + QLatin1Char('\n') + encryption);
        dot->setPixmap(MakeDot(STATE_COLOURS[link.GetState()], view));
    };
    Texts::Follow(view, show, &host, &CHost::signal_ConnectionStateChanged);
    return view;
}

} // namespace

QWidget *CreateStatus(QMainWindow *window, CHost &host)
{
    auto *clock = CreateField<QLabel>(window, "clock");
    Texts::Follow(
        clock, [=] { clock->setText(ClockText()); }, CCasinoTime::GetInstance(),
        &CCasinoTime::signal_TimeStringChanged, &CCasinoTime::signal_ServerTimeChanged,
        &CCasinoTime::signal_TimeZoneChanged);
    window->statusBar()->addPermanentWidget(CreateConnectionState(window, host)); // no message hides it
    window->statusBar()->addPermanentWidget(CreateTransferView(window));
    window->statusBar()->addPermanentWidget(clock);
    Q_INIT_RESOURCE(client); // of a static library
    return CreateAccountLine(window, host);
}

QWidget *CreateOfflineBanner(QWidget *parent, CHost &host)
{
    auto *banner = CreateField<QFrame>(parent, "offline");
    banner->setAutoFillBackground(true);
    banner->setBackgroundRole(QPalette::ToolTipBase);
    auto *text = CreateField<QLabel>(banner, "offlineText");
    text->setForegroundRole(QPalette::ToolTipText);
    text->setWordWrap(true);
    const CServerLink *link = &host.GetServerLink();
    Texts::Follow(
        text, [=] { text->setText(Texts::Get(link->IsImpostor() ? "IMPOSTOR" : "OFFLINE")); }, link,
        &CServerLink::signal_ImpostorChanged);
    auto *reconnect = CreateField<QPushButton>(banner, "reconnect");
    Texts::Bind(reconnect, &QPushButton::setText, "RECONNECT");
    QObject::connect(reconnect, &QPushButton::clicked, &host, &CHost::Reconnect);
    auto *row = new QHBoxLayout(banner);
    row->addWidget(text, 1);
    row->addWidget(reconnect);
    // A link that is there again within a moment isn't worth a word.
    auto *wait = new QTimer(banner);
    wait->setSingleShot(true);
    wait->setInterval(OFFLINE_MS);
    QObject::connect(wait, &QTimer::timeout, banner, &QWidget::show);
    const auto follow = [=](EConnectionState::type state) {
        if (state == EConnectionState::Connected || state == EConnectionState::Disconnected) {
            wait->stop();
            banner->hide();
        } else if (banner->isHidden() && !wait->isActive()) {
            wait->start();
        }
    };
    QObject::connect(&host, &CHost::signal_ConnectionStateChanged, banner, follow);
    banner->hide();
    follow(host.GetServerLink().GetState());
    return banner;
}
