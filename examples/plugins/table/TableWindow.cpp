#include "TableWindow.h"

#include "ChatHtml.h"

#include <common/FormField.h>
#include <common/TableTexts.h>
#include <models/AutoTopUpModel.h>
#include <models/UserInfo.h>
#include <money/MoneyStrings.h>
#include <settings/Settings.h>
#include <ui/ScreenPlacement.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace {

const QString PLACE_KEY = QStringLiteral("table");
constexpr QSize SIZE(340, 480);
constexpr int TENTHS = 10;
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
    , m_pTopUp(CreateField<QCheckBox>(this, "topUp"))
    , m_pLowerLimit(CreateField<QSpinBox>(this, "lowerLimit"))
    , m_pTarget(CreateField<QComboBox>(this, "target"))
    , m_pTopUpText(CreateField<QLabel>(this, "topUpText"))
    , m_pChat(CreateField<QTextBrowser>(this, "chat"))
    , m_pLine(CreateField<QLineEdit>(this, "chatLine"))
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
    Texts::Bind(m_pLine, &QLineEdit::setPlaceholderText, "TABLE_CHAT_LINE");
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_pFacts);
    auto *form = new QFormLayout;
    layout->addLayout(form);
    CreateTopUp(form);
    layout->addWidget(m_pTopUpText);
    layout->addWidget(m_pChat, 1);
    layout->addWidget(m_pLine);
    connect(m_pLine, &QLineEdit::returnPressed, this, [this] {
        if (!m_pLine->text().trimmed().isEmpty())
            Q_EMIT signal_Said({m_table.uiID, m_pLine->text(), QString(), 0});
        m_pLine->clear();
    });
    connect(CAutoTopUpModel::GetInstance(), &CAutoTopUpModel::signal_AutoTopUpChanged, this,
            &CTableWindow::ShowTopUp);
    connect(CUserInfo::GetInstance(), &CUserInfo::signal_LoginStateChanged, this, &QWidget::close);
    Texts::Follow(this, [this] {
        ShowFacts();
        ShowTopUp();
    });
    m_pLine->setFocus();
}

void CTableWindow::CreateTopUp(QFormLayout *form)
{
    Texts::Bind(m_pTopUp, &QCheckBox::setText, "TOPUP_ENABLED");
    form->addRow(m_pTopUp);
    m_pLowerLimit->setMaximum(TENTHS);
    AddFormField(form, "TOPUP_LOWER_LIMIT", m_pLowerLimit);
    m_pTarget->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    for (const char *key : {"TOPUP_LARGEST", "TOPUP_SMALLEST", "TOPUP_STAKES", "TOPUP_MIDDLE"})
        AddTextItem(m_pTarget, key, QVariant());
    AddFormField(form, "TOPUP_TARGET", m_pTarget);
    connect(m_pTopUp, &QCheckBox::toggled, this, &CTableWindow::StoreTopUp);
    connect(m_pTarget, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &CTableWindow::StoreTopUp);
    connect(m_pLowerLimit, QOverload<int>::of(&QSpinBox::valueChanged), this, &CTableWindow::StoreTopUp);
}

void CTableWindow::Open(QWidget *lobby)
{
    const bool placed = restoreGeometry(QByteArray::fromBase64(CSettings::GetInstance()->GetWinPosByKey(PLACE_KEY)));
    show();
    if (!placed)
        Globals::SetToScreenPosition(this, Qt::AlignRight | Qt::AlignTop, lobby, -1, GlobalDefines::SPO_Horizontal);
}

void CTableWindow::SetPlace(quint16 place)
{
    m_usPlace = place;
    m_pLine->setEnabled(HasSeat());
    ShowFacts();
}

void CTableWindow::AddLine(const TableProtocol::SLine &line)
{
    m_pChat->append(QStringLiteral("<b>%1:</b> ").arg(line.strNickname.toHtmlEscaped()) + ToHtml(line.strText));
}

void CTableWindow::closeEvent(QCloseEvent *event)
{
    QWidget::closeEvent(event);
    CSettings::GetInstance()->SetWinPosByKey(PLACE_KEY, saveGeometry().toBase64(), this);
    Q_EMIT signal_Closed(m_table.uiID);
}

void CTableWindow::StoreTopUp()
{
    CAutoTopUpModel::SAutoTopUp all = CAutoTopUpModel::GetInstance()->GetAutoTopUp();
    const bool fixed = m_table.eLimit == GlobalDefines::LT_FIXED_LIMIT;
    (fixed ? all.bFixedEnabled : all.bOtherEnabled) = m_pTopUp->isChecked();
    (fixed ? all.ulFixedLowerLimit : all.ulOtherLowerLimit) = static_cast<unsigned int>(m_pLowerLimit->value());
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
    m_pLowerLimit->setValue(static_cast<int>(fixed ? all.ulFixedLowerLimit : all.ulOtherLowerLimit));
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
    const QString place =
        HasSeat() ? Texts::Get("TABLE_PLACE", {{"#place#", uint(m_usPlace)}}) : Texts::Get("TABLE_NO_PLACE");
    const QStringList facts{m_table.strName, Texts::Get(MoneyKey(m_table.eMoney)), TableTexts::GetGame(m_table),
                            TableTexts::GetStakes(m_table), place};
    m_pFacts->setText(facts.join(QStringLiteral(" · ")));
}
