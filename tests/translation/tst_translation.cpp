#include <support/Languages.h>
#include <translation/TranslationObject.h>

class tst_translation : public QObject
{
    Q_OBJECT

    const CLanguages m_languages{"1|core|hello|Hello;1|lobby|hello|Hi;5|core|hello|Hallo;0|core|hello|Zero;"
                                 "1|core|english|tea;1|lobby|english|;1|core||never;1||hello|never;"
                                 "1|core|name|I am #n#.;5|core|name|Ich bin #n#."_s,
                                 "1 EN English,5 De Deutsch"_s};

private Q_SLOTS:
    void init() { CLanguages::Restart(); }

    void Choice()
    {
        const QString own = QLocale::system().name().left(2).toUpper().replace(QRegularExpression("^C$"_s), "EN"_s);
        const auto choose = [&own](QString languages, int selected, int operators) { // as "id code name"
            const CLanguages installation("1|||"_s, languages.replace("own"_s, own));
            CConfig::GetInstance()->SetConfigs({{"defaultlanguage"_s, operators}});
            CSettings::GetInstance()->SetSelectedLanguage(selected);
            const int chosen = CTranslation::GetInstance()->GetLanguage().iID;
            return chosen == CSettings::GetInstance()->GetSelectedLanguage() ? chosen : -2;
        };
        QCOMPARE(choose("2 own -,5 xx -"_s, 5, 2), 5);
        QCOMPARE(choose("2 own -,5 xx -"_s, 9, 5), 5);
        QCOMPARE(choose("2 xx -,5 own -"_s, 9, 9), 5);
        QCOMPARE(choose("5 xx -,2 xx -"_s, -1, -1), 2);
        QCOMPARE(choose("5 xx -,1 xx -"_s, -1, -1), 5);
    }

    void Lookup()
    {
        const auto find = [](const QString &area, const QString &key, int language) {
            return CTranslation::GetInstance()->GetTranslatedString(key, area, language);
        };
        QCOMPARE(find("LOBBY"_s, "HELLO"_s, -1), "Hi"_s);
        QCOMPARE(find("Table"_s, "hello"_s, -1), "Hello"_s);
        QCOMPARE(find("Lobby"_s, "ENGLISH"_s, -1), QString());
        QCOMPARE(find("Lobby"_s, "HELLO"_s, 5), "Hallo"_s);
        QCOMPARE(find("CORE"_s, "HELLO"_s, 0), "Zero"_s);
        QCOMPARE(find("Game"_s, "FO'O"_s, -1), "game/fo'o\nNOT IN TRANSLATION"_s);
        QCOMPARE(find("CORE"_s, ""_s, -1), QString());
        QCOMPARE(find(""_s, "HELLO"_s, -1), QString());
    }

    void NewSelection()
    {
        CTranslation *catalogue = CTranslation::GetInstance();
        CSettings *settings = CSettings::GetInstance();
        CConfig::GetInstance()->SetConfigs({{"defaultlanguage"_s, 5}});
        const QSignalSpy changed(catalogue, &CTranslation::signal_TranslationChanged);
        QList<const QObject *> callers;
        const QObject context; // ends before what the lambda refers to: clazy:excludeall=lambda-in-connect
        connect(settings, &CSettings::signal_SelectedLanguageChanged, &context,
                [&] { callers += settings->GetCaller(); });
        for (const int id : {5, 5, 1, 9, -1, 9}) // where there is none, the operator's
            settings->SetSelectedLanguage(id, this);
        QCOMPARE(catalogue->GetTranslatedString("HELLO"_s, "CORE"_s, -1) + catalogue->GetLanguage().strLong,
                 "HalloDeutsch"_s);
        QCOMPARE(changed.size(), 3);
        QCOMPARE(callers.mid(0, 3), (QList<const QObject *>{this, this, catalogue}));
    }

    void Tidying()
    {
        const auto tidy = [](const QString &text, const QString &value) {
            CTranslationItem nested, item;
            nested.SetText(" nested "_s);
            item.SetPlaceholder("#n#"_s, nested);
            item.SetPlaceholder("#m#"_s, QVariant(value));
            item.SetText(text);
            return item.GetText() == text ? item.GetTranslatedText() : item.GetText();
        };
        QCOMPARE(tidy("#m# and #m#"_s, "x"_s), "x and x"_s);
        QCOMPARE(tidy("a #m# b #m#."_s, ""_s), "a b."_s);
        QCOMPARE(tidy("a   b    c"_s, "x"_s), "a  b  c"_s); // pairs of blanks in one pass
        QCOMPARE(tidy("a  . b   ."_s, "x"_s), "a. b ."_s);
        QCOMPARE(tidy("#m#"_s, "#n#"_s), "nested"_s);
    }

    void Placeholders()
    {
        CTranslationObject object;
        const QSignalSpy changed(&object, &CTranslationObject::signal_TextChanged);
        QVERIFY(!object.SetPlaceholder(QString(), 5));
        QVERIFY(!object.SetPlaceholder(QString(), CTranslationItem()));
        QVERIFY(!object.SetPlaceholder(QString(), "HELLO"_s, "CORE"_s));
        QCOMPARE(changed.size(), 0);
        QVERIFY(object.SetTranslationKey("NAME"_s, "Lobby"_s));
        QVERIFY(!object.SetTranslationKey("NAME"_s, "Lobby"_s));
        QVERIFY(object.SetPlaceholder("#other#"_s, 5)); // which isn't in the text
        QCOMPARE(changed.size(), 2);
        object.SetPlaceholder("#n#"_s, "HELLO"_s, "CORE"_s);
        QCOMPARE(object.GetTranslatedText(), "I am Hello."_s);
        QCOMPARE(object.GetPlaceholders().size(), 1);
        object.SetPlaceholder("#n#"_s, "#n#6"_s);
        QCOMPARE(object.GetTranslatedText(), "I am #n#6."_s);
        QCOMPARE(object.GetPlaceholder("#n#"_s), QVariant("#n#6"_s));
        QCOMPARE(object.GetPlaceholder("am"_s), QVariant());
        QVERIFY(object.setProperty("text", " am literal, #n# "_s));
        QCOMPARE(object.GetTranslationKey(), QString());
        CSettings::GetInstance()->SetSelectedLanguage(5);
        QCOMPARE(object.property("text"), QVariant("literal, #n#6"_s));
        QCOMPARE(changed.size(), 6);
    }

    void Nesting()
    {
        CTranslationItem inner, middle;
        inner.SetTranslationKey("HELLO"_s, "CORE"_s);
        middle.SetTranslationKey("NAME"_s, "CORE"_s);
        QVERIFY(middle.SetPlaceholder("#n#"_s, inner)); // a copy goes in
        inner.SetText("a #n#"_s);
        inner.SetPlaceholder("#n#"_s, inner);
        QCOMPARE(inner.GetTranslatedText(), "a a #n#"_s);
        CTranslationObject object;
        object.SetItem(middle);
        CSettings::GetInstance()->SetSelectedLanguage(5);
        QCOMPARE(object.GetTranslatedText(), "Ich bin Hallo."_s);
        object.SetItem(middle); // looks nothing up
        QCOMPARE(object.GetTranslatedText(), "I am Hello."_s);
        object.Clear();
        QCOMPARE(object.GetTranslatedText() + object.GetText(), QString());
    }
};

QTEST_GUILESS_MAIN(tst_translation)
#include "tst_translation.moc"
