#include <settings/Settings.h>
#include <ui/Action.h>
#include <ui/MenuManager.h>
#include <ui/OptionsDialogManager.h>

#include <support/Languages.h>
#include <support/Rows.h>

#include <QtWidgets>

namespace {

// Menu "a" with actions "1" and "2" and the submenus "b" and "c", which have "3" and "4"; both hold the menu "d" with
// "5". What tells that it is about to be shown is written down, and may have others deleted.
struct STree
{
    STree()
    {
        for (const QChar name : "abcd"_s)
            Add(new CMenu(name, name), name);
        for (const QString &place : {"a1"_s, "a2"_s, "b3"_s, "c4"_s, "d5"_s}) {
            auto *action = new CAction(place[1]);
            Add(action, place[1]);
            Menu(place[0])->AddAction(action);
        }
        for (const QString &place : {"ab"_s, "ac"_s, "bd"_s, "cd"_s, "cd"_s})
            Menu(place[0])->AddMenu(Menu(place[1]));
    }
    ~STree() { Delete("abcd"_s); }

    template <typename Object>
    void Add(Object *object, QChar name)
    {
        objects.insert(name, object);
        QObject::connect(object, &Object::signal_Update, [this, name] {
            told += name;
            if (name == teller)
                Delete(victims);
        });
    }
    CMenu *Menu(QChar name) { return qobject_cast<CMenu *>(objects.value(name)); }
    void Delete(const QString &names)
    {
        for (const QChar name : names)
            delete objects.value(name);
    }
    // Everything that goes over the tree.
    QString Use()
    {
        told.clear();
        if (CMenu *top = Menu(u'a')) {
            top->AddParameter("p"_s, 1);
            Q_EMIT top->aboutToShow();
        }
        if (CMenu *top = Menu(u'a'))
            top->SetStyleSheet("QMenu {}"_s);
        return told;
    }

    QHash<QChar, QPointer<QObject>> objects;
    QString teller;
    QString victims;
    QString told;
};

} // namespace

class tst_menus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { DestroySingletons(); }

    void OwnersDelete_data()
    {
        AddRows<QString, QString, QString>({"teller", "victims", "told"}, // in all, and when it is used once more
                                           {{"nobody", ""_s, ""_s, "1235db45dca 1235db45dca"_s},
                                            {"the action itself", "1"_s, "1"_s, "1235db45dca 235db45dca"_s},
                                            {"the next action", "1"_s, "2"_s, "135db45dca 135db45dca"_s},
                                            {"the shared submenu", "5"_s, "d"_s, "1235b4ca 123b4ca"_s},
                                            {"the menu from below", "5"_s, "a"_s, "1235db45dc "_s},
                                            {"everything", "3"_s, "dcba"_s, "123 "_s}});
    }
    void OwnersDelete()
    {
        QFETCH(QString, teller);
        QFETCH(QString, victims);
        STree tree;
        tree.teller = teller;
        tree.victims = victims;
        const QString first = tree.Use();
        tree.teller.clear();
        QTEST(first + " "_s + tree.Use(), "told");
    }

    // A QMenu forgets whom it listened to when an action leaves it.
    void RemovedAndDeleted()
    {
        STree tree;
        tree.Menu(u'a')->removeAction(tree.Menu(u'a')->actions().constFirst());
        tree.Delete("1"_s);
        QCOMPARE(tree.Use(), "235db45dca"_s);
    }

    void ParametersGoDown()
    {
        STree tree;
        auto *action = qobject_cast<CAction *>(tree.objects.value(u'5'));
        tree.Menu(u'a')->AddParameter("table"_s, 7);
        // Of the menu on the way, and the action below it.
        const auto parameters = [&] {
            return QVariantList{tree.Menu(u'c')->GetParameter("table"_s), action->GetParameter("table"_s)};
        };
        QCOMPARE(parameters(), (QVariantList{7, 7}));
        tree.Menu(u'b')->RemoveParameter("table"_s);
        QCOMPARE(parameters(), (QVariantList{7, {}}));
        tree.Menu(u'a')->ClearParameters();
        QCOMPARE(parameters(), (QVariantList{{}, {}}));
    }

    void TextsFollowTheLanguage()
    {
        const CLanguages languages("1|core|t|Tables;2|core|t|Tische"_s);
        CMenuManager *manager = CMenuManager::GetInstance();
        CMenu *menu = manager->GetMenu("x"_s, "T"_s, "CORE"_s);
        CAction action("T"_s, "CORE"_s);
        QCOMPARE(menu->title() + action.text(), "TablesTables"_s);
        CSettings::GetInstance()->SetSelectedLanguage(2);
        QCOMPARE(menu->title() + action.text(), "TischeTische"_s);
        QCOMPARE(manager->GetMenu("x"_s, "Mine"_s), menu);
        QCOMPARE(menu->title(), "Mine"_s);
    }

    void SharedBar()
    {
        CMenuManager *manager = CMenuManager::GetInstance();
        auto window = std::make_unique<QMainWindow>();
        window->setMenuBar(manager->GetMenuBar());
        const QList<QAction *> entries = manager->GetMenuBar()->actions();
        QCOMPARE(entries.size(), 2);
        QCOMPARE(entries[0]->menu(), manager->GetMenu("MENU_MYACCOUNT"_s));
        QCOMPARE(entries[1]->menu(), manager->GetMenu("MENU_OPTIONS"_s));
        CMenu *menu = manager->GetMenu("x"_s, "X"_s);
        CMenu *below = manager->GetMenu("y"_s, "Y"_s);
        manager->AddToMenuBar(menu);
        menu->AddMenu(below);
        manager->SetMenuBarStyleSheet("QMenu {}"_s);
        QCOMPARE(menu->styleSheet() + below->styleSheet(), "QMenu {}QMenu {}"_s);
        menu->SetVisible(false);
        QVERIFY(!menu->menuAction()->isVisible());
        delete menu;
        QVERIFY(!manager->GetMenu("x"_s));
        QCOMPARE(manager->GetMenuBar()->actions(), entries);
        manager->SetMenuBarStyleSheet(QString());
        window.reset();
        QVERIFY(!manager->GetMenuBar());
        manager->AddToMenuBar(below);
    }

    void OptionsDialog()
    {
        COptionsDialogManager *manager = COptionsDialogManager::GetInstance();
        manager->AddPage(nullptr);
        QVERIFY(manager->GetPages().isEmpty());
        const QSignalSpy shown(manager, &COptionsDialogManager::signal_ShowDialog);
        COptionsDialogManager::Show(nullptr);
        QCOMPARE(shown.size(), 1);
    }
};

QTEST_MAIN(tst_menus)
#include "tst_menus.moc"
