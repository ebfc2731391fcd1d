#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Rows.h>
#include <support/Singletons.h>
#include <ui/ScreenPlacement.h>
#include <ui/StyleSheet.h>
#include <ui/TableView.h>
#include <ui/TextColor.h>

#include <QtTest>
#include <QtWidgets>

using TWidths = QList<double>;

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

    void Recalculate_data()
    {
        AddRows<double, TWidths, int, TWidths>(
            {"width", "sizes", "column", "result"}, // -1 for a change of the width, else the column that is dragged
            {{"fits", 300, {100, 100, 100}, -1, {100, 100, 100}},
             {"wider", 400, {100, 100, 100}, -1, {134, 133, 133}},
             {"narrower than the minimum", 1000, {980, 10, 10}, -1, {960, 20, 20}},
             {"no width", 0, {226.424, 28.9759, 0.3, -1, 7}, -1, {0, 0, 0, -1, 0}},
             {"fraction of a pixel", 100.5, {50, -1, 50}, -1, {51, -1, 50}},
             {"no columns", 100, {}, 0, {}},
             {"all empty", 100, {0, -1, 0}, -1, {}},
             {"dragged wider", 300, {150, 100, 100}, 0, {150, 50, 100}},
             {"dragged narrower, the next hidden", 400, {100, -7, 100}, 0, {100, -7, 300}},
             {"last visible one dragged", 300, {100, 150, -9}, 1, {120, 180, -9}},
             {"dragged among narrow ones", 90, {10, 10, 70}, 1, {20, 20, 50}}});
    }
    void Recalculate()
    {
        QFETCH(double, width);
        QFETCH(TWidths, sizes);
        QFETCH(int, column);
        QTEST(TableView::Recalculate(width, sizes, sizes, column), "result");
    }

    void RecalculateOfOddColumns()
    {
        for (const TWidths &stored : {TWidths{7}, TWidths{7, 8, 9}})
            QCOMPARE(TableView::Recalculate(150, stored, {50, 100}, -1), (TWidths{50, 100}));
        QCOMPARE(TableView::Recalculate(1e9, {0, 1e-9, -1}, {0, 0, 0}, -1), (TWidths{20, 999999980, -1}));
        for (const double width : {qInf(), qQNaN(), 1e308}) // comes to an end
            QCOMPARE(TableView::Recalculate(width, {1, 2, 3}, {1, 2, 3}, -1).size(), 3);
    }

    void Memory()
    {
        TableView::Store("Lobby"_s, {99.9, -1, 0, -7.5, 1e20});
        QCOMPARE(TableView::Load("lobby"_s), (TWidths{99, -1, 0, -7, 2147483647}));
        QList<TWidths> loaded;
        for (const QString &stored : {"5,,6,"_s, "5,x,6"_s, "5,1.5"_s, "5,99999999999"_s, QString()}) {
            CSettings::GetInstance()->SetHeaderSizesByKey("Lobby"_s, stored);
            loaded.append(TableView::Load("Lobby"_s));
        }
        QCOMPARE(loaded, QList<TWidths>({{5, 6}, {}, {}, {}, {}}));
        for (const QString &key : {"Lobby"_s, QString()}) {
            TableView::Store(key, {33});
            TableView::SetSortingColumn(key, 3);
            TableView::SetSortingOrder(key, true);
        }
        QVERIFY(TableView::GetSortingOrder("Lobby"_s));
        QCOMPARE(TableView::GetSortingColumn("Lobby"_s), 3);
        QVERIFY(!TableView::GetSortingOrder({}));
        QCOMPARE(TableView::GetSortingColumn({}), 0);
        QCOMPARE(TableView::Load({}), TWidths());
        QCOMPARE(CSettings::GetInstance()->GetHeaderSizes().size(), 1);
    }

    void RefusedStyleSheets_data()
    {
        AddRows<QByteArray>({"css"}, {{"comment without an end", "a{}/*"},
                                      {"end of no comment", "a{} */"},
                                      {"block ends first", "}a{"},
                                      {"block without a selector", "a{} {}"},
                                      {"includes that by a link", "o{}\n#include link.css"},
                                      {"includes what isn't there", "o{}\n#include none"}});
    }
    void RefusedStyleSheets()
    {
        QFETCH(QByteArray, css);
        Write("top.css"_s, "#include other.css");
        QFile::link(m_tree.GetPath("Resources/top.css"_s), m_tree.GetPath("Resources/link.css"_s));
        Write("other.css"_s, css);
        QCOMPARE(Read("top.css"_s), "none"_s);
    }

    void StyleSheets()
    {
        Write("a.css"_s, " a {\r\n\n\tb: url(../\u00e4.png), ./c; d: ./e }  \nf /*{*/ {}/**/ /*/ } */ g{} h");
        const QString result = "a {\nb: url(%1../\u00e4.png), ./c; d: %1./e }\nf  {}  g{} h\n"_s;
        QCOMPARE(Read("a.css"_s), result.arg(m_tree.GetPath("Resources/"_s)));
        const QString paths = "./;"_s.repeated(500000); // replaced, they would take too much memory
        Write("a.css"_s, paths.toLatin1());
        QCOMPARE(Read("a.css"_s), "none"_s);
        QCOMPARE(Globals::ReplaceStylePath(paths, QString(50, QLatin1Char('d'))), paths);
        QStringList lines{".../x"_s, "a.b"_s, "../../x ./y"_s, "."_s, "a/../b"_s};
        for (QString &line : lines)
            line = Globals::ReplaceStylePath(line, "D"_s);
        QCOMPARE(lines, QStringList({".D../x"_s, "a.b"_s, "D../../x ./y"_s, "."_s, "a/D../b"_s}));
    }

    void Includes()
    {
        Write("base.css"_s, "z { i: ./z.png }");
        Write("sub/left.css"_s, "#include \"../base.css\";\nl{}");
        Write("sub/right.css"_s, "#include{'../base.css'}\nr{}");
        Write("top.css"_s, "t{}\n#include sub/left.css\n  #include \"sub/right.css\" \n/*\n#include base.css\n*/");
        const QString z = "z { i: %1./z.png }\n"_s.arg(m_tree.GetPath("Resources/sub/../"_s));
        QCOMPARE(Read("top.css"_s), "t{}\n"_s + z + "l{}\n"_s + z + "r{}\n\n"_s);
        Write("20.css"_s, QByteArray());
        for (int file = 0; file < 20; ++file) // a million files by the end
            Write("%1.css"_s.arg(file),
                  QByteArray("#include N.css\n#include N.css").replace("N", QByteArray::number(file + 1)));
        QCOMPARE(Read("0.css"_s), "none"_s);
    }

    void ScreenPositions_data()
    {
        const QRect reference(99, 99, 51, 60);
        const QRect widget(9, 9, 10, 20);
        const QRect screen(0, 0, 500, 400);
        constexpr int FIRST = Qt::AlignLeft | Qt::AlignTop;
        constexpr int LAST = Qt::AlignRight | Qt::AlignBottom;
        AddRows<QRect, QRect, QRect, int, int, QPoint>(
            {"widget", "reference", "screen", "alignment", "outside", "position"},
            {{"first", widget, reference, screen, FIRST, 0, {99, 99}},
             {"last", widget, reference, screen, LAST, 0, {139, 138}},
             {"center", widget, reference, screen, Qt::AlignCenter, 3, {119, 119}},
             {"none", widget, reference, {7, 8, 500, 400}, 0, 0, {7, 8}},
             {"first, outside", widget, reference, screen, FIRST, 3, {89, 79}},
             {"last, outside to the right", widget, reference, screen, LAST, 1, {149, 138}},
             {"no reference", widget, {}, screen, LAST, 0, {489, 379}},
             {"beyond the screen", widget, {490, 390, 51, 60}, {-100, 0, 600, 400}, FIRST, 0, {489, 379}},
             {"empty", {9, 9, 0, 20}, reference, screen, LAST, 0, {9, 9}},
             {"no screen", widget, {}, {}, LAST, 0, {9, 9}}});
    }
    void ScreenPositions()
    {
        QFETCH(QRect, widget);
        QFETCH(QRect, reference);
        QFETCH(QRect, screen);
        QFETCH(int, alignment);
        QFETCH(int, outside);
        QTEST(Globals::CalculateScreenPosition(widget, reference, screen, QFlag(alignment), QFlag(outside)),
              "position");
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
        QCOMPARE(child.pos() + dialog.pos(), QPoint());
        window.show();
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
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
        QTRY_VERIFY(!first.windowHandle()->isExposed());
        QTRY_VERIFY(second.isActiveWindow());
        Globals::PopupWidget(&first);
        QVERIFY(QTest::qWaitForWindowActive(&first));
        QTRY_VERIFY(!first.isMinimized());
        Globals::PopupWidget(&second);
        QVERIFY(QTest::qWaitForWindowActive(&second));
        QVERIFY(second.isMaximized());
    }

    void TextColors()
    {
        QStringList colors{"#969696"_s, "#979797"_s, "red"_s, "lime"_s, "yellow"_s, QString()};
        for (QString &color : colors)
            color = Globals::GetIdealTextColor(QColor(color)) == Qt::white ? "white"_s : "black"_s;
        QCOMPARE(colors, QStringList({"white"_s, "black"_s, "white"_s, "white"_s, "black"_s, "white"_s}));
    }
};

QTEST_MAIN(tst_tables)
#include "tst_tables.moc"
