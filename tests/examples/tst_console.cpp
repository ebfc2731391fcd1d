// The console window of the example client: the messages of the console, and what crosses the bus of a real host.

#include <client/ConsoleWindow.h>
#include <client/Host.h>

#include <support/Languages.h>
#include <support/StubPlugin.h>

#include <QAbstractButton>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTableView>

class tst_console : public QObject
{
    Q_OBJECT

    const CLanguages m_languages{"1|example|bus_from|from #plugin#;1|example|bus_to_plugins|to all;"
                                 "1|example|bus_pause|#count#;1|example|console_error|Error"_s};
    CHost m_host{"127.0.0.1"_s, 1};
    CStubPlugin m_plugin;
    std::unique_ptr<CConsoleWindow> m_window;

    template <typename Widget>
    Widget *Find(const char *name) const
    {
        return m_window->currentWidget()->findChild<Widget *>(QLatin1String(name));
    }
    QTableView *View() const { return Find<QTableView>("rows"); }
    int CountRows() const { return View()->model()->rowCount(); }
    // What a column shows.
    QString See(int column) const
    {
        QStringList texts;
        for (int row = 0; row < CountRows(); ++row)
            texts.append(View()->model()->index(row, column).data().toString());
        return texts.join(u' ');
    }
    static void Add(const char *text, int category, int level, const char *detail = "")
    {
        CConsole::AddMessage(QLatin1String(text), CConsole::EMessageCategory(category),
                             CConsole::EMessageLevel(level), QLatin1String(detail), 0);
    }
    void Send(const QByteArray &data, const char *code = "CODE", int times = 1)
    {
        CEvent event = CEvent::Create("EVNT"_s, QString::fromLatin1(code, 4));
        event.data = data;
        for (int i = 0; i < times; ++i)
            m_plugin.SendInternEvent(event, false);
    }

private Q_SLOTS:
    void initTestCase() { m_host.ConnectPlugin(&m_plugin); }
    void init()
    {
        Add("early", CConsole::MC_Plugin, CConsole::ML_Info, "Some\nDetail");
        m_window = std::make_unique<CConsoleWindow>(m_host, nullptr);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }
    void cleanup() { CConsole::Clear(); }

    void MessagesAreFilteredAndCopied()
    {
        Add("other", 77, CConsole::ML_Error);
        Add("late", CConsole::MC_Plugin, CConsole::ML_Debug);
        QCOMPARE(See(3), "early other late"_s);
        auto *category = Find<QComboBox>("category");
        category->setCurrentIndex(2); // of plugins
        QCOMPARE(See(3), "early late"_s);
        category->setCurrentIndex(6); // which came as a number
        QCOMPARE(See(1) + See(2), "77Error"_s);
        category->setCurrentIndex(0);
        Find<QComboBox>("level")->setCurrentIndex(2);
        QCOMPARE(See(3), "early other"_s);
        const auto copied = [] { return QGuiApplication::clipboard()->text().section(u'\t', 3); };
        View()->selectRow(1);
        View()->setFocus();
        QTest::keyClick(View(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(copied(), "other\t\n"_s);
        View()->clearSelection();
        QTest::keyClicks(Find<QLineEdit>("search"), "dETAIL"_s);
        Find<QAbstractButton>("copy")->click();
        QCOMPARE(copied(), "early\tSome Detail\n"_s);
        Find<QAbstractButton>("clear")->click();
        QVERIFY(CConsole::GetMessages().isEmpty() && CountRows() == 0);
    }

    void EndStaysInViewAndNothingElse()
    {
        const QScrollBar *bar = View()->verticalScrollBar();
        for (int i = 0; i < 1100; ++i)
            Add("text", 0, CConsole::ML_Error);
        QTRY_VERIFY(bar->maximum() > 900 && bar->value() == bar->maximum());
        QCOMPARE(CountRows(), 1000);
        View()->scrollToTop();
        Add("text", 0, CConsole::ML_Error);
        QTest::qWait(50);
        QCOMPARE(bar->value(), 0);
    }

    void EventsAreSeenBothWays()
    {
        m_window->setCurrentIndex(1);
        Send("0123456789abcdef\x01~\xff", "A\0\xff\\");
        Send({});
        QCOMPARE(See(1), "from stub to all from stub to all"_s);
        QTest::keyClicks(Find<QLineEdit>("search"), "a\\X00"_s);
        QCOMPARE(See(3) + See(6), "A\\x00\\xff\\ A\\x00\\xff\\19 19"_s);
        View()->selectRow(0);
        QCOMPARE(Find<QPlainTextEdit>("hex")->toPlainText(),
                 "000000  30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66 0123456789abcdef\n"
                 "000010  01 7e ff                                        .~.\n"_s);
        auto *pause = Find<QAbstractButton>("pause");
        pause->click();
        Send({}, "A\0\xff\\", 3);
        pause->click();
        QCOMPARE(pause->text() + QString::number(CountRows()), "62"_s);
    }

    void OldestEventsGo()
    {
        m_window->setCurrentIndex(1);
        Send({}, "CODE", 2600);
        QVERIFY(CountRows() > 4800 && CountRows() <= 5000);
        View()->selectRow(0);
        Send(QByteArray(32768, 'x'), "BULK", 100);
        QVERIFY(CountRows() > 120 && CountRows() <= 128 && !See(3).contains("CODE"_s));
        Send(QByteArray(5 << 20, 'x'), "HUGE");
        QCOMPARE(See(3) + See(6), "HUGE5242880"_s);
        View()->selectRow(0);
        QCOMPARE(Find<QPlainTextEdit>("hex")->blockCount(), 4097);
    }
};

QTEST_MAIN(tst_console)
#include "tst_console.moc"
