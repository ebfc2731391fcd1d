#include "LogTable.h"

#include <common/FormField.h>
#include <settings/Settings.h>
#include <ui/TableView.h>

#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QShortcut>

#include <algorithm>

CLogTable::CLogTable(const QString &storageKey, const QVector<const char *> &titleKeys, const QVector<int> &widths,
                     const char *searchKey, const TFields &fields, const TChoice &isChosen)
    : m_pRows(new QStandardItemModel(0, int(titleKeys.size()), this))
    , m_pView(CreateField<QTableView>(nullptr, "rows"))
    , m_strStorageKey(storageKey)
    , m_widths(widths)
{
    m_shown.isChosen = isChosen;
    m_shown.setSourceModel(m_pRows);
    m_shown.setFilterRole(Qt::UserRole);
    m_shown.setFilterCaseSensitivity(Qt::CaseInsensitive);
    auto *search = CreateField<QLineEdit>(nullptr, "search");
    search->setClearButtonEnabled(true);
    auto *clear = CreateField<QPushButton>(nullptr, "clear");
    auto *copy = CreateField<QPushButton>(nullptr, "copy");
    Texts::Bind(copy, &QPushButton::setText, "LOG_COPY");
    Texts::Bind(clear, &QPushButton::setText, "LOG_CLEAR");
    connect(search, &QLineEdit::textChanged, &m_shown, &QSortFilterProxyModel::setFilterFixedString);
    connect(copy, &QPushButton::clicked, this, &CLogTable::Copy);
    connect(clear, &QPushButton::clicked, this, &CLogTable::signal_Cleared);
    connect(this, &CLogTable::signal_Cleared, this, [this] { RemoveOldest(GetRowCount()); });
    new QShortcut(QKeySequence::Copy, this, this, &CLogTable::Copy);
    auto *line = new QHBoxLayout;
    const TFields all = fields + TFields{{searchKey, search}, {nullptr, copy}, {nullptr, clear}};
    for (const auto &[key, field] : all) {
        if (key)
            line->addWidget(CreateLabel(key, field));
        line->addWidget(field);
    }
    auto *column = new QVBoxLayout(this);
    column->addLayout(line);
    column->addWidget(m_pView);
    SetUpView(titleKeys);
}

void CLogTable::SetUpView(const QVector<const char *> &titleKeys)
{
    m_pView->setModel(&m_shown);
    m_pView->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_pView->setSelectionMode(QAbstractItemView::SingleSelection);
    m_pView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_pView->setAlternatingRowColors(true);
    m_pView->setShowGrid(false);
    m_pView->setWordWrap(false);
    m_pView->setTabKeyNavigation(false);
    m_pView->verticalHeader()->hide();
    m_pView->verticalHeader()->setDefaultSectionSize(m_pView->verticalHeader()->minimumSectionSize());
    QHeaderView *header = m_pView->horizontalHeader();
    header->setHighlightSections(false);                           // bold titles might not fit
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter); // as the cells
    header->setStretchLastSection(true);
    for (int i = 0; i < titleKeys.size(); ++i) {
        Texts::Follow(
            this, [this, titleKeys, i] { m_pRows->setHeaderData(i, Qt::Horizontal, Texts::Get(titleKeys.at(i))); });
    }
    LoadWidths();
    connect(CSettings::GetInstance(), &CSettings::signal_HeaderSizesChanged, this, &CLogTable::LoadWidths);
    connect(header, &QHeaderView::sectionResized, this, [this, header](int column) {
        if (column < header->count() - 1)
            StoreWidths();
    });
    // The range grows when the view is laid out, once for many rows.
    QScrollBar *bar = m_pView->verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this, [this, bar](int value) { m_bAtEnd = value == bar->maximum(); });
    connect(bar, &QScrollBar::rangeChanged, this,
            [this, bar](int, int end) { bar->setValue(m_bAtEnd ? end : bar->value()); });
}

void CLogTable::LoadWidths()
{
    if (m_bOwnWidths)
        return;
    const QScopedValueRollback<bool> loading(m_bOwnWidths, true);
    const QList<double> stored = TableView::Load(m_strStorageKey);
    for (int i = 0; i < m_widths.size(); ++i)
        m_pView->setColumnWidth(i, stored.size() == m_widths.size()
                                       ? ToPixels(stored.at(i))
                                       : m_widths.at(i) * fontMetrics().averageCharWidth());
}

void CLogTable::StoreWidths()
{
    if (m_bOwnWidths)
        return;
    const QScopedValueRollback<bool> storing(m_bOwnWidths, true);
    QList<double> widths;
    for (int i = 0; i < m_widths.size(); ++i)
        widths.append(m_pView->columnWidth(i));
    TableView::Store(m_strStorageKey, widths);
}

void CLogTable::AddRow(const QDateTime &time, const QStringList &texts, const QString &searched,
                       const QVariantList &values)
{
    QList<QStandardItem *> cells{new QStandardItem(time.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz")))};
    cells.first()->setData(searched, Qt::UserRole);
    cells.first()->setData(values);
    for (const QString &text : texts)
        cells.append(new QStandardItem(text));
    m_pRows->appendRow(cells);
}

void CLogTable::Copy() const
{
    QModelIndexList rows = m_pView->selectionModel()->selectedRows();
    for (int row = 0, all = rows.isEmpty() ? m_shown.rowCount() : 0; row < all; ++row)
        rows.append(m_shown.index(row, 0));
    std::sort(rows.begin(), rows.end());
    QString text;
    for (const QModelIndex &row : qAsConst(rows)) {
        for (int i = 0; i < m_shown.columnCount(); ++i)
            text += row.siblingAtColumn(i).data().toString().replace(u'\n', u' ') + u'\t';
        text.back() = u'\n';
    }
    QApplication::clipboard()->setText(text);
}
