#include "LobbyView.h"

#include <settings/Settings.h>

#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QVBoxLayout>

namespace {

const QLatin1String TEXT_TITLE("Lobby");
const QLatin1String TEXT_FILTER("Name or game");
const QLatin1String TEXT_ALL("All tables");
const QLatin1String TEXT_RING_GAMES("Ring games");
const QLatin1String TEXT_SIT_AND_GOS("Sit & Gos");
const QLatin1String TEXT_TOURNAMENTS("Tournaments");
const QLatin1String TEXT_TABLES("%1 tables");
const QLatin1String TEXT_SOME_TABLES("%1 of %2 tables");
const QLatin1String TEXT_STALE(" - may be out of date, waiting for the game server");
const QLatin1String TEXT_WAITING("Waiting for the game server");

constexpr int ANY_TYPE = 0;
constexpr int MINIMUM_ROWS = 8;
// About the widest text that a column holds.
const QLatin1String COLUMN_SAMPLES[] = {
    QLatin1String("Six-Seat Turbo Special"), QLatin1String("Tournament"), QLatin1String("PL Omaha Hi/Lo"),
    QLatin1String("$200.00 + $15.00"),       QLatin1String("1000/1000"),  QLatin1String("30 Sep, 00:00")};

} // namespace

class CTableFilter : public QSortFilterProxyModel
{
public:
    CTableFilter(CTableListModel *model, QObject *parent)
        : QSortFilterProxyModel(parent)
        , m_pModel(model)
    {
        setSourceModel(model);
        setSortRole(CTableListModel::SORT_ROLE);
        setSortCaseSensitivity(Qt::CaseInsensitive);
        setSortLocaleAware(true);
    }

    void SetFilter(const QString &text, int type)
    {
        m_strText = text;
        m_iType = type;
        invalidateFilter();
    }

protected:
    bool filterAcceptsRow(int row, const QModelIndex &) const override
    {
        if (m_iType != ANY_TYPE && m_pModel->GetTable(row).eType != m_iType)
            return false;
        return Contains(row, CTableListModel::COL_NAME) || Contains(row, CTableListModel::COL_GAME);
    }

private:
    bool Contains(int row, int column) const
    {
        const QString text = m_pModel->index(row, column).data().toString();
        return text.contains(m_strText, Qt::CaseInsensitive);
    }

    CTableListModel *m_pModel;
    QString m_strText;
    int m_iType = ANY_TYPE;
};

CLobbyView::CLobbyView(CTableListModel *model, QWidget *parent)
    : QWidget(parent)
    , m_pModel(model)
    , m_pFilter(new CTableFilter(model, this))
    , m_pText(new QLineEdit(this))
    , m_pType(new QComboBox(this))
    , m_pTable(new QTableView(this))
    , m_pStatus(new QLabel(this))
{
    setWindowTitle(TEXT_TITLE);
    m_pStatus->setObjectName(QStringLiteral("lobbyStatus"));
    m_pStatus->setTextFormat(Qt::PlainText); // a part of it may be the server's
    m_pStatus->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    CreateFilterLine();
    CreateTable();
    Arrange();
    connect(m_pModel, &CTableListModel::signal_ListChanged, this, &CLobbyView::ShowState);
    const CSettings *settings = CSettings::GetInstance();
    connect(settings, &CSettings::signal_RinggameFilterChanged, this, &CLobbyView::slot_FilterSettingChanged);
    connect(settings, &CSettings::signal_SelectedGametypeChanged, this, &CLobbyView::slot_FilterSettingChanged);
    slot_FilterSettingChanged();
    ShowState();
}

void CLobbyView::ShowSeatAnswer(const QString &message)
{
    m_strSeatAnswer = message;
    ShowState();
}

void CLobbyView::CreateFilterLine()
{
    m_pText->setObjectName(QStringLiteral("lobbyFilter"));
    m_pText->setPlaceholderText(TEXT_FILTER);
    m_pText->setClearButtonEnabled(true);
    m_pType->setObjectName(QStringLiteral("lobbyType"));
    m_pType->addItem(TEXT_ALL, ANY_TYPE);
    m_pType->addItem(TEXT_RING_GAMES, int(GlobalDefines::TT_NORMAL));
    m_pType->addItem(TEXT_SIT_AND_GOS, int(GlobalDefines::TT_SITANDGO));
    m_pType->addItem(TEXT_TOURNAMENTS, int(GlobalDefines::TT_TOURNAMENT));
    const auto *find = new QShortcut(QKeySequence::Find, this);
    connect(find, &QShortcut::activated, m_pText, [this] { m_pText->setFocus(Qt::ShortcutFocusReason); });
    connect(m_pText, &QLineEdit::returnPressed, m_pTable, [this] { m_pTable->setFocus(Qt::OtherFocusReason); });
    connect(m_pText, &QLineEdit::textChanged, this, &CLobbyView::ApplyFilter);
    connect(m_pType, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &CLobbyView::ApplyFilter);
}

void CLobbyView::CreateTable()
{
    m_pTable->setObjectName(QStringLiteral("lobbyTable"));
    m_pTable->setModel(m_pFilter);
    m_pTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_pTable->setSelectionMode(QAbstractItemView::SingleSelection);
    m_pTable->setAlternatingRowColors(true);
    m_pTable->setShowGrid(false);
    m_pTable->setWordWrap(false);
    m_pTable->setTabKeyNavigation(false); // Tab leaves the table, the arrows move in it
    m_pTable->setSortingEnabled(true);
    m_pTable->sortByColumn(CTableListModel::COL_NAME, Qt::AscendingOrder);
    connect(m_pTable, &QTableView::activated, this, [this](const QModelIndex &cell) {
        Q_EMIT signal_TableChosen(m_pModel->GetTable(m_pFilter->mapToSource(cell).row()).uiID);
    });
    m_pTable->verticalHeader()->hide();
    m_pTable->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    m_pTable->horizontalHeader()->setHighlightSections(false);
    SetColumnWidths();
}

// The name takes what the others leave, which is never less than it needs.
void CLobbyView::SetColumnWidths()
{
    QHeaderView *header = m_pTable->horizontalHeader();
    const int margins = fontMetrics().horizontalAdvance(QLatin1Char('M'));
    int sum = m_pTable->verticalScrollBar()->sizeHint().width() + margins;
    for (int column = 0; column < CTableListModel::COL_COUNT; ++column) {
        const int text = fontMetrics().horizontalAdvance(COLUMN_SAMPLES[column]);
        const int width = qMax(text + margins, header->sectionSizeHint(column));
        header->resizeSection(column, width);
        sum += width;
    }
    header->setSectionResizeMode(CTableListModel::COL_NAME, QHeaderView::Stretch);
    m_pTable->setMinimumSize(sum, m_pTable->verticalHeader()->defaultSectionSize() * (MINIMUM_ROWS + 1));
}

void CLobbyView::Arrange()
{
    auto *filterLine = new QHBoxLayout;
    filterLine->addWidget(m_pText, 1);
    filterLine->addWidget(m_pType);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(filterLine);
    layout->addWidget(m_pTable, 1);
    layout->addWidget(m_pStatus);
}

void CLobbyView::ApplyFilter()
{
    m_pFilter->SetFilter(m_pText->text(), m_pType->currentData().toInt());
    ShowState();
    RememberFilter();
}

// What the settings hold already came from there.
void CLobbyView::RememberFilter()
{
    CSettings *settings = CSettings::GetInstance();
    const QByteArray text = m_pText->text().toUtf8();
    if (text != settings->GetRinggameFilter())
        settings->SetRinggameFilter(text, this);
    if (m_pType->currentIndex() != IndexOfStoredType())
        settings->SetSelectedGametype(m_pType->currentData().toInt(), this);
}

// A user without a choice sees all tables, and so does one with a choice that this version doesn't know.
int CLobbyView::IndexOfStoredType() const
{
    return qMax(0, m_pType->findData(CSettings::GetInstance()->GetSelectedGametype()));
}

void CLobbyView::slot_FilterSettingChanged()
{
    const CSettings *settings = CSettings::GetInstance();
    if (settings->GetCaller() == this)
        return;
    // One of the two must not be remembered while the other is still the former user's.
    const QSignalBlocker blocker(m_pType);
    m_pType->setCurrentIndex(IndexOfStoredType());
    m_pText->setText(QString::fromUtf8(settings->GetRinggameFilter()));
    ApplyFilter();
}

void CLobbyView::ShowState()
{
    const int all = m_pModel->rowCount();
    const int shown = m_pFilter->rowCount();
    QString text = shown == all ? QString(TEXT_TABLES).arg(all) : QString(TEXT_SOME_TABLES).arg(shown).arg(all);
    if (m_pModel->IsStale())
        text = all == 0 ? QString(TEXT_WAITING) : text + TEXT_STALE;
    if (!m_strSeatAnswer.isEmpty())
        text += QLatin1String(" - ") + m_strSeatAnswer;
    m_pStatus->setText(text);

    QPalette palette;
    if (m_pModel->IsStale())
        palette.setColor(QPalette::Text, this->palette().color(QPalette::Disabled, QPalette::Text));
    m_pTable->setPalette(palette);
}
