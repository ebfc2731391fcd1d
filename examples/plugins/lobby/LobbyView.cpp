#include "LobbyView.h"

#include <common/FormField.h>
#include <settings/Settings.h>

#include <QAction>
#include <QComboBox>
#include <QEvent>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QShortcut>
#include <QSignalBlocker>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>
#include <QtMath>

namespace {

constexpr int MINIMUM_ROWS = 8;

} // namespace

CLobbyView::CLobbyView(CLobbyTables *tables)
    : m_pTables(tables)
    , m_pTakeSeat(CreateSeatAction())
    , m_pColumns(new CLobbyColumns(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(CreateFilterLine()); // the first in the order of Tab
    // NOLINTNEXTLINE(cppcoreguidelines-prefer-member-initializer): after the filter line
    m_pTable = CreateField<QTableView>(this, "lobbyTable");
    layout->addWidget(m_pTable, 1);
    auto *status = CreateField<QLabel>(this, "lobbyStatus");
    status->setTextFormat(Qt::PlainText); // the server chooses the names in it
    status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    layout->addWidget(status);
    SetUpTable();
    QWidget *noMatch = CreateNoMatch();
    const auto showStatus = [this, status, noMatch] {
        m_pCount->setText(m_pTables->GetCount());
        status->setText(m_pTables->GetStatus());
        noMatch->setVisible(m_pTables->AreAllFiltered());
        m_pTable->viewport()->update(); // the colour of the texts too depends on the connection
    };
    connect(tables, &CLobbyTables::signal_StatusChanged, this, showStatus);
    connect(tables, &CLobbyTables::signal_TextWidthsChanged, this, &CLobbyView::MeasureColumns);
    connect(m_pColumns, &CLobbyColumns::signal_WidthsChanged, this, &CLobbyView::ShowColumns);
    MeasureColumns();
    showStatus();
}

QAction *CLobbyView::CreateSeatAction()
{
    auto *action = new QAction(this);
    action->setObjectName(QStringLiteral("takeSeat"));
    Texts::Bind(action, &QAction::setText, "LOBBY_TAKE_SEAT");
    Texts::Bind(action, &QAction::setToolTip, "LOBBY_TAKE_SEAT_TIP");
    const auto enable = [this, action] { action->setEnabled(m_pTables->GetChosenRow() >= 0); };
    connect(m_pTables, &CLobbyTables::signal_ChosenRowChanged, action, enable);
    enable();
    connect(action, &QAction::triggered, m_pTables, &CLobbyTables::AskForSeat);
    return action;
}

// Creates what stands in the list when the filter accepts no table.
QWidget *CLobbyView::CreateNoMatch()
{
    auto *view = new QWidget(m_pTable->viewport());
    auto *text = new QLabel(view);
    Texts::Bind(text, &QLabel::setText, "LOBBY_NO_MATCH");
    auto *clear = CreateField<QPushButton>(view, "clearFilter");
    Texts::Bind(clear, &QPushButton::setText, "LOBBY_CLEAR_FILTER");
    connect(clear, &QPushButton::clicked, m_pTables, &CLobbyTables::ClearFilter);
    auto *column = new QVBoxLayout(view);
    column->addWidget(text, 0, Qt::AlignCenter);
    column->addWidget(clear, 0, Qt::AlignCenter);
    auto *room = new QVBoxLayout(m_pTable->viewport());
    room->addWidget(view, 0, Qt::AlignCenter);
    return view;
}

QLayout *CLobbyView::CreateFilterLine()
{
    auto *text = CreateField<QLineEdit>(this, "lobbyFilter");
    BindHint(text, "LOBBY_FILTER");
    text->setClearButtonEnabled(true);
    setFocusProxy(text);
    auto *type = CreateField<QComboBox>(this, "lobbyType");
    type->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    for (const auto &[key, value] : CLobbyTables::TYPES)
        AddTextItem(type, key, value);

    CSettings *settings = CSettings::GetInstance();
    const auto show = [=] {
        const QSignalBlocker blocker(type);
        type->setCurrentIndex(qMax(0, type->findData(settings->GetSelectedGametype())));
        const QString filter = QString::fromUtf8(settings->GetRinggameFilter());
        if (text->text() != filter) // keep the cursor in place while the user types
            text->setText(filter);
    };
    Texts::Follow(this, show, settings, &CSettings::signal_RinggameFilterChanged,
                  &CSettings::signal_SelectedGametypeChanged);
    connect(text, &QLineEdit::textChanged, settings, [=] {
        if (text->text().toUtf8() != settings->GetRinggameFilter()) // else the text came from the settings
            settings->SetRinggameFilter(text->text().toUtf8());
    });
    connect(type, QOverload<int>::of(&QComboBox::currentIndexChanged), settings,
            [=] { settings->SetSelectedGametype(type->currentData().toInt()); });
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, text,
            [=] { text->setFocus(Qt::ShortcutFocusReason); });
    connect(text, &QLineEdit::returnPressed, this, [this] { m_pTable->setFocus(Qt::OtherFocusReason); });
    auto *line = new QHBoxLayout;
    line->addWidget(text, 1);
    line->addWidget(type);
    m_pCount = CreateField<QLabel>(this, "lobbyCount");
    line->addWidget(m_pCount);
    auto *takeSeat = new QToolButton(this);
    takeSeat->setDefaultAction(m_pTakeSeat);
    takeSeat->setFocusPolicy(Qt::StrongFocus);
    line->addWidget(takeSeat);
    return line;
}

void CLobbyView::SetUpTable()
{
    Texts::Bind(m_pTable, &QWidget::setAccessibleName, "LOBBY_TITLE");
    m_pTable->setModel(m_pTables);
    m_pTable->addAction(m_pTakeSeat);
    m_pTable->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_pTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_pTable->setSelectionMode(QAbstractItemView::SingleSelection);
    m_pTable->setAlternatingRowColors(true);
    m_pTable->setShowGrid(false);
    m_pTable->setWordWrap(false);
    m_pTable->setTabKeyNavigation(false);                           // Tab leaves the table, the arrows move in it
    m_pTable->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff); // the columns are fitted in
    m_pTable->viewport()->installEventFilter(this);
    m_pTable->verticalHeader()->hide();
    m_pTable->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    QHeaderView *header = m_pTable->horizontalHeader();
    header->setHighlightSections(false);
    const auto showOrder = [this, header] {
        header->setSortIndicator(m_pTables->GetOrderColumn(), m_pTables->GetOrder());
    };
    connect(m_pTables, &CLobbyTables::signal_OrderChanged, header, showOrder);
    showOrder(); // before sorting, which would change the order
    m_pTable->setSortingEnabled(true);
    connect(header, &QHeaderView::sectionResized, this, &CLobbyView::OnColumnResized);
    for (int column = 0; column < header->count(); ++column) { // Ctrl+1 and so on, like a click on the title
        const QKeySequence keys(QStringLiteral("Ctrl+%1").arg(column + 1));
        connect(new QShortcut(keys, this), &QShortcut::activated, m_pTables, [this, column] {
            const bool turns = m_pTables->GetOrderColumn() == column && m_pTables->GetOrder() == Qt::AscendingOrder;
            m_pTables->sort(column, turns ? Qt::DescendingOrder : Qt::AscendingOrder);
        });
    }
    connect(m_pTable->selectionModel(), &QItemSelectionModel::selectionChanged, m_pTables,
            [this] { m_pTables->SetChosenRow(m_pTable->selectionModel()->selectedRows().value(0).row()); });
    connect(m_pTable, &QTableView::activated, m_pTables, &CLobbyTables::AskForSeat);
}

// The least widths of the columns; the table is never narrower than their sum.
void CLobbyView::MeasureColumns()
{
    QHeaderView *header = m_pTable->horizontalHeader();
    const int margins = 2 * (style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1);  // of a cell
    const int mark = style()->pixelMetric(QStyle::PM_HeaderMarkSize, nullptr, header); // of the sort indicator
    int sum = m_pTable->verticalScrollBar()->sizeHint().width() + margins;
    QList<qreal> needed;
    for (const qreal width : m_pTables->GetTextWidths()) {
        const int title = header->sectionSizeHint(int(needed.size())) + mark;
        needed.append(qMax(qCeil(width) + margins, title));
        sum += qRound(needed.constLast());
    }
    m_pTable->setMinimumSize(sum, m_pTable->verticalHeader()->defaultSectionSize() * (MINIMUM_ROWS + 1));
    m_pColumns->SetRoom(m_pTable->viewport()->width());
    m_pColumns->SetNeeded(needed);
}

void CLobbyView::ShowColumns()
{
    const QScopedValueRollback<bool> showing(m_bShowing, true);
    for (int column = 0; column < m_pColumns->GetWidths().size(); ++column)
        m_pTable->horizontalHeader()->resizeSection(column, qRound(m_pColumns->GetWidths().at(column)));
}

void CLobbyView::OnColumnResized(int column, int, int width)
{
    if (!m_bShowing)
        m_pColumns->Drag(column, width);
}

bool CLobbyView::eventFilter(QObject *object, QEvent *event)
{
    if (object == m_pTable->viewport() && event->type() == QEvent::Resize)
        m_pColumns->SetRoom(m_pTable->viewport()->width());
    return QWidget::eventFilter(object, event);
}
