// The console window of the example client: what it filters and copies, and how much it keeps.

#include <client/ConsoleWindow.h>
#include <client/Host.h>

#include <support/Languages.h>
#include <support/StubPlugin.h>

#include <QtWidgets>

class tst_console : public QObject
{
    Q_OBJECT

    const CLanguages m_languages{"1|example|bus_pause|#count#;1|example|console_error|Error"_s};
    CHost m_host{"127.0.0.1"_s, 1};
    CStubPlugin m_plugin;
    CConsoleWindow m_window{m_host, nullptr};

    template <typename Widget>
    Widget *Find(const QString &name = {}) const
    {
        return m_window.currentWidget()->findChild<Widget *>(name);
    }
    QAbstractItemModel *Rows() const { return Find<QTableView>()->model(); }
    QString See(int column, QString texts = {}) const
    {
        for (int row = 0; row < Rows()->rowCount(); ++row)
            texts += Rows()->index(row, column).data().toString() + u' ';
        return texts;
    }
    static void Add(const QString &text, int category)
    {
        CConsole::AddMessage(text, CConsole::EMessageCategory(category), CConsole::ML_Error, "Some\nDetail"_s, 0);
    }
    void Send(const QByteArray &data, const QString &code, int times = 1)
    {
        CEvent event = CEvent::Create("EVNT"_s, code);
        event.data = data;
        for (int i = 0; i < times; ++i)
            m_plugin.SendInternEvent(event, false);
    }

private Q_SLOTS:
    void Messages()
    {
        m_window.show();
        QVERIFY(QTest::qWaitForWindowActive(&m_window));
        Add("one"_s, CConsole::MC_Plugin);
        Add("two"_s, 77);
        Find<QComboBox>("category"_s)->setCurrentIndex(6); // which came as a number
        Find<QAbstractButton>("copy"_s)->click();
        QCOMPARE(QGuiApplication::clipboard()->text().section(u'\t', 1), "77\tError\ttwo\tSome Detail\n"_s);
        const QScrollBar *bar = Find<QTableView>()->verticalScrollBar();
        for (int i = 0; i < 1100; ++i)
            Add("text"_s, 77);
        QTRY_COMPARE(Rows()->rowCount(), 1000);
        QTRY_VERIFY(bar->maximum() > 900);
        QTRY_COMPARE(bar->value(), bar->maximum());
    }

    void Events()
    {
        m_window.setCurrentIndex(1);
        m_host.ConnectPlugin(&m_plugin);
        Send("0123456789abcdef\x01~\xff", QString::fromLatin1("A\0\xff\\", 4));
        QCOMPARE(See(3), "A\\x00\\xff\\ A\\x00\\xff\\ "_s); // from the plugin and to all
        Find<QTableView>()->selectRow(0);
        QCOMPARE(Find<QPlainTextEdit>("hex"_s)->toPlainText(),
                 "000000  30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66 0123456789abcdef\n"
                 "000010  01 7e ff                                        .~.\n"_s);
        Find<QAbstractButton>("pause"_s)->click();
        Send({}, "CODE"_s, 3);
        Find<QAbstractButton>("pause"_s)->click();
        QCOMPARE(Find<QAbstractButton>("pause"_s)->text(), "6"_s);
        QCOMPARE(Rows()->rowCount(), 2);
        Send({}, "CODE"_s, 2600);
        QCOMPARE(Rows()->rowCount(), qBound(4800, Rows()->rowCount(), 5000));
        Send(QByteArray(5 << 20, 'x'), "HUGE"_s);
        QCOMPARE(See(3) + See(6), "HUGE 5242880 "_s);
    }
};

QTEST_MAIN(tst_console)
#include "tst_console.moc"
