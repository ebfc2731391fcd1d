#include "LobbyView.h"

#include <common/FormField.h>
#include <settings/Settings.h>
#include <ui/TableView.h>

#include <QComboBox>
#include <QEvent>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QShortcut>
#include <QSignalBlocker>
#include <QTableView>
#include <QVBoxLayout>
#include <QtMath>

#include <algorithm>
#include <functional>

namespace {

constexpr int NO_COLUMN = -1;
constexpr int MINIMUM_ROWS = 8;
const QString TABLE_KEY = QStringLiteral("lobby");

} // namespace

CLobbyView::CLobbyView(CLobbyTables *tables)
    : m_pTables(tables)
    , m_pText(new QLineEdit(this))
    , m_pType(new QComboBox(this))
    , m_pTable(new QTableView(this))
    , m_pStatus(new QLabel(this))
{
    m_pStatus->setObjectName(QStringLiteral("lobbyStatus"));
    m_pStatus->setTextFormat(Qt::PlainText); // names in it are the server's
    m_pStatus->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    CreateFilterLine();
    CreateTable();
    Arrange();
    connect(tables, &CLobbyTables::signal_StatusChanged, this, &CLobbyView::ShowStatus);
    connect(tables, &CLobbyTables::signal_TextsChanged, this, &CLobbyView::ShowTypes);
    connect(tables, &CLobbyTables::signal_TextWidthsChanged, this, &CLobbyView::MeasureColumns);
    connect(tables, &CLobbyTables::signal_OrderChanged, this, &CLobbyView::ShowOrder);
    const CSettings *settings = CSettings::GetInstance();
    connect(settings, &CSettings::signal_RinggameFilterChanged, this, &CLobbyView::ShowFilter);
    connect(settings, &CSettings::signal_SelectedGametypeChanged, this, &CLobbyView::ShowFilter);
    connect(settings, &CSettings::signal_HeaderSizesChanged, this, &CLobbyView::FitStoredColumns);
    ShowTypes();
    MeasureColumns();
    ShowStatus();
}

void CLobbyView::CreateFilterLine()
{
    m_pText->setObjectName(QStringLiteral("lobbyFilter"));
    Texts::Bind(m_pText, &QLineEdit::setPlaceholderText, "LOBBY_FILTER");
    m_pText->setClearButtonEnabled(true);
    m_pType->setObjectName(QStringLiteral("lobbyType"));
    m_pType->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    const auto *find = new QShortcut(QKeySequence::Find, this);
    connect(find, &QShortcut::activated, m_pText, [this] { m_pText->setFocus(Qt::ShortcutFocusReason); });
    connect(m_pText, &QLineEdit::returnPressed, m_pTable, [this] { m_pTable->setFocus(Qt::OtherFocusReason); });
    connect(m_pText, &QLineEdit::textChanged, this, &CLobbyView::RememberFilter);
    connect(m_pType, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this] { CSettings::GetInstance()->SetSelectedGametype(m_pType->currentData().toInt()); });
}

void CLobbyView::CreateTable()
{
    m_pTable->setObjectName(QStringLiteral("lobbyTable"));
    m_pTable->setModel(m_pTables);
    m_pTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_pTable->setSelectionMode(QAbstractItemView::SingleSelection);
    m_pTable->setAlternatingRowColors(true);
    m_pTable->setShowGrid(false);
    m_pTable->setWordWrap(false);
    m_pTable->setTabKeyNavigation(false); // Tab leaves the table, the arrows move in it
    ShowOrder();                          // before sorting, which would change it
    m_pTable->setSortingEnabled(true);
    m_pTable->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff); // the columns are fitted in
    m_pTable->viewport()->installEventFilter(this);
    m_pTable->verticalHeader()->hide();
    m_pTable->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    m_pTable->horizontalHeader()->setHighlightSections(false);
    connect(m_pTable->horizontalHeader(), &QHeaderView::sectionResized, this, &CLobbyView::slot_ColumnResized);
    connect(m_pTable->selectionModel(), &QItemSelectionModel::selectionChanged, m_pTables,
            [this] { m_pTables->SetChosenRow(m_pTable->selectionModel()->selectedRows().value(0).row()); });
    connect(m_pTable, &QTableView::activated, m_pTables, &CLobbyTables::AskForSeat);
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

// What the settings hold already came from there.
void CLobbyView::RememberFilter()
{
    const QByteArray text = m_pText->text().toUtf8();
    if (text != CSettings::GetInstance()->GetRinggameFilter())
        CSettings::GetInstance()->SetRinggameFilter(text);
}

void CLobbyView::ShowTypes()
{
    const QSignalBlocker blocker(m_pType);
    m_pType->clear();
    const QVariantList types = m_pTables->GetTypes();
    for (const QVariant &type : types)
        m_pType->addItem(type.toMap().value(QStringLiteral("text")).toString(),
                         type.toMap().value(QStringLiteral("value")));
    ShowFilter();
}

void CLobbyView::ShowFilter()
{
    const CSettings *settings = CSettings::GetInstance();
    const QSignalBlocker blocker(m_pType);
    m_pType->setCurrentIndex(qMax(0, m_pType->findData(settings->GetSelectedGametype())));
    const QString text = QString::fromUtf8(settings->GetRinggameFilter());
    if (m_pText->text() != text) // the cursor stays where the user is typing
        m_pText->setText(text);
}

void CLobbyView::ShowStatus()
{
    m_pStatus->setText(m_pTables->GetStatus());
    QPalette palette;
    if (m_pTables->IsStale())
        palette.setColor(QPalette::Text, this->palette().color(QPalette::Disabled, QPalette::Text));
    m_pTable->setPalette(palette);
}

void CLobbyView::ShowOrder()
{
    m_pTable->horizontalHeader()->setSortIndicator(m_pTables->sortColumn(), m_pTables->sortOrder());
}

// What the columns need at least, which the table always has room for.
void CLobbyView::MeasureColumns()
{
    QHeaderView *header = m_pTable->horizontalHeader();
    const int margins = fontMetrics().horizontalAdvance(QLatin1Char('M'));
    const int mark = style()->pixelMetric(QStyle::PM_HeaderMarkSize, nullptr, header); // for any column to sort by
    int sum = m_pTable->verticalScrollBar()->sizeHint().width() + margins;
    m_neededWidths.clear();
    for (const qreal width : m_pTables->GetTextWidths()) {
        const int title = header->sectionSizeHint(m_neededWidths.size()) + mark;
        m_neededWidths.append(qMax(qCeil(width) + margins, title));
        sum += qRound(m_neededWidths.constLast());
    }
    m_pTable->setMinimumSize(sum, m_pTable->verticalHeader()->defaultSectionSize() * (MINIMUM_ROWS + 1));
    FitStoredColumns();
}

// Fits the widths into the table. If a column would get too narrow for its texts, a drag is taken back, and stored
// widths, which may be of another language, make room for those that the texts need.
void CLobbyView::FitColumns(const QList<double> &widths, int dragged)
{
    const int room = m_pTable->viewport()->width();
    QList<double> fitted = TableView::Recalculate(room, widths, m_neededWidths, dragged);
    if (!std::equal(fitted.begin(), fitted.end(), m_neededWidths.begin(), m_neededWidths.end(),
                    std::greater_equal<>()))
        fitted = dragged == NO_COLUMN ? TableView::Recalculate(room, {}, m_neededWidths, NO_COLUMN) : m_shownWidths;
    m_shownWidths = fitted;
    const QScopedValueRollback<bool> fitting(m_bFitting, true);
    for (int column = 0; column < fitted.size(); ++column)
        m_pTable->horizontalHeader()->resizeSection(column, qRound(fitted.at(column)));
}

void CLobbyView::FitStoredColumns()
{
    if (!m_bFitting)
        FitColumns(TableView::Load(TABLE_KEY), NO_COLUMN);
}

// A drag takes from the next column what that can spare.
void CLobbyView::slot_ColumnResized(int column)
{
    if (m_bFitting)
        return;
    QList<double> widths;
    for (int i = 0; i < m_neededWidths.size(); ++i)
        widths.append(m_pTable->columnWidth(i));
    FitColumns(widths, column);
    const QScopedValueRollback<bool> storing(m_bFitting, true);
    TableView::Store(TABLE_KEY, m_shownWidths);
}

bool CLobbyView::eventFilter(QObject *object, QEvent *event)
{
    if (object == m_pTable->viewport() && event->type() == QEvent::Resize)
        FitStoredColumns();
    return QWidget::eventFilter(object, event);
}
