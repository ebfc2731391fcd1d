#include <files/Console.h>

#include <QSignalSpy>
#include <QtTest>

// The bounded list of messages, and the singleton that announces them.
class tst_Console : public QObject
{
    Q_OBJECT

    static void Add(int n)
    {
        CConsole::AddMessage(QStringLiteral("a"), CConsole::MC_Network, CConsole::ML_Warning, QStringLiteral("b"), n);
    }

private Q_SLOTS:
    void signal()
    {
        Add(1);
        QVERIFY(!CConsole::IsExisting()); // the message is kept, and creates nothing

        const QSignalSpy added(CConsole::GetInstance(), &CConsole::signal_MessageAdded);
        QList<int> queued;
        const QObject receiver;
        connect(
            CConsole::GetInstance(), &CConsole::signal_MessageAdded, &receiver,
            [&](const CConsole::SConsoleMessage &message) { queued << message.iDetail; }, Qt::QueuedConnection);
        const QDateTime before = QDateTime::currentDateTime();
        Add(-5);
        const auto announced = added.value(0).value(0).value<CConsole::SConsoleMessage>();
        for (const CConsole::SConsoleMessage &message : {CConsole::GetMessages().value(1), announced}) {
            QVERIFY(before <= message.dtTimestamp && message.dtTimestamp <= QDateTime::currentDateTime());
            QCOMPARE(message.strMessage + message.strDetail, QStringLiteral("ab"));
            QVERIFY(message.eCategory == CConsole::MC_Network && message.eLevel == CConsole::ML_Warning);
            QCOMPARE(message.iDetail, -5);
        }
        QTRY_COMPARE(queued, QList<int>{-5});
    }

    void lifetime()
    {
        Add(1);
        const QPointer<CConsole> first = CConsole::GetInstance();
        CConsole::DestroyInstance();
        QVERIFY(first && !CConsole::IsExisting()); // it lives until the event loop turns
        QTRY_VERIFY(!first);
        QVERIFY(!CConsole::GetMessages().isEmpty());
    }

    void boundAndClear()
    {
        for (int i = 1; i <= 1001; ++i)
            Add(i);
        QCOMPARE(CConsole::GetMessages().size(), 1000);
        QCOMPARE(CConsole::GetMessages().first().iDetail, 2);
        QCOMPARE(CConsole::GetMessages().last().iDetail, 1001);
        CConsole::Clear();
        QCOMPARE(CConsole::GetMessages().size(), 0);
    }
};

QTEST_GUILESS_MAIN(tst_Console)
#include "tst_console.moc"
