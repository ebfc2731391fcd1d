#include <settings/Settings.h>
#include <ui/Action.h>
#include <ui/MenuManager.h>
#include <ui/OptionsDialogManager.h>

#include <support/Languages.h>
#include <support/Rows.h>

#include <QtWidgets>

namespace {

class CPage : public COptionsPage
{
public:
    CPage()
        : COptionsPage(nullptr)
    {
    }
    QString GetTitle() const override { return "page"_s; }
    QIcon GetIcon() const override { return QIcon(); }
    QWidget *CreateWidget(QWidget *parent) override { return new QWidget(parent); }
    void Load() override {}
    void Apply() override {}
    void RestoreDefaults() override {}
    bool IsModified() const override { return false; }
};

// Menu "a" with actions "1" and "2" and the submenus "b" and "c", which have "3" and "4"; both hold the menu "d" with
// "5". What tells that it is about to be shown is written down, and may have others deleted.
struct STree
{
    STree()
    {
        for (const char *menu : {"a", "b", "c", "d"}) {
            const QString name = QLatin1String(menu);
            Add(new CMenu(name, name), name);
        }
        for (const char *place : {"a1", "a2", "b3", "c4", "d5"}) {
            const QString name = QString(QLatin1Char(place[1]));
            auto *action = new CAction(name);
            Add(action, name);
            Menu(place[0])->AddAction(action);
        }
        for (const char *place : {"ab", "ac", "bd", "cd", "cd"})
            Menu(place[0])->AddMenu(Menu(place[1]));
    }
    ~STree() { Delete("abcd"_s); }

    template <typename Object>
    void Add(Object *object, const QString &name)
    {
        objects.insert(name, object);
        QObject::connect(object, &Object::signal_Update, [this, name] {
            told += name;
            if (name == teller)
                Delete(victims);
        });
    }
    CMenu *Menu(char name) { return qobject_cast<CMenu *>(objects.value(QString(QLatin1Char(name)))); }
    void Delete(const QString &names)
    {
        for (const QChar name : names)
            delete objects.value(name);
    }
    // Everything that goes over the tree.
    QString Use()
    {
        told.clear();
        if (CMenu *top = Menu('a')) {
            top->AddParameter("p"_s, 1);
            Q_EMIT top->aboutToShow();
        }
        if (CMenu *top = Menu('a'))
            top->SetStyleSheet("QMenu {}"_s);
        return told;
    }

    QHash<QString, QPointer<QObject>> objects;
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
                                            {"a submenu", "1"_s, "b"_s, "1245dca 1245dca"_s},
                                            {"a submenu from within", "3"_s, "b"_s, "12345dca 1245dca"_s},
                                            {"the shared submenu", "5"_s, "d"_s, "1235b4ca 123b4ca"_s},
                                            {"the menu", "1"_s, "a"_s, "1 "_s},
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
        tree.Menu('a')->removeAction(qobject_cast<QAction *>(tree.objects.value("1"_s)));
        tree.Delete("1"_s);
        QCOMPARE(tree.Use(), "235db45dca"_s);
    }

    void ParametersGoDown()
    {
        STree tree;
        auto *action = qobject_cast<CAction *>(tree.objects.value("5"_s));
        tree.Menu('a')->AddParameter("table"_s, 7);
        CAction later("later"_s);
        tree.Menu('d')->AddAction(&later);
        // Of the menu on the way, the action below it, and the one that came later.
        const auto parameters = [&] {
            return QVariantList{tree.Menu('c')->GetParameter("table"_s), action->GetParameter("table"_s),
                                later.GetParameter("table"_s)};
        };
        QCOMPARE(parameters(), (QVariantList{7, 7, {}}));
        later.AddParameter("table"_s, 8);
        tree.Menu('b')->RemoveParameter("table"_s);
        QCOMPARE(parameters(), (QVariantList{7, {}, {}}));
        tree.Menu('a')->ClearParameters();
        QCOMPARE(parameters(), (QVariantList{{}, {}, {}}));
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
        QVERIFY(!manager->GetMenu("x"_s));
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

    void OptionsPages()
    {
        COptionsDialogManager *manager = COptionsDialogManager::GetInstance();
        auto page = std::make_unique<CPage>();
        CPage other;
        for (COptionsPage *added : QList<COptionsPage *>{page.get(), nullptr, &other, page.get()})
            manager->AddPage(added);
        QCOMPARE(manager->GetPages(), QList<COptionsPage *>({page.get(), &other, page.get()}));
        page.reset();
        QCOMPARE(manager->GetPages(), QList<COptionsPage *>({&other}));
        QSignalSpy shown(manager, &COptionsDialogManager::signal_ShowDialog);
        COptionsDialogManager::Show(nullptr);
        QCOMPARE(shown.size(), 1);
    }
};

QTEST_MAIN(tst_menus)
#include "tst_menus.moc"
