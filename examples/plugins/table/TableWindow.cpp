#include "TableWindow.h"

#include "ChatHtml.h"
#include "SeatsView.h"

#include <common/FormField.h>
#include <common/TableTexts.h>
#include <models/AutoTopUpModel.h>
#include <models/UserInfo.h>
#include <money/MoneyStrings.h>
#include <settings/Config.h>
#include <settings/Settings.h>
#include <time/CasinoTime.h>
#include <ui/ScreenPlacement.h>

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QTextBrowser>
#include <QVBoxLayout>

#include <algorithm>

namespace {

const QString PLACE_KEY = QStringLiteral("table");
constexpr QSize SIZE(660, 680);
constexpr int CASCADE = 32; // pixels, of a window's title
constexpr int PERCENT_A_TENTH = 10;
const QString BADGE = QStringLiteral("background: palette(highlight); color: palette(highlighted-text);"
                                     "border-radius: 8px; padding: 2px 8px");
constexpr int MAX_CHAT_LINES = 500;
// Buy-ins, in higher stakes.
constexpr unsigned int SMALLEST_BUY_IN = 20;
constexpr unsigned int MIDDLE_BUY_IN = 50;
constexpr unsigned int LARGEST_BUY_IN = 100;

const char *MoneyKey(GlobalDefines::MoneyType money)
{
    if (money == GlobalDefines::MONEYTYPE_PLAY)
        return "TABLE_PLAY_MONEY";
    return money == GlobalDefines::MONEYTYPE_POINTS ? "TABLE_POINTS" : "TABLE_REAL_MONEY";
}

} // namespace

CTableWindow::CTableWindow(const LobbyProtocol::STable &table, QWidget *lobby)
    : QWidget(lobby->window(), Qt::Window)
    , m_table(table)
    , m_pFacts(CreateField<QLabel>(this, "tableFacts"))
    , m_pPlace(CreateField<QLabel>(this, "tablePlace"))
    , m_pSeats(new CSeatsView(table, this))
    , m_pTopUp(CreateField<QCheckBox>(this, "topUp"))
    , m_pLowerLimit(CreateField<QSpinBox>(this, "lowerLimit"))
    , m_pTarget(CreateField<QComboBox>(this, "target"))
    , m_pTopUpChoices(new QWidget(this))
    , m_pTopUpText(CreateField<QLabel>(this, "topUpText"))
    , m_pChat(CreateField<QTextBrowser>(this, "chat"))
    , m_pLine(CreateField<QLineEdit>(this, "chatLine"))
    , m_pSend(CreateField<QPushButton>(this, "send"))
{
    setObjectName(QStringLiteral("table%1").arg(table.uiID));
    setWindowTitle(table.strName);
    setAttribute(Qt::WA_DeleteOnClose);
    resize(SIZE);
    m_pFacts->setWordWrap(true);
    m_pTopUpText->setWordWrap(true);
    m_pChat->document()->setMaximumBlockCount(MAX_CHAT_LINES);
    m_pChat->setFocusPolicy(Qt::ClickFocus); // the keyboard is for the line below
    m_pLine->setMaxLength(TableProtocol::MAX_LINE_LENGTH);
    BindHint(m_pLine, "TABLE_CHAT_LINE");
    Texts::Bind(m_pChat, &QWidget::setAccessibleName, "TABLE_CHAT");
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(CreateHeading());
    layout->addWidget(m_pFacts);
    layout->addWidget(m_pSeats, 2);
    layout->addWidget(m_pTopUp);
    layout->addWidget(m_pTopUpChoices);
    CreateTopUp();
    layout->addWidget(m_pChat, 1);
    auto *line = new QHBoxLayout;
    line->addWidget(m_pLine, 1);
    line->addWidget(m_pSend);
    layout->addLayout(line);
    Texts::Bind(m_pSend, &QPushButton::setText, "TABLE_SEND");
    connect(m_pSend, &QPushButton::clicked, this, &CTableWindow::SayLine);
    connect(m_pLine, &QLineEdit::returnPressed, this, &CTableWindow::SayLine);
    connect(CAutoTopUpModel::GetInstance(), &CAutoTopUpModel::signal_AutoTopUpChanged, this,
            &CTableWindow::ShowTopUp);
    connect(CUserInfo::GetInstance(), &CUserInfo::signal_LoginStateChanged, this, &QWidget::close);
    Texts::Follow(this, [this] {
        ShowFacts();
        ShowTopUp();
    });
    CloseByKeys(this);
    m_pLine->setFocus();
}

QLayout *CTableWindow::CreateHeading()
{
    auto *name = CreateField<QLabel>(this, "tableName");
    name->setText(QStringLiteral("<big><b>%1</b></big>").arg(m_table.strName.toHtmlEscaped()));
    auto *leave = CreateField<QPushButton>(this, "leave");
    Texts::Bind(leave, &QPushButton::setText, "TABLE_LEAVE_BUTTON");
    connect(leave, &QPushButton::clicked, this, &QWidget::close);
    auto *line = new QHBoxLayout;
    line->addWidget(name);
    line->addWidget(m_pPlace);
    line->addStretch(1);
    line->addWidget(leave);
    return line;
}

void CTableWindow::SayLine()
{
    if (!m_pLine->text().trimmed().isEmpty())
        Q_EMIT signal_Said({m_table.uiID, m_pLine->text(), QString(), 0});
    m_pLine->clear();
}

// The choices are there while chips are topped up.
void CTableWindow::CreateTopUp()
{
    Texts::Bind(m_pTopUp, &QCheckBox::setText, "TOPUP_ENABLED");
    auto *form = new QFormLayout(m_pTopUpChoices);
    form->setContentsMargins(QMargins());
    m_pLowerLimit->setMaximum(100);
    m_pLowerLimit->setSingleStep(PERCENT_A_TENTH);
    const auto setUnit = [](QSpinBox *limit, const QString &unit) { limit->setSuffix(QLatin1Char(' ') + unit); };
    Texts::Bind(m_pLowerLimit, setUnit, "TOPUP_PERCENT");
    AddFormField(form, "TOPUP_LOWER_LIMIT", m_pLowerLimit);
    m_pTarget->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    for (const char *key : {"TOPUP_LARGEST", "TOPUP_SMALLEST", "TOPUP_STAKES", "TOPUP_MIDDLE"})
        AddTextItem(m_pTarget, key, QVariant());
    AddFormField(form, "TOPUP_TARGET", m_pTarget);
    form->addRow(m_pTopUpText);
    connect(m_pLowerLimit, &QSpinBox::editingFinished, m_pLowerLimit, [this] {
        m_pLowerLimit->setValue(m_pLowerLimit->value() / PERCENT_A_TENTH * PERCENT_A_TENTH); // as it is stored
    });
    connect(m_pTopUp, &QCheckBox::toggled, this, &CTableWindow::StoreTopUp);
    connect(m_pTarget, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &CTableWindow::StoreTopUp);
    connect(m_pLowerLimit, QOverload<int>::of(&QSpinBox::valueChanged), this, &CTableWindow::StoreTopUp);
}

void CTableWindow::Open(QWidget *lobby, const QList<CTableWindow *> &others)
{
    const auto any = [&](const auto &fits) {
        return std::any_of(others.begin(), others.end(),
                           [&](const CTableWindow *other) { return other != this && fits(*other); });
    };
    do
        ++m_iNumber;
    while (any([this](const CTableWindow &other) { return other.m_iNumber == m_iNumber; }));
    const QByteArray place = CSettings::GetInstance()->GetWinPosByKey(GetPlaceKey());
    const bool placed = restoreGeometry(QByteArray::fromBase64(place));
    show();
    if (!placed)
        Globals::SetToScreenPosition(this, Qt::AlignRight | Qt::AlignTop, lobby, -1, GlobalDefines::SPO_Horizontal);
    const auto isNear = [this](const CTableWindow &other) {
        return (other.pos() - pos()).manhattanLength() < CASCADE;
    };
    for (auto tries = others.size(); tries > 0 && any(isNear); --tries) {
        const QRect next = frameGeometry().translated(CASCADE, CASCADE);
        const QRect available = screen()->availableGeometry();
        move(available.contains(next) ? next.topLeft() : available.topLeft());
    }
}

QString CTableWindow::GetPlaceKey() const
{
    return m_iNumber == 1 ? PLACE_KEY : PLACE_KEY + QString::number(m_iNumber);
}

void CTableWindow::SetPlace(quint16 place)
{
    m_usPlace = place;
    if (HasSeat())
        m_pSeats->SetPlace(place);
    m_pSeats->setEnabled(HasSeat());
    m_pLine->setEnabled(HasSeat());
    m_pSend->setEnabled(HasSeat());
    ShowFacts();
}

void CTableWindow::ShowSeats(const QVector<TableProtocol::SSeat> &seats)
{
    m_pSeats->ShowSeats(seats);
}

void CTableWindow::AddLine(const TableProtocol::SLine &line)
{
    const bool isOwn = line.strNickname == CUserInfo::GetInstance()->GetNickname();
    m_pChat->append(QStringLiteral("<small>%1</small> <b style=\"color: %2\">%3:</b> ")
                        .arg(CCasinoTime::GetInstance()->GetTimeString(),
                             palette().color(isOwn ? QPalette::Link : QPalette::Text).name(),
                             line.strNickname.toHtmlEscaped()) +
                    ToHtml(line.strText));
}

void CTableWindow::Leave()
{
    m_bLeaving = true;
    close();
}

// The server takes back the seat of a user who logs out or disconnects.
bool CTableWindow::WouldLoseSeat() const
{
    return HasSeat() && CUserInfo::GetInstance()->IsLoggedIn();
}

QMessageBox *CTableWindow::CreateQuestion(const char *key, QWidget *parent)
{
    auto *question = new QMessageBox(QMessageBox::Question, CConfig::GetInstance()->GetProductname(), Texts::Get(key),
                                     QMessageBox::NoButton, parent);
    question->addButton(Texts::Get("TABLE_LEAVE"), QMessageBox::AcceptRole);
    auto *stay = question->addButton(Texts::Get("TABLE_STAY"), QMessageBox::RejectRole);
    question->setDefaultButton(stay);
    question->setEscapeButton(stay);
    return question;
}

void CTableWindow::AskToLeave()
{
    if (m_pQuestion && m_pQuestion->isVisible())
        return m_pQuestion->activateWindow();
    m_pQuestion = CreateQuestion("TABLE_LEAVE_QUESTION", this);
    m_pQuestion->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_pQuestion.data(), &QMessageBox::buttonClicked, this, [this](QAbstractButton *button) {
        if (m_pQuestion->buttonRole(button) == QMessageBox::AcceptRole)
            Leave();
    });
    m_pQuestion->open();
}

void CTableWindow::closeEvent(QCloseEvent *event)
{
    if (WouldLoseSeat() && !m_bLeaving) {
        event->ignore();
        return AskToLeave();
    }
    QWidget::closeEvent(event);
    CSettings::GetInstance()->SetWinPosByKey(GetPlaceKey(), saveGeometry().toBase64(), this);
    Q_EMIT signal_Closed(m_table.uiID);
}

void CTableWindow::StoreTopUp()
{
    CAutoTopUpModel::SAutoTopUp all = CAutoTopUpModel::GetInstance()->GetAutoTopUp();
    const bool fixed = m_table.eLimit == GlobalDefines::LT_FIXED_LIMIT;
    (fixed ? all.bFixedEnabled : all.bOtherEnabled) = m_pTopUp->isChecked();
    (fixed ? all.ulFixedLowerLimit : all.ulOtherLowerLimit) =
        static_cast<unsigned int>(m_pLowerLimit->value() / PERCENT_A_TENTH);
    (fixed ? all.ulFixedTargetMode : all.ulOtherTargetMode) = static_cast<unsigned int>(m_pTarget->currentIndex());
    CAutoTopUpModel::GetInstance()->SetAutoTopUp(all, true);
}

void CTableWindow::ShowTopUp()
{
    const QSignalBlocker blockers[] = {QSignalBlocker(m_pTopUp), QSignalBlocker(m_pLowerLimit),
                                       QSignalBlocker(m_pTarget)};
    const CAutoTopUpModel::SAutoTopUp all = CAutoTopUpModel::GetInstance()->GetAutoTopUp();
    const bool fixed = m_table.eLimit == GlobalDefines::LT_FIXED_LIMIT;
    m_pTopUp->setChecked(fixed ? all.bFixedEnabled : all.bOtherEnabled);
    m_pTopUpChoices->setVisible(m_pTopUp->isChecked());
    const unsigned int tenths = fixed ? all.ulFixedLowerLimit : all.ulOtherLowerLimit;
    if (m_pLowerLimit->value() / PERCENT_A_TENTH != static_cast<int>(tenths)) // else the user may be typing
        m_pLowerLimit->setValue(static_cast<int>(tenths) * PERCENT_A_TENTH);
    m_pTarget->setCurrentIndex(static_cast<int>(fixed ? all.ulFixedTargetMode : all.ulOtherTargetMode));
    m_pTopUpText->setText(MakeTopUpText());
}

// Returns a text with the amounts that the choices result in at this table.
QString CTableWindow::MakeTopUpText() const
{
    const CAutoTopUpModel *model = CAutoTopUpModel::GetInstance();
    const auto money = TableTexts::IsTournament(m_table) ? GlobalDefines::MONEYTYPE_TOURN : m_table.eMoney;
    const unsigned int largest = LARGEST_BUY_IN * m_table.mvHigh;
    const unsigned int target = model->GetTargetChips(money, m_table.eLimit, SMALLEST_BUY_IN * m_table.mvHigh,
                                                      m_table.mvHigh, largest, MIDDLE_BUY_IN * m_table.mvHigh);
    if (target == 0)
        return Texts::Get("TOPUP_NONE");
    const unsigned int limit = model->GetLowerLimitChips(money, m_table.eLimit, largest);
    return Texts::Get("TOPUP_TEXT", {{"#limit#", Globals::MoneyToString(money, limit, true)},
                                     {"#target#", Globals::MoneyToString(money, target, true)}});
}

void CTableWindow::ShowFacts()
{
    m_pPlace->setText(HasSeat() ? Texts::Get("TABLE_PLACE", {{"#place#", uint(m_usPlace)}})
                                : Texts::Get("TABLE_NO_PLACE"));
    m_pPlace->setStyleSheet(HasSeat() ? BADGE : QString());
    const QStringList facts{TableTexts::GetGame(m_table), TableTexts::GetStakes(m_table),
                            Texts::Get(MoneyKey(m_table.eMoney))};
    m_pFacts->setText(facts.join(QStringLiteral(" · ")));
}
