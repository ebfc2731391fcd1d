// The console window of the example client: the messages of the console, and what crosses the bus of a real host.

#include <client/ConsoleWindow.h>
#include <client/Host.h>

#include <support/Languages.h>
#include <support/StubPlugin.h>

#include <QtWidgets>

class tst_console : public QObject
{
    Q_OBJECT

    const CLanguages m_languages{"1|example|bus_from|from #plugin#;1|example|bus_to_plugins|to all;"
                                 "1|example|bus_pause|#count#;1|example|console_error|Error"_s};
    CHost m_host{"127.0.0.1"_s, 1};
    CStubPlugin m_plugin;
    CConsoleWindow m_window{m_host, nullptr};

    QWidget *Page() const { return m_window.currentWidget(); }
    QAbstractItemModel *Rows() const { return Page()->findChild<QTableView *>()->model(); }
    QString See(int column, QString texts = {}) const
    {
        for (int row = 0; row < Rows()->rowCount(); ++row)
            texts += Rows()->index(row, column).data().toString() + u' ';
        return texts;
    }
    static void Add(const QString &text, int category, CConsole::EMessageLevel level)
    {
        CConsole::AddMessage(text, CConsole::EMessageCategory(category), level, "Some\nDetail"_s, 0);
    }
    void Send(const QByteArray &data, const QString &code, int times = 1)
    {
        CEvent event = CEvent::Create("EVNT"_s, code);
        event.data = data;
        for (int i = 0; i < times; ++i)
            m_plugin.SendInternEvent(event, false);
    }

private Q_SLOTS:
    void MessagesAreFilteredAndCopied()
    {
        m_window.show();
        QVERIFY(QTest::qWaitForWindowActive(&m_window));
        Add("one"_s, CConsole::MC_Plugin, CConsole::ML_Info);
        Add("two"_s, 77, CConsole::ML_Error);
        Add("three"_s, CConsole::MC_Plugin, CConsole::ML_Debug);
        Page()->findChild<QComboBox *>("level"_s)->setCurrentIndex(2);
        QCOMPARE(See(3), "one two "_s);
        Page()->findChild<QTableView *>()->selectRow(1);
        QTest::keyClick(Page()->findChild<QTableView *>(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text().section(u'\t', 3), "two\tSome Detail\n"_s);
        Page()->findChild<QTableView *>()->clearSelection();
        QTest::keyClicks(Page()->findChild<QLineEdit *>(), "ONE"_s);
        Page()->findChild<QAbstractButton *>("copy"_s)->click();
        QCOMPARE(QGuiApplication::clipboard()->text().section(u'\t', 3), "one\tSome Detail\n"_s);
        Page()->findChild<QLineEdit *>()->clear();
        Page()->findChild<QComboBox *>("category"_s)->setCurrentIndex(6); // which came as a number
        QCOMPARE(See(1) + See(2), "77 Error "_s);
        Page()->findChild<QAbstractButton *>("clear"_s)->click();
        QVERIFY(CConsole::GetMessages().isEmpty());
        QCOMPARE(Rows()->rowCount(), 0);
        const QScrollBar *bar = Page()->findChild<QTableView *>()->verticalScrollBar();
        for (int i = 0; i < 1100; ++i)
            Add("text"_s, 77, CConsole::ML_Error);
        QTRY_COMPARE(Rows()->rowCount(), 1000);
        QTRY_VERIFY(bar->maximum() > 900);
        QTRY_COMPARE(bar->value(), bar->maximum());
    }

    void EventsAreSeenBothWays()
    {
        m_window.setCurrentIndex(1);
        m_host.ConnectPlugin(&m_plugin);
        Send("0123456789abcdef\x01~\xff", QString::fromLatin1("A\0\xff\\", 4));
        Send({}, "CODE"_s);
        QTest::keyClicks(Page()->findChild<QLineEdit *>(), "a\\X00"_s);
        QCOMPARE(See(1) + See(3) + See(6), "from stub to all A\\x00\\xff\\ A\\x00\\xff\\ 19 19 "_s);
        Page()->findChild<QTableView *>()->selectRow(0);
        QCOMPARE(Page()->findChild<QPlainTextEdit *>("hex"_s)->toPlainText(),
                 "000000  30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66 0123456789abcdef\n"
                 "000010  01 7e ff                                        .~.\n"_s);
        Page()->findChild<QLineEdit *>()->clear();
        Page()->findChild<QAbstractButton *>("pause"_s)->click();
        Send({}, "CODE"_s, 3);
        Page()->findChild<QAbstractButton *>("pause"_s)->click();
        QCOMPARE(Page()->findChild<QAbstractButton *>("pause"_s)->text(), "6"_s);
        QCOMPARE(Rows()->rowCount(), 4);
        Send({}, "CODE"_s, 2600);
        QCOMPARE(Rows()->rowCount(), qBound(4800, Rows()->rowCount(), 5000));
        Send(QByteArray(32768, 'x'), "BULK"_s, 100);
        QVERIFY(!See(3).contains("CODE"_s));
        QCOMPARE(Rows()->rowCount(), qBound(120, Rows()->rowCount(), 128));
        Send(QByteArray(5 << 20, 'x'), "HUGE"_s);
        QCOMPARE(See(3) + See(6), "HUGE 5242880 "_s);
    }
};

QTEST_MAIN(tst_console)
#include "tst_console.moc"
