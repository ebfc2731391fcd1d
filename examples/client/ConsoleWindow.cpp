#include "ConsoleWindow.h"

#include "BusMonitor.h"
#include "LogTable.h"

#include <common/FormField.h>
#include <files/Console.h>
#include <settings/Settings.h>

#include <QComboBox>
#include <QEvent>
#include <QTableView>

namespace {

constexpr QSize CONSOLE_SIZE(1040, 600);
// When the window has not moved for this time, its position is stored.
constexpr int CONSOLE_REST_MS = 500;
const QString CONSOLE_PLACE_KEY = QStringLiteral("console");

// Creates a box whose first entry stands for all, and whose other entries stand for the numbers from 0 on.
QComboBox *CreateChoice(const char *name, const QVector<const char *> &keys)
{
    auto *box = CreateField<QComboBox>(nullptr, name);
    box->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    for (int i = 0; i < keys.size(); ++i)
        AddTextItem(box, keys.at(i), i == 0 ? QVariant() : i - 1);
    return box;
}

// A number without a name is shown as such, and can be chosen from then on.
QString NameOf(QComboBox *box, int value)
{
    if (box->findData(value) < 0)
        box->addItem(QString::number(value), value);
    return box->itemText(box->findData(value));
}

QWidget *CreateMessages()
{
    QComboBox *category = CreateChoice("category", {"CONSOLE_ALL", "CONSOLE_GENERAL", "CONSOLE_PLUGIN",
                                                    "CONSOLE_NETWORK", "CONSOLE_DATABASE", "CONSOLE_UI"});
    QComboBox *level =
        CreateChoice("level", {"CONSOLE_ALL", "CONSOLE_DEBUG", "CONSOLE_INFO", "CONSOLE_WARNING", "CONSOLE_ERROR"});
    auto *table = new CLogTable(
        QStringLiteral("console"),
        {"LOG_TIME", "CONSOLE_CATEGORY", "CONSOLE_LEVEL", "CONSOLE_TEXT", "CONSOLE_DETAIL"}, {30, 20, 18, 56, 24},
        "CONSOLE_SEARCH", {{"CONSOLE_CATEGORY_FIELD", category}, {"CONSOLE_LEVEL_FIELD", level}},
        [=](const QVariantList &values) {
            return (category->currentIndex() == 0 || values.at(0) == category->currentData()) &&
                   (level->currentIndex() == 0 || values.at(1).toInt() >= level->currentData().toInt());
        });
    for (const QComboBox *box : {category, level})
        QObject::connect(box, QOverload<int>::of(&QComboBox::currentIndexChanged), table, &CLogTable::Refilter);
    const auto add = [=](const CConsole::SConsoleMessage &message) {
        const QString number = message.iDetail == 0 ? QString() : QStringLiteral(" (%1)").arg(message.iDetail);
        const QString detail = message.strDetail + number;
        table->AddRow(
            message.dtTimestamp,
            {NameOf(category, message.eCategory), NameOf(level, message.eLevel), message.strMessage, detail},
            message.strMessage + u'\n' + detail, {int(message.eCategory), int(message.eLevel)});
        // Rows that the console has dropped are removed here too.
        table->RemoveOldest(table->GetRowCount() - int(CConsole::GetMessages().size()));
    };
    QObject::connect(table, &CLogTable::signal_Cleared, &CConsole::Clear);
    QObject::connect(CConsole::GetInstance(), &CConsole::signal_MessageAdded, table, add);
    Texts::Follow(table, [=] {
        table->RemoveOldest(table->GetRowCount());
        const auto messages = CConsole::GetMessages();
        for (const CConsole::SConsoleMessage &message : messages)
            add(message);
    });
    return table;
}

} // namespace

CConsoleWindow::CConsoleWindow(CHost &host, QWidget *parent)
    : QTabWidget(parent)
{
    setObjectName(QStringLiteral("console"));
    setWindowFlags(Qt::Window);
    resize(CONSOLE_SIZE);
    restoreGeometry(QByteArray::fromBase64(CSettings::GetInstance()->GetWinPosByKey(CONSOLE_PLACE_KEY)));
    m_placeTimer.setSingleShot(true);
    m_placeTimer.setInterval(CONSOLE_REST_MS);
    connect(&m_placeTimer, &QTimer::timeout, this, &CConsoleWindow::RememberPlace);
    CloseByKeys(this);
    addTab(CreateMessages(), QString());
    addTab(CreateBusMonitor(host), QString());
    Texts::Follow(this, [this] {
        setWindowTitle(Texts::Get("CONSOLE_TITLE"));
        const QString titles[] = {Texts::Get("CONSOLE_MESSAGES"), Texts::Get("BUS_TITLE")};
        for (int page = 0; page < count(); ++page) {
            setTabText(page, titles[page]);
            widget(page)->findChild<QTableView *>()->setAccessibleName(titles[page]);
        }
    });
}

CConsoleWindow::~CConsoleWindow()
{
    if (m_placeTimer.isActive())
        RememberPlace();
}

bool CConsoleWindow::event(QEvent *event)
{
    if (isVisible() && (event->type() == QEvent::Move || event->type() == QEvent::Resize))
        m_placeTimer.start();
    return QTabWidget::event(event);
}

void CConsoleWindow::RememberPlace()
{
    m_placeTimer.stop();
    CSettings::GetInstance()->SetWinPosByKey(CONSOLE_PLACE_KEY, saveGeometry().toBase64());
}
