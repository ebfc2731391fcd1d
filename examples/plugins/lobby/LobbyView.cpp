#include "LobbyView.h"

#include <common/FormField.h>
#include <settings/Settings.h>
#include <time/CasinoTime.h>

#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QVBoxLayout>

namespace {

constexpr int ANY_TYPE = 0;

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
    Texts::Bind(this, &QWidget::setWindowTitle, "LOBBY_TITLE");
    m_pStatus->setObjectName(QStringLiteral("lobbyStatus"));
    m_pStatus->setTextFormat(Qt::PlainText); // names in it are the server's
    m_pStatus->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    CreateFilterLine();
    CreateTable();
    Arrange();
    connect(m_pModel, &CTableListModel::signal_ListChanged, this, &CLobbyView::slot_ListChanged);
    connect(m_pModel, &CTableListModel::signal_TextsChanged, this, &CLobbyView::slot_TextsChanged);
    connect(CCasinoTime::GetInstance(), &CCasinoTime::signal_TimeChanged, this, &CLobbyView::slot_ClockChanged);
    const CSettings *settings = CSettings::GetInstance();
    connect(settings, &CSettings::signal_RinggameFilterChanged, this, &CLobbyView::slot_FilterSettingChanged);
    connect(settings, &CSettings::signal_SelectedGametypeChanged, this, &CLobbyView::slot_FilterSettingChanged);
    connect(settings, &CSettings::signal_HeaderSizesChanged, this, &CLobbyView::slot_TableSettingChanged);
    connect(settings, &CSettings::signal_HeaderSortingColumnChanged, this, &CLobbyView::slot_TableSettingChanged);
    connect(settings, &CSettings::signal_HeaderSortingOrderChanged, this, &CLobbyView::slot_TableSettingChanged);
    slot_FilterSettingChanged();
    slot_TableSettingChanged();
    ShowState();
}

bool CLobbyView::HasChosenTable() const
{
    return m_pTable->selectionModel()->hasSelection();
}

void CLobbyView::ChooseTable()
{
    Q_EMIT m_pTable->activated(m_pTable->currentIndex());
}

void CLobbyView::ShowSeatAnswer(const CTranslationItem &answer)
{
    m_seatAnswer = answer;
    ShowState();
}

void CLobbyView::CreateFilterLine()
{
    m_pText->setObjectName(QStringLiteral("lobbyFilter"));
    Texts::Bind(m_pText, &QLineEdit::setPlaceholderText, "LOBBY_FILTER");
    m_pText->setClearButtonEnabled(true);
    m_pType->setObjectName(QStringLiteral("lobbyType"));
    m_pType->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    for (const auto &[key, type] : {std::pair<const char *, int>{"LOBBY_ALL", ANY_TYPE},
                                    {"LOBBY_RING_GAMES", GlobalDefines::TT_NORMAL},
                                    {"LOBBY_SIT_AND_GOS", GlobalDefines::TT_SITANDGO},
                                    {"LOBBY_TOURNAMENTS", GlobalDefines::TT_TOURNAMENT}})
        AddTextItem(m_pType, key, type);
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
    m_pTable->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff); // the columns are fitted in
    m_pTable->viewport()->installEventFilter(this);
    connect(m_pTable, &QTableView::activated, this, [this](const QModelIndex &cell) {
        Q_EMIT signal_TableChosen(m_pModel->GetTable(m_pFilter->mapToSource(cell).row()).uiID);
    });
    m_pTable->verticalHeader()->hide();
    m_pTable->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    const QHeaderView *header = m_pTable->horizontalHeader();
    m_pTable->horizontalHeader()->setHighlightSections(false);
    connect(header, &QHeaderView::sectionResized, this, &CLobbyView::slot_ColumnResized);
    connect(header, &QHeaderView::sortIndicatorChanged, this, &CLobbyView::slot_OrderChanged);
    SetColumnWidths(false);
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

void CLobbyView::slot_ListChanged()
{
    SetColumnWidths(true);
    ShowState();
}

void CLobbyView::slot_TextsChanged()
{
    m_seatAnswer.ReTranslate();
    SetColumnWidths(false);
    ShowState();
}

void CLobbyView::slot_ClockChanged()
{
    const int first = m_pTable->rowAt(0);
    if (!isVisible() || first < 0)
        return;
    const int last = m_pTable->rowAt(m_pTable->viewport()->height() - 1);
    for (int row = first; row <= (last < 0 ? m_pFilter->rowCount() - 1 : last); ++row)
        m_pModel->RefreshCountDown(m_pFilter->mapToSource(m_pFilter->index(row, 0)).row());
}

QString CLobbyView::MakeStatus() const
{
    const int all = m_pModel->rowCount();
    const int shown = m_pFilter->rowCount();
    CTranslationItem status =
        Texts::MakeItem(shown == all ? "LOBBY_TABLES" : "LOBBY_SOME_TABLES", {{"#n#", shown}, {"#all#", all}});
    if (m_pModel->IsStale() && all == 0)
        status = Texts::MakeItem("LOBBY_WAITING");
    else if (m_pModel->IsStale())
        status = Texts::MakeItem("LOBBY_STALE", {{"#tables#", status.GetTranslatedText()}});
    if (!m_seatAnswer.GetTranslatedText().isEmpty())
        status = Texts::MakeItem("LOBBY_ANSWER", {{"#status#", status.GetTranslatedText()},
                                                  {"#answer#", m_seatAnswer.GetTranslatedText()}});
    return status.GetTranslatedText();
}

void CLobbyView::ShowState()
{
    m_pStatus->setText(MakeStatus());
    QPalette palette;
    if (m_pModel->IsStale())
        palette.setColor(QPalette::Text, this->palette().color(QPalette::Disabled, QPalette::Text));
    m_pTable->setPalette(palette);
}
