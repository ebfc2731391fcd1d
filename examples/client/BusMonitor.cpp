#include "BusMonitor.h"

#include "Host.h"
#include "LogTable.h"

#include <common/FormField.h>

#include <QCheckBox>
#include <QDateTime>
#include <QFontDatabase>
#include <QPlainTextEdit>

namespace {

constexpr int MAX_EVENTS = 5000;
constexpr int MAX_BYTES = 4 << 20;
constexpr int MAX_HEX_BYTES = 1 << 16; // that the view shows without a delay
constexpr int LINE_BYTES = 16;

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

// Returns a line for each 16 bytes: offset, bytes, and the printable ASCII characters.
QString HexText(const QByteArray &data)
{
    QString text;
    for (int at = 0; at < data.size(); at += LINE_BYTES) {
        const QByteArray line = data.mid(at, LINE_BYTES);
        const QString bytes = QString::fromLatin1(line.toHex(' ')).leftJustified(3 * LINE_BYTES);
        text += QStringLiteral("%1  ").arg(at, 6, 16, QLatin1Char('0')) + bytes;
        for (const char byte : line)
            text += QLatin1Char(isPrinting(byte) ? byte : '.');
        text += u'\n';
    }
    return text;
}

class CBusMonitor : public CLogTable
{
public:
    explicit CBusMonitor(CHost &host);

private:
    void Record(const CEvent &event, const CPluginInterface *sender);
    void ShowPassed(int count);

    QCheckBox *m_pPause; // a child
    int m_iPassed = 0;
    int m_iBytes = 0;
};

CBusMonitor::CBusMonitor(CHost &host)
    : CLogTable({"LOG_TIME", "BUS_DIRECTION", "BUS_TAG1", "BUS_TAG2", "BUS_MODULE", "BUS_TARGET", "BUS_SIZE"},
                {28, 30, 20, 20, 12, 16, 12}, "BUS_SEARCH", {{nullptr, CreateField<QCheckBox>(nullptr, "pause")}})
    , m_pPause(findChild<QCheckBox *>())
{
    auto *hex = CreateField<QPlainTextEdit>(this, "hex");
    Texts::Bind(hex, &QWidget::setAccessibleName, "BUS_BYTES");
    hex->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    hex->setReadOnly(true); // so that Tab leaves it
    layout()->addWidget(hex);
    connect(m_pView->selectionModel(), &QItemSelectionModel::currentRowChanged, hex,
            [this, hex](const QModelIndex &shown) {
                const int row = m_shown.mapToSource(shown).row();
                const QByteArray payload = row < 0 ? QByteArray() : GetValues(row).at(0).toByteArray();
                hex->setPlainText(HexText(payload.left(MAX_HEX_BYTES)) +
                                  QString(payload.size() > MAX_HEX_BYTES ? 3 : 0, u'.'));
            });
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
           tags[0] + u'\n' + tags[1], {payload, plugin});
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
    return new CBusMonitor(host);
}
