#include "SeatView.h"

#include <common/FormField.h>
#include <common/RunningAmount.h>
#include <common/TableTexts.h>
#include <files/Pathes.h>
#include <models/UserInfo.h>

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QPainterPath>

namespace {

constexpr int CHARACTERS = 13; // of a nickname; the rest of a longer one is left out
constexpr int LETTER_COLOURS = 12;
constexpr int CORNER = 8; // pixels
constexpr int SHADE = 70; // of 255

// Returns the picture, or the letter if there is none, in a circle.
QPixmap MakeCircle(const QPixmap &picture, const QString &nickname, int size, qreal ratio)
{
    QPixmap circle(QSize(size, size) * ratio);
    circle.setDevicePixelRatio(ratio);
    circle.fill(Qt::transparent);
    QPainter painter(&circle);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    QPainterPath border;
    border.addEllipse(0, 0, size, size);
    painter.setClipPath(border);
    if (!picture.isNull()) {
        painter.drawPixmap(QRect(0, 0, size, size), picture);
        return circle;
    }
    const int hue = nickname.at(0).unicode() % LETTER_COLOURS * 360 / LETTER_COLOURS;
    painter.fillPath(border, QColor::fromHsv(hue, 110, 150));
    QFont font = painter.font();
    font.setPixelSize(size / 2);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(QRect(0, 0, size, size), Qt::AlignCenter, nickname.left(1).toUpper());
    return circle;
}

} // namespace

CSeatView::CSeatView(quint16 place, GlobalDefines::MoneyType money, QWidget *parent)
    : QWidget(parent)
    , m_pPicture(new QLabel(this))
    , m_pName(CreateField<QLabel>(this, "seatName"))
    , m_pStack(CreateField<QLabel>(this, "seatStack"))
{
    setObjectName(QStringLiteral("seat%1").arg(place));
    m_pName->setTextFormat(Qt::PlainText); // users choose their nicknames
    ShowAmount(m_pStack, &m_stack, [money](unsigned int stack) { return TableTexts::GetAmount(money, stack); });
    auto *layout = new QGridLayout(this);
    const int gap = fontMetrics().height() / 4;
    layout->setContentsMargins(gap, gap, gap, gap);
    layout->setHorizontalSpacing(2 * gap);
    layout->setVerticalSpacing(0);
    layout->addWidget(m_pPicture, 0, 0, 2, 1);
    layout->addWidget(m_pName, 0, 1);
    layout->addWidget(m_pStack, 1, 1);
    layout->setColumnStretch(1, 1);
    layout->setRowStretch(0, 1); // all of it while the seat is free
    const int size = 2 * fontMetrics().height();
    m_pPicture->setFixedSize(size, size);
    setFixedSize(size + CHARACTERS * fontMetrics().averageCharWidth() + 6 * gap, size + 4 * gap);
    Texts::Follow(this, [this] { ShowTexts(); });
}

void CSeatView::ShowSeat(const std::optional<TableProtocol::SSeat> &seat)
{
    const bool isSame =
        m_seat && seat && m_seat->strNickname == seat->strNickname && m_seat->usPicture == seat->usPicture;
    m_seat = seat;
    if (isSame) {
        m_stack.slot_SetValue(seat->uiStack);
        return;
    }
    m_stack.SetValue(seat ? seat->uiStack : 0);
    FollowPlayer();
    ShowTexts();
    ShowPicture();
}

void CSeatView::FollowPlayer()
{
    if (m_pPlayer)
        m_pPlayer->disconnect(this);
    m_pPlayer = m_seat ? CPlayerModel::GetInstance(m_seat->strNickname) : nullptr;
    if (!m_pPlayer)
        return;
    connect(m_pPlayer, &CPlayerModel::signal_CustomAvatarChanged, this, &CSeatView::ShowPicture);
    connect(m_pPlayer, &CPlayerModel::signal_NotesChanged, this, &CSeatView::ShowTexts);
}

void CSeatView::ShowTexts()
{
    const QString name = m_seat ? m_seat->strNickname : Texts::Get("TABLE_FREE_SEAT");
    m_pName->setText(fontMetrics().elidedText(name, Qt::ElideRight, CHARACTERS * fontMetrics().averageCharWidth()));
    m_pName->setAlignment(m_seat ? Qt::AlignLeading | Qt::AlignVCenter : Qt::AlignCenter);
    m_pPicture->setVisible(m_seat.has_value());
    m_pStack->setVisible(m_seat.has_value());
    const QString note = m_pPlayer ? m_pPlayer->GetNotes() : QString();
    setToolTip(note.isEmpty() ? QString() : QStringLiteral("<p>%1</p>").arg(note.toHtmlEscaped()));
    const bool isOwn = m_seat && m_seat->strNickname == CUserInfo::GetInstance()->GetNickname();
    m_bOwn = isOwn;
    for (QLabel *label : {m_pName, m_pStack})
        label->setForegroundRole(isOwn || !m_seat ? QPalette::HighlightedText : QPalette::Text);
    update();
}

void CSeatView::ShowPicture()
{
    m_pPicture->setPixmap(
        m_seat ? MakeCircle(FindPicture(), m_seat->strNickname, m_pPicture->width(), devicePixelRatioF())
               : QPixmap());
}

QPixmap CSeatView::FindPicture() const
{
    const QPixmap chosen(m_pPlayer ? Pathes::CustomAvatar(m_pPlayer->GetCustomAvatar()) : QString());
    if (!chosen.isNull() || m_seat->usPicture == 0)
        return chosen;
    return QPixmap(Pathes::ToCommonRes(QStringLiteral("avatars/%1.png").arg(m_seat->usPicture), false));
}

// A free seat is nothing but an outline.
void CSeatView::paintEvent(QPaintEvent *)
{
    const QColor line = palette().color(QPalette::HighlightedText);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(line, m_bOwn ? 2 : 1, m_seat ? Qt::SolidLine : Qt::DotLine));
    painter.setBrush(m_seat ? palette().color(m_bOwn ? QPalette::Highlight : QPalette::Base)
                            : QColor(0, 0, 0, SHADE));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), CORNER, CORNER);
}

// A picture is drawn for the screen on which the window is.
void CSeatView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        ShowPicture();
}
