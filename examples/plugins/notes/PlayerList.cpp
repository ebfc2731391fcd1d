#include "PlayerList.h"

#include "Fields.h"

#include <models/PlayerLists.h>
#include <models/PlayerTaggingModel.h>

namespace {

constexpr int BUDDY_ROLE = Qt::UserRole;
constexpr int MARGIN = 5;
constexpr QRgb RED = 0xffd0504a; // on a light and on a dark ground

// A row. All but the nickname is the model's, and is asked for when it is needed.
class CPlayerRow : public QListWidgetItem
{
public:
    using QListWidgetItem::QListWidgetItem;

    QVariant data(int role) const override
    {
        switch (role) {
        case Qt::DecorationRole:
            return CPlayerTaggingModel::GetInstance()->GetIcon(GetPlayer()->GetTagID());
        case Qt::AccessibleTextRole:
            return Describe();
        case BUDDY_ROLE:
            return IsBuddy(GetPlayer());
        default:
            return QListWidgetItem::data(role);
        }
    }

private:
    CPlayerModel *GetPlayer() const { return CPlayerModel::GetInstance(text()); }
    QString Describe() const
    {
        QStringList words{text()};
        if (IsBuddy(GetPlayer()))
            words.append(GetText("PLAYERS_BUDDY").remove(QLatin1Char('&')));
        if (GetPlayer()->GetTagID() != 0)
            words.append(CPlayerTaggingModel::GetInstance()->GetText(GetPlayer()->GetTagID()));
        return words.join(QStringLiteral(", "));
    }
};

// Draws a heart at the end of a buddy's row. Every row has room for it, and for the colour of a tag.
class CPlayerDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::paint(painter, option, index);
        if (!index.data(BUDDY_ROLE).toBool())
            return;
        const QRect place = QStyle::alignedRect(option.direction, Qt::AlignRight | Qt::AlignVCenter,
                                                option.decorationSize, option.rect.adjusted(MARGIN, 0, -MARGIN, 0));
        const bool isSelected = option.state.testFlag(QStyle::State_Selected);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(place.topLeft());
        painter->scale(place.width() / 16.0, place.height() / 16.0);
        painter->fillPath(MakeHeart(), isSelected ? option.palette.highlightedText() : QBrush(QColor(RED)));
        painter->restore();
    }
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(option.decorationSize.width() + MARGIN, MARGIN);
    }

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        const QSize size = option->decorationSize;
        QStyledItemDelegate::initStyleOption(option, index);
        option->features |= QStyleOptionViewItem::HasDecoration;
        option->decorationSize = size;                        // without a tag there is no icon, which has no size
        const QPixmap colour = option->icon.pixmap(size * 2); // enough for any screen
        if (!colour.isNull())
            option->icon.addPixmap(colour, QIcon::Selected); // which would be tinted
    }

private:
    // In a square of 16 units.
    static QPainterPath MakeHeart()
    {
        QPainterPath heart(QPointF(8, 13.5));
        heart.cubicTo(1, 8.5, 1.5, 3, 5, 3);
        heart.cubicTo(6.5, 3, 7.5, 4, 8, 5);
        heart.cubicTo(8.5, 4, 9.5, 3, 11, 3);
        heart.cubicTo(14.5, 3, 15, 8.5, 8, 13.5);
        return heart;
    }
};

} // namespace

bool IsBuddy(CPlayerModel *player)
{
    return player->GetBuddy() || CPlayerLists::GetInstance()->GetBuddyList()->contains(player);
}

CPlayerList::CPlayerList(QLineEdit *search)
    : m_pSearch(search)
    , m_pNoMatch(new QWidget(viewport()))
{
    setSortingEnabled(true);
    setIconSize(QSize(1, 1) * style()->pixelMetric(QStyle::PM_SmallIconSize));
    setItemDelegate(new CPlayerDelegate(this));
    auto *text = new QLabel;
    BindText(text, &QLabel::setText, "PLAYERS_NO_MATCH");
    auto *clear = new QPushButton;
    clear->setObjectName(QStringLiteral("clearSearch"));
    BindText(clear, &QPushButton::setText, "PLAYERS_CLEAR_SEARCH");
    auto *column = new QVBoxLayout(m_pNoMatch);
    column->addWidget(text, 0, Qt::AlignCenter);
    column->addWidget(clear, 0, Qt::AlignCenter);
    auto *room = new QVBoxLayout(viewport());
    room->addWidget(m_pNoMatch, 0, Qt::AlignCenter);
    connect(clear, &QPushButton::clicked, search, [search] {
        search->clear();
        search->setFocus(Qt::OtherFocusReason); // which the button can't keep
    });
    connect(search, &QLineEdit::textChanged, this, &CPlayerList::Search);
    connect(search, &QLineEdit::returnPressed, this, [this] {
        if (!FindFirst())
            return;
        setCurrentItem(FindFirst());
        setFocus(Qt::OtherFocusReason);
    });
    connect(model(), &QAbstractItemModel::rowsRemoved, this, &CPlayerList::FollowRows);
    FollowRows();
}

QListWidgetItem *CPlayerList::AddPlayer(const QString &nickname)
{
    auto *row = new CPlayerRow(nickname);
    addItem(row);
    row->setHidden(!IsFound(nickname));
    FollowRows();
    const CPlayerModel *player = CPlayerModel::GetInstance(nickname); // whom the list may have had before
    const auto *tags = CPlayerTaggingModel::GetInstance();
    connect(player, &CPlayerModel::signal_TagIDChanged, this, &CPlayerList::ShowMarks, Qt::UniqueConnection);
    connect(player, &CPlayerModel::signal_BuddyChanged, this, &CPlayerList::ShowMarks, Qt::UniqueConnection);
    connect(tags, &CPlayerTaggingModel::signal_PlayerTagsChanged, this, &CPlayerList::ShowMarks,
            Qt::UniqueConnection);
    return row;
}

void CPlayerList::Choose(QListWidgetItem *row)
{
    if (row->isHidden())
        m_pSearch->clear();
    setCurrentItem(row);
}

void CPlayerList::ShowMarks()
{
    viewport()->update();
}

void CPlayerList::Forget()
{
    clear();
    m_pSearch->clear();
}

// Only when the user searches: a row doesn't vanish while its note is being written.
void CPlayerList::Search()
{
    for (int row = 0; row < count(); ++row)
        item(row)->setHidden(!IsFound(item(row)->text()));
    FollowRows();
}

bool CPlayerList::IsFound(const QString &nickname) const
{
    const QString words = m_pSearch->text().trimmed();
    return nickname.contains(words, Qt::CaseInsensitive) ||
           CPlayerModel::GetInstance(nickname)->GetNotes().contains(words, Qt::CaseInsensitive);
}

// Returns null if no row is shown.
QListWidgetItem *CPlayerList::FindFirst() const
{
    for (int row = 0; row < count(); ++row) {
        if (!item(row)->isHidden())
            return item(row);
    }
    return nullptr;
}

// If all rows are hidden, the list says so. A hidden row isn't the current one, not even after another one's removal.
void CPlayerList::FollowRows()
{
    if (currentItem() && currentItem()->isHidden())
        setCurrentItem(nullptr);
    m_pNoMatch->setVisible(!m_pSearch->text().isEmpty() && !FindFirst());
}
