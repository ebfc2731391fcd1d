#include "BusMonitor.h"

#include "Host.h"
#include "LogTable.h"

#include <common/FormField.h>
#include <settings/Settings.h>
#include <ui/TableView.h>

#include <QCheckBox>
#include <QDateTime>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSplitter>
#include <QTextDocument>
#include <QtMath>

#include <algorithm>

namespace {

constexpr int MAX_EVENTS = 5000;
constexpr int MAX_BYTES = 4 << 20;
constexpr int MAX_SHOWN_BYTES = 1 << 16; // without a delay
constexpr int LINE_BYTES = 16;
constexpr int HEX_CHARACTERS = 8 + 3 * LINE_BYTES; // of a line, with its offset
// For what the user has chosen.
const QString BUS_KEY = QStringLiteral("bus");
const QString BUS_PARTS_KEY = QStringLiteral("busparts");

constexpr auto isPrinting = [](char byte) { return byte >= ' ' && byte <= '~'; };

QString TagText(const char (&tag)[4])
{
    QString text;
    for (const char byte : tag)
        text += isPrinting(byte) ? QString(QLatin1Char(byte))
                                 : QStringLiteral("\\x%1").arg(quint8(byte), 2, 16, QLatin1Char('0'));
    return text;
}

QString DirectionText(const QVariant &plugin)
{
    return Texts::Get(plugin.isNull() ? "BUS_TO_PLUGINS" : "BUS_FROM", {{"#plugin#", plugin}});
}

// Returns a line for each 16 bytes, which \a makeLine makes of them and of their offset.
template <typename MakeLine>
QString MakeLines(const QByteArray &data, const MakeLine &makeLine)
{
    QString text;
    for (int at = 0; at < qMin(int(data.size()), MAX_SHOWN_BYTES); at += LINE_BYTES)
        text += makeLine(at, data.mid(at, LINE_BYTES)) + u'\n';
    return data.size() > MAX_SHOWN_BYTES ? text + QLatin1String("...") : text;
}

QString HexLine(int offset, const QByteArray &bytes)
{
    return QStringLiteral("%1  ").arg(offset, 6, 16, QLatin1Char('0')) + QString::fromLatin1(bytes.toHex(' '));
}

QString PrintableLine(int, QByteArray bytes)
{
    std::replace_if(
        bytes.begin(), bytes.end(), [](char byte) { return !isPrinting(byte); }, '.');
    return QString::fromLatin1(bytes);
}

// Creates a view of lines with that many characters, which stand in columns.
QPlainTextEdit *CreateBytes(QWidget *parent, const char *name, const char *key, int characters)
{
    auto *view = CreateField<QPlainTextEdit>(parent, name);
    Texts::Bind(view, &QWidget::setAccessibleName, key);
    view->setReadOnly(true); // so that Tab leaves it
    view->setLineWrapMode(QPlainTextEdit::NoWrap);
    view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    view->setStyleSheet(
        QStringLiteral("QPlainTextEdit { font-family: \"%1\" }").arg(font.family())); // lasts, unlike a font
    view->ensurePolished();
    const int frame = 2 * (view->frameWidth() + qCeil(view->document()->documentMargin()));
    view->setMinimumWidth(frame + view->fontMetrics().horizontalAdvance(QString(characters + 1, u'0')));
    return view;
}

class CBusMonitor : public CLogTable
{
public:
    CBusMonitor(CHost &host, QCheckBox *pause, QLineEdit *group);

private:
    QWidget *CreateDetail();
    void CreateParts();
    void Record(const CEvent &event, const CPluginInterface *sender);
    void ShowPassed(int count);

    QCheckBox *m_pPause; // a child
    int m_iPassed = 0;
    int m_iBytes = 0;
};

CBusMonitor::CBusMonitor(CHost &host, QCheckBox *pause, QLineEdit *group)
    : CLogTable(BUS_KEY,
                {"LOG_TIME", "BUS_DIRECTION", "BUS_TAG1", "BUS_TAG2", "BUS_MODULE", "BUS_TARGET", "BUS_SIZE"},
                {30, 30, 16, 16, 14, 16, 14}, "BUS_CODE_FIELD", {{nullptr, pause}, {"BUS_GROUP_FIELD", group}},
                [group](const QVariantList &values) {
                    return values.value(2).toString().contains(group->text(), Qt::CaseInsensitive);
                })
    , m_pPause(pause)
{
    group->setClearButtonEnabled(true);
    connect(group, &QLineEdit::textChanged, this, &CLogTable::Refilter);
    CreateParts();
    connect(m_pRows, &QStandardItemModel::rowsAboutToBeRemoved, this,
            [this](const QModelIndex &, int first, int last) {
                for (int row = first; row <= last; ++row)
                    m_iBytes -= int(GetValues(row).at(0).toByteArray().size());
            });
    // The number stays visible after the pause, to show the gap.
    connect(m_pPause, &QCheckBox::toggled, this, [this](bool paused) { ShowPassed(paused ? 0 : m_iPassed); });
    connect(&host, &CHost::signal_EventPassed, this, &CBusMonitor::Record);
    Texts::Follow(this, [this] {
        for (int row = 0; row < GetRowCount(); ++row)
            m_pRows->item(row, 1)->setText(DirectionText(GetValues(row).at(1)));
        ShowPassed(m_iPassed);
    });
}

// Creates the bytes of the chosen event, and beside them what they are as text. Both are scrolled together.
QWidget *CBusMonitor::CreateDetail()
{
    auto *detail = new QWidget(this);
    auto *hex = CreateBytes(detail, "hex", "BUS_BYTES", HEX_CHARACTERS);
    auto *text = CreateBytes(detail, "text", "BUS_TEXT", LINE_BYTES);
    hex->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    hex->setFixedWidth(hex->minimumWidth());
    connect(hex->verticalScrollBar(), &QScrollBar::valueChanged, text->verticalScrollBar(), &QScrollBar::setValue);
    connect(text->verticalScrollBar(), &QScrollBar::valueChanged, hex->verticalScrollBar(), &QScrollBar::setValue);
    auto *row = new QHBoxLayout(detail);
    row->setContentsMargins(QMargins());
    row->addWidget(hex);
    row->addWidget(text);
    connect(m_pView->selectionModel(), &QItemSelectionModel::selectionChanged, detail, [this, hex, text] {
        const QModelIndex chosen = m_pView->selectionModel()->selectedRows().value(0);
        const QByteArray payload =
            chosen.isValid() ? GetValues(m_shown.mapToSource(chosen).row()).at(0).toByteArray() : QByteArray();
        hex->setPlainText(MakeLines(payload, &HexLine));
        text->setPlainText(MakeLines(payload, &PrintableLine));
    });
    return detail;
}

// Lets the user divide the room between the events and the bytes of the chosen one.
void CBusMonitor::CreateParts()
{
    auto *parts = CreateField<QSplitter>(nullptr, "parts");
    parts->setOrientation(Qt::Vertical);
    parts->setChildrenCollapsible(false);
    layout()->removeWidget(m_pView);
    parts->addWidget(m_pView);
    parts->addWidget(CreateDetail());
    parts->setStretchFactor(0, 1); // so that the bytes keep their height when the window gets another one
    layout()->addWidget(parts);
    const auto load = [parts] {
        const QList<double> heights = TableView::Load(BUS_PARTS_KEY);
        if (heights.size() == 2)
            parts->setSizes({CLogTable::ToPixels(heights.at(0)), CLogTable::ToPixels(heights.at(1))});
    };
    connect(parts, &QSplitter::splitterMoved, parts, [parts] {
        const QList<int> heights = parts->sizes();
        TableView::Store(BUS_PARTS_KEY, {double(heights.at(0)), double(heights.at(1))});
    });
    connect(CSettings::GetInstance(), &CSettings::signal_HeaderSizesChanged, parts, load);
    load();
}

// The plugins wait for the event meanwhile, so do little here.
void CBusMonitor::Record(const CEvent &event, const CPluginInterface *sender)
{
    if (m_pPause->isChecked())
        return ShowPassed(m_iPassed + 1);
    // A deep copy: the bytes may belong to the plugin and be valid only during the call.
    const QByteArray payload(event.data.constData(), qMin(event.data.size(), MAX_BYTES));
    const QVariant plugin = sender ? sender->GetName() : QVariant();
    const QString tags[] = {TagText(event.tag1), TagText(event.tag2)};
    AddRow(QDateTime::currentDateTime(),
           {DirectionText(plugin), tags[0], tags[1], QString::number(event.moduleID), QString::number(event.targetID),
            QString::number(event.data.size())},
           tags[1], {payload, plugin, tags[0]});
    m_iBytes += int(payload.size());
    while (GetRowCount() > MAX_EVENTS || m_iBytes > MAX_BYTES)
        RemoveOldest(1 + GetRowCount() / 50); // several at once, as each removal costs the same
}

void CBusMonitor::ShowPassed(int count)
{
    m_iPassed = count;
    m_pPause->setText(Texts::Get("BUS_PAUSE", {{"#count#", count}}));
}

} // namespace

QWidget *CreateBusMonitor(CHost &host)
{
    return new CBusMonitor(host, CreateField<QCheckBox>(nullptr, "pause"), CreateField<QLineEdit>(nullptr, "group"));
}
