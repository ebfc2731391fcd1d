#include <support/Languages.h>
#include <ui/ScreenPlacement.h>
#include <ui/StyleSheet.h>
#include <ui/TableView.h>
#include <ui/TextColor.h>

#include <QtWidgets>

static QList<double> Numbers(const QString &text)
{
    QList<double> numbers;
    const QStringList parts = text.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString &number : parts)
        numbers.append(number.toDouble());
    return numbers;
}

class tst_tables : public QObject
{
    Q_OBJECT

    const CInstallationTree m_tree;

    void Write(const QString &name, const QByteArray &css) const { m_tree.WriteFile("Resources/"_s + name, css); }
    QString Read(const QString &name) const
    {
        QString contents = "before"_s;
        const bool good = Globals::GetCssContents(m_tree.GetPath("Resources/"_s + name), contents);
        return good ? contents : contents.replace("before"_s, "none"_s);
    }

private Q_SLOTS:
    void cleanup() { DestroySingletons(); }

    void Recalculate()
    {
        for (const QStringList &in : // width, sizes, column, result
             Rows("300|100,100,100|-1|100,100,100;400|100,100,100|-1|134,133,133;200|100,100,100|-1|67,67,66;"
                  "110|50,-1,50|-1|55,-1,55;300|150,100,100|0|150,50,100;300|150,-5,100,100|0|150,-5,50,100;"
                  "300|290,100,100|0|260,20,20;300|150,100,100|2|129,86,85;1000|980,10,10|-1|960,20,20;"
                  "10|5,5,5|-1|4,3,3;-0.5|5,5|-1|;100|||;100|-1,-2|-1|;100|0,-1,0|-1|;0|7,-3,7|-1|0,-3,0;"
                  "100.5|50,50|-1|51,50;300|100,150,-9|1|120,180,-9;1000000001|1,-1,1|-1|500000001,-1,500000000;"
                  "300|-1,100,100|0|-1,200,100;400|0,0,10|-1|20,20,360;400|100,-7,100|0|100,-7,300;"
                  "90|10,10,70|1|20,20,50;100|10,10,90|1|20,20,60;0|226.424,28.9759,0.3,-1,7|0|0,0,0,-1,0"_s)) {
            const QList<double> sizes = Numbers(in[1]);
            QCOMPARE(TableView::Recalculate(in[0].toDouble(), sizes, sizes, in[2].toInt()), Numbers(in[3]));
        }
        for (const QStringList &in : Rows("|50,100;7|50,100;7,8,9|50,100;1,-1|150,-1"_s)) // other columns than stored
            QCOMPARE(TableView::Recalculate(150, Numbers(in[0]), {50, 100}, -1), Numbers(in[1]));
        const QList<double> million = QVector<double>(1000000, 1).toList();
        for (const double width : {1e9, 333333., 20.})
            QCOMPARE(TableView::Recalculate(width, million, million, width > 20 ? -1 : 0).size(), million.size());
        QCOMPARE(TableView::Recalculate(1e9, {0, 1e-9, -1}, {0, 0, 0}, -1), Numbers("20,999999980,-1"_s));
        for (const double width : {qInf(), qQNaN(), 1e308}) // no widths, but an end
            QCOMPARE(TableView::Recalculate(width, {1, 2, 3}, {1, 2, 3}, -1).size(), 3);
    }

    void Memory()
    {
        TableView::Store("Lobby"_s, {99.9, -1, 0, -7.5, 1e20});
        QCOMPARE(TableView::Load("lobby"_s), Numbers("99,-1,0,-7,2147483647"_s));
        for (const QStringList &in : Rows("5,,6,|5,6;5,x,6|;5,1.5|;5,99999999999|;|"_s)) {
            CSettings::GetInstance()->SetHeaderSizesByKey("Lobby"_s, in[0]);
            QCOMPARE(TableView::Load("Lobby"_s), Numbers(in[1]));
        }
        for (const QString &key : {"Lobby"_s, QString()}) {
            TableView::Store(key, {33, 33, -1, 34});
            TableView::SetSortingColumn(key, 3);
            TableView::SetSortingOrder(key, true);
        }
        QVERIFY(TableView::GetSortingOrder("Lobby"_s) && TableView::GetSortingColumn("Lobby"_s) == 3);
        QVERIFY(!TableView::GetSortingOrder({}) && TableView::GetSortingColumn({}) == 0);
        QVERIFY(TableView::Load({}).isEmpty() && CSettings::GetInstance()->GetHeaderSizes().size() == 1);
        for (int round = 0; round < 10; ++round)
            TableView::Store("Lobby"_s, TableView::Recalculate(777, TableView::Load("Lobby"_s), {1, 1, 1, 1}, -1));
        QCOMPARE(TableView::Load("Lobby"_s), Numbers("257,256,-1,264"_s)); // as after the first
    }

    void StyleSheets()
    {
        for (const char *css : {"a{}/*", "a{} */", "/*/* */ */", "}a{", "a{", " {}", "a{} {}", "a{b{}}"}) {
            Write("a.css"_s, css);
            QCOMPARE(Read("a.css"_s), "none"_s);
        }
        Write("a.css"_s, " a {\r\n\n\tb: url(../\u00e4.png), ./c; d: ./e }  \nf /*{*/ {}/**/ /*/ } */ g{} h");
        const QString result = "a {\nb: url(%1../\u00e4.png), ./c; d: %1./e }\nf  {}  g{} h\n"_s;
        QCOMPARE(Read("a.css"_s), result.arg(m_tree.GetPath("Resources/"_s)));
        const QByteArray megabyte = QByteArray("a { b: c; } /* d */\n").repeated(50000);
        Write("a.css"_s, megabyte);
        QCOMPARE(Read("a.css"_s), QString::fromUtf8(QByteArray(megabyte).replace(" /* d */", " ")));
        Write("a.css"_s, "a{} /* " + QByteArray(megabyte).replace("*/", "*"));
        QCOMPARE(Read("a.css"_s), "none"_s);
        for (const QStringList &in : Rows(".../x|.D../x;a.b|a.b;../../x ./y|D../../x ./y;|;.|.;a/../b|a/D../b"_s))
            QCOMPARE(Globals::ReplaceStylePath(in[0], "D"_s), in[1]);
    }

    // Replaced, these lines would be longer than a text can be.
    void ManyPaths()
    {
        const QByteArray line = QByteArray("./;").repeated(5000000);
        const QString folder(200, QLatin1Char('d'));
        const QString name = folder + QLatin1Char('/') + folder + QLatin1Char('/') + folder + "/a.css"_s;
        Write(name, line);
        QCOMPARE(Read(name), "none"_s);
        const QString text = QString::fromLatin1(line);
        QCOMPARE(Globals::ReplaceStylePath(text, name), text);
    }

    void Includes()
    {
        Write("base.css"_s, "z { i: ./z.png }");
        Write("sub/left.css"_s, "#include \"../base.css\";\nl{}");
        Write("sub/right.css"_s, "#include{'../base.css'}\nr{}");
        Write("top.css"_s, "t{}\n#include sub/left.css\n  #include \"sub/right.css\" \n/*\n#include base.css\n*/");
        const QString z = "z { i: %1./z.png }\n"_s.arg(m_tree.GetPath("Resources/sub/../"_s));
        QCOMPARE(Read("top.css"_s), "t{}\n"_s + z + "l{}\n"_s + z + "r{}\n\n"_s);
        QFile::link(m_tree.GetPath("Resources/top.css"_s), m_tree.GetPath("Resources/link.css"_s));
        Write("top.css"_s, "#include sub/../other.css");
        for (const char *name : {"top.css", "./top.css", "sub/..///top.css", "link.css", "other.css", "none", ""}) {
            Write("other.css"_s, QByteArray("o{}\n#include ") + name);
            QCOMPARE(Read("top.css"_s), "none"_s);
        }
        QString whole;
        for (int file = 0; file < 20; ++file, whole += "a{}\n"_s)
            Write("%1.css"_s.arg(file), "a{}\n#include " + QByteArray::number(file + 1) + ".css");
        Write("20.css"_s, QByteArray());
        QCOMPARE(Read("0.css"_s), whole);
        for (int file = 0; file < 20; ++file) // a million files by the end
            Write("%1.css"_s.arg(file),
                  QByteArray("#include N.css\n#include N.css").replace("N", QByteArray::number(file + 1)));
        QCOMPARE(Read("0.css"_s), "none"_s);
    }

    void ScreenPositions()
    {
        for (const QStringList &in : // widget, reference, screen ($ are the usual ones), alignment, outside, result
             Rows("$,33,0,99,99;$,66,0,139,138;$,132,0,119,119;$,33,3,89,79;$,66,1,149,138;$,66,2,139,158;"
                  "$,132,3,119,119;$,231,0,99,99;9,9,10,20,99,99,51,60,7,8,500,400,0,0,7,8;"
                  "9,9,10,20,0,0,0,0,0,0,500,400,66,0,489,379;9,9,10,20,490,390,51,60,-100,0,600,400,33,0,489,379;"
                  "9,9,0,20,99,99,51,60,0,0,500,400,66,0,9,9;9,9,60,70,99,99,51,61,0,0,500,400,132,0,95,95;"
                  "9,9,600,500,99,99,51,61,0,0,500,400,33,0,-101,-101;9,9,10,20,-99,3,5,6,-100,0,60,40,33,3,-100,0;"
                  "9,9,10,20,0,0,0,0,0,0,0,0,66,0,9,9"_s.replace("$"_s, "9,9,10,20,99,99,51,60,0,0,500,400"_s))) {
            const QList<double> all = Numbers(in[0]);
            const auto rect = [&](int i) { return QRectF(all[i], all[i + 1], all[i + 2], all[i + 3]).toRect(); };
            const auto flag = [&](int i) { return QFlag(static_cast<int>(all[i])); };
            QCOMPARE(QPointF(Globals::CalculateScreenPosition(rect(0), rect(4), rect(8), flag(12), flag(13))),
                     QPointF(all[14], all[15]));
        }
    }

    void Windows()
    {
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        QWidget window, child(&window), other, inner(&other);
        QDialog dialog(&child);
        window.setGeometry(150, 140, 300, 200);
        other.setGeometry(100, 190, 50, 60);
        for (QWidget *nothing : {static_cast<QWidget *>(nullptr), &child, static_cast<QWidget *>(&dialog)})
            Globals::SetToScreenPosition(nothing, Qt::AlignRight, nullptr, 0, {});
        QVERIFY(child.pos() == QPoint() && dialog.pos() == QPoint());
        window.show();
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window) && QTest::qWaitForWindowExposed(&dialog));
        Globals::SetToScreenPosition(&dialog, Qt::AlignCenter, nullptr, 0, {});
        QTRY_VERIFY((dialog.frameGeometry().center() - window.frameGeometry().center()).manhattanLength() <= 2);
        Globals::SetToScreenPosition(&window, Qt::AlignRight | Qt::AlignBottom, nullptr, 99, {});
        QTRY_COMPARE(window.frameGeometry().bottomRight(), screen.bottomRight() - QPoint(1, 1));
        Globals::SetToScreenPosition(&dialog, Qt::AlignLeft | Qt::AlignBottom, &inner, 0,
                                     GlobalDefines::SPO_Vertical);
        QTRY_COMPARE(dialog.frameGeometry().topLeft(), QPoint(100, 249));
    }

    void Popups()
    {
        if (QGuiApplication::platformName() == "offscreen"_s)
            QSKIP("windows without a window manager can't be raised");
        QWidget first, second;
        Globals::PopupWidget(nullptr);
        Globals::PopupWidget(&first); // no window is active yet, so this one shows
        QVERIFY(QTest::qWaitForWindowActive(&first));
        second.showMaximized();
        QVERIFY(QTest::qWaitForWindowActive(&second));
        first.showMinimized();
        QTRY_VERIFY(!first.windowHandle()->isExposed() && second.isActiveWindow());
        Globals::PopupWidget(&first);
        QVERIFY(QTest::qWaitForWindowActive(&first));
        QTRY_VERIFY(!first.isMinimized());
        Globals::PopupWidget(&second);
        QVERIFY(QTest::qWaitForWindowActive(&second) && second.isMaximized());
    }

    void TextColors()
    {
        for (const QStringList &in : Rows("#969696|white;#979797|black;red|white;lime|white;yellow|black;|white"_s))
            QCOMPARE(Globals::GetIdealTextColor(QColor(in[0])), QColor(in[1]));
    }
};

QTEST_MAIN(tst_tables)
#include "tst_tables.moc"
