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
        for (const QStringList &in : // languages, the selected one, the operator's, the one to be chosen
             Rows("2 own -,5 xx -|5|2|5;2 own -,5 xx -|9|5|5;2 xx -,5 own -|9|9|5;5 xx -,2 xx -|-1|-1|2;"
                  "5 xx -,1 xx -|-1|-1|5"_s)) {
            const CLanguages languages("1|||"_s, QString(in[0]).replace("own"_s, own));
            CConfig::GetInstance()->SetConfigs({{"defaultlanguage"_s, in[2]}});
            CSettings::GetInstance()->SetSelectedLanguage(in[1].toInt());
            QCOMPARE(CTranslation::GetInstance()->GetLanguage().iID, in[3].toInt());
            QCOMPARE(CSettings::GetInstance()->GetSelectedLanguage(), in[3].toInt());
        }
    }

    void Lookup()
    {
        for (const QStringList &in : // area, key, language, text
             Rows("LOBBY|HELLO|-1|Hi;Table|hello|-1|Hello;Lobby|ENGLISH|-1|;Lobby|HELLO|5|Hallo;"
                  "CORE|HELLO|0|Zero;Core|English|5|core/english\nNOT IN TRANSLATION;"
                  "Game|FO'O|-1|game/fo'o\nNOT IN TRANSLATION;CORE||-1|;|HELLO|-1|"_s))
            QCOMPARE(CTranslation::GetInstance()->GetTranslatedString(in[1], in[0], in[2].toInt()), in[3]);
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
        QVERIFY(changed.size() == 3 && callers.size() == 8 && callers.count(catalogue) == 3);
        QCOMPARE(callers.mid(0, 3), (QList<const QObject *>{this, this, catalogue}));
    }

    void Tidying()
    {
        for (const QStringList &in : // template, value, text: pairs of blanks in one pass, before points
             Rows("#m# and #m#|x|x and x;#M# #m|x|#M# #m;\t a  b\n|x|a b;a #m# b #m#.||a b.;"
                  "a   b    c|x|a  b  c;a  . b   .|x|a. b .;#m#|#n#|nested"_s)) {
            CTranslationItem nested, item;
            nested.SetText(" nested "_s);
            item.SetPlaceholder("#n#"_s, nested);
            item.SetPlaceholder("#m#"_s, QVariant(in[1]));
            QVERIFY(item.SetText(in[0]) && item.GetText() == in[0]);
            QCOMPARE(item.GetTranslatedText(), in[2]);
        }
    }

    void Placeholders()
    {
        CTranslationObject object;
        const QSignalSpy changed(&object, &CTranslationObject::signal_TextChanged);
        QVERIFY(!object.SetPlaceholder(QString(), 5) && !object.SetPlaceholder(QString(), CTranslationItem()));
        QVERIFY(!object.SetPlaceholder(QString(), "HELLO"_s, "CORE"_s) && changed.isEmpty());
        QVERIFY(object.SetTranslationKey("NAME"_s, "Lobby"_s) && !object.SetTranslationKey("NAME"_s, "Lobby"_s));
        QVERIFY(object.SetPlaceholder("#other#"_s, 5) && changed.size() == 2); // not in the text
        QVERIFY(object.SetPlaceholder("#n#"_s, 5) && object.GetTranslatedText() == "I am 5."_s);
        QVERIFY(object.SetPlaceholder("#n#"_s, "HELLO"_s, "CORE"_s) && changed.size() == 4);
        QVERIFY(object.GetTranslatedText() == "I am Hello."_s && object.GetPlaceholders().size() == 1);
        QVERIFY(object.SetPlaceholder("#n#"_s, "#n#6"_s) && object.GetTranslatedText() == "I am #n#6."_s);
        QVERIFY(object.GetPlaceholder("#n#"_s) == "#n#6"_s && !object.GetPlaceholder("am"_s).isValid());
        QVERIFY(object.setProperty("text", " am literal, #n# "_s) && object.GetTranslationKey().isEmpty());
        CSettings::GetInstance()->SetSelectedLanguage(5);
        QVERIFY(object.property("text").toString() == "literal, #n#6"_s && changed.size() == 7);
    }

    void Nesting()
    {
        CTranslationItem inner, middle;
        QVERIFY(inner.SetTranslationKey("HELLO"_s, "CORE"_s) && middle.SetTranslationKey("NAME"_s, "CORE"_s));
        QVERIFY(middle.SetPlaceholder("#n#"_s, inner) && inner.SetText("a #n#"_s)); // a copy went in
        QVERIFY(inner.SetPlaceholder("#n#"_s, inner) && inner.GetTranslatedText() == "a a #n#"_s);
        QVERIFY(inner.SetPlaceholder("#n#"_s, middle) && inner.SetText("<#n#>"_s));
        CTranslationObject object;
        const QSignalSpy changed(&object, &CTranslationObject::signal_TextChanged);
        object.SetItem(inner);
        CSettings::GetInstance()->SetSelectedLanguage(5);
        QCOMPARE(object.GetTranslatedText(), "<Ich bin Hallo.>"_s);
        object.SetItem(inner);         // looks nothing up
        CTranslationItem copy(object); // NOLINT(cppcoreguidelines-slicing): its text alone
        object.Clear();
        QVERIFY(changed.size() == 3 && object.GetTranslatedText().isEmpty() && object.GetText().isEmpty());
        QCOMPARE(copy.GetTranslatedText(), "<I am Hello.>"_s);
    }
};

QTEST_GUILESS_MAIN(tst_translation)
#include "tst_translation.moc"
