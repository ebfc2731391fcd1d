#include <files/Console.h>

#include <QSignalSpy>
#include <QtTest>

static void Add(int number)
{
    CConsole::AddMessage(QStringLiteral("text"), CConsole::MC_Network, CConsole::ML_Warning, QStringLiteral("detail"),
                         number);
}

// The bounded list of messages, and the singleton that announces them.
class tst_Console : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void message();
    void boundAndClear();
    void lifetime();
    void queued();
};

void tst_Console::init()
{
    CConsole::Clear();
    QVERIFY(!CConsole::IsExisting());
}

void tst_Console::cleanup()
{
    CConsole::DestroyInstance();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void tst_Console::message()
{
    const QSignalSpy added(CConsole::GetInstance(), &CConsole::signal_MessageAdded);
    const QDateTime before = QDateTime::currentDateTime();
    Add(-5);
    const QDateTime after = QDateTime::currentDateTime();

    QCOMPARE(CConsole::GetMessages().size(), 1);
    QCOMPARE(added.size(), 1);
    const auto announced = added.at(0).at(0).value<CConsole::SConsoleMessage>();
    for (const CConsole::SConsoleMessage &message : {CConsole::GetMessages().at(0), announced}) {
        QVERIFY(before <= message.dtTimestamp && message.dtTimestamp <= after);
        QCOMPARE(message.strMessage, QStringLiteral("text"));
        QCOMPARE(message.strDetail, QStringLiteral("detail"));
        QCOMPARE(message.eCategory, CConsole::MC_Network);
        QCOMPARE(message.eLevel, CConsole::ML_Warning);
        QCOMPARE(message.iDetail, -5);
    }
}

void tst_Console::boundAndClear()
{
    for (int i = 1; i <= 1001; ++i)
        Add(i);
    QCOMPARE(CConsole::GetMessages().size(), 1000);
    QCOMPARE(CConsole::GetMessages().first().iDetail, 2);
    QCOMPARE(CConsole::GetMessages().last().iDetail, 1001);
    CConsole::Clear();
    Add(2);
    QCOMPARE(CConsole::GetMessages().size(), 1);
}

void tst_Console::lifetime()
{
    Add(1);
    QVERIFY(!CConsole::IsExisting()); // the message is kept, and creates nothing

    QPointer<CConsole> first = CConsole::GetInstance();
    QCOMPARE(CConsole::GetInstance(), first.data());
    QVERIFY(CConsole::IsExisting());
    Add(2);

    CConsole::DestroyInstance();
    QVERIFY(!CConsole::IsExisting());
    QVERIFY(first); // until the event loop turns
    QTRY_VERIFY(!first);
    CConsole::GetInstance();
    QCOMPARE(CConsole::GetMessages().size(), 2);
}

void tst_Console::queued()
{
    QList<int> numbers;
    connect(
        CConsole::GetInstance(), &CConsole::signal_MessageAdded, this,
        [&](const CConsole::SConsoleMessage &message) { numbers << message.iDetail; }, Qt::QueuedConnection);
    Add(7);
    Add(8);
    CConsole::Clear();
    QTRY_COMPARE(numbers, (QList<int>{7, 8}));
}

QTEST_GUILESS_MAIN(tst_Console)
#include "tst_console.moc"
