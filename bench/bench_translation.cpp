// How long a switch of the language takes until the last of 620 texts on screen has its new one: 500 translation
// objects, 100 actions and 20 menus, each with a text of its own. The peer is the least that a catalogue without a
// cache needs: one look-up a text, by a prepared statement of the plain SQLite C API in the same file.

#include <database/ConfigDB.h>
#include <database/SettingsDB.h>
#include <database/TranslationDB.h>
#include <files/Pathes.h>
#include <settings/Settings.h>
#include <translation/Translation.h>
#include <translation/TranslationObject.h>

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <QApplication>
#include <QDir>
#include <QMenu>
#include <QTemporaryDir>

#include <memory>
#include <vector>

namespace {

constexpr int OBJECTS = 500;
constexpr int ACTIONS = 100;
constexpr int MENUS = 20;
constexpr int TEXTS = OBJECTS + ACTIONS + MENUS;
constexpr int FILE_TEXTS = 3000; // of each of the two languages

void Require(bool done, const char *what)
{
    if (!done)
        qFatal("%s failed", what);
}

// The text of each place in the file is the place itself in the first language, the place negated in the second.
void MakeCatalogue(sqlite3 *file)
{
    const auto run = [file](const QByteArray &sql) {
        Require(sqlite3_exec(file, sql.constData(), nullptr, nullptr, nullptr) == SQLITE_OK, sql.constData());
    };
    run("BEGIN");
    run("CREATE TABLE tbl_availablelanguages (AVL_iID INTEGER PRIMARY KEY, AVL_cShort TEXT, AVL_cLong TEXT)");
    run("INSERT INTO tbl_availablelanguages VALUES (1, 'en', 'English'), (2, 'de', 'Deutsch')");
    run("CREATE TABLE tbl_translations (TRL_AVL_iID INTEGER, TRL_cArea TEXT, TRL_cKey TEXT, TRL_cTranslation TEXT)");
    run("CREATE UNIQUE INDEX idx_translations ON tbl_translations (TRL_AVL_iID, TRL_cArea, TRL_cKey)");
    for (int place = 0; place < FILE_TEXTS; ++place) {
        const QByteArray number = QByteArray::number(place);
        run("INSERT INTO tbl_translations VALUES (1, 'bench', 'text_" + number + "', '" + number + "'), " +
            "(2, 'bench', 'text_" + number + "', '-" + number + "')");
    }
    run("COMMIT");
}

// An installation and the texts on its screen. It is there once; the library's objects live as long.
struct SScreen
{
    SScreen()
    {
        const QString client = dir.filePath(QStringLiteral("Contents/Client"));
        Require(QDir().mkpath(client) && QDir(client).mkpath(QStringLiteral("../Resources")) &&
                    QDir(client).mkpath(QStringLiteral("../Tmp")) && QDir::setCurrent(client),
                "the installation");
        Require(sqlite3_open(qUtf8Printable(Pathes::LanguageDB()), &plain) == SQLITE_OK, "the catalogue's file");
        MakeCatalogue(plain);
        CConfigDB::GetInstance()->Init(); // there is none, so that the defaults hold
        Require(CSettingsDB::GetInstance()->Init() && CTranslationDB::GetInstance()->Init(), "the databases");
        for (int place = 0; place < TEXTS; ++place) {
            objects.push_back(std::make_unique<CTranslationObject>());
            Show(*objects.back(), place);
            objects.back()->SetTranslationKey(QStringLiteral("TEXT_%1").arg(place), QStringLiteral("BENCH"));
        }
    }

    void Show(CTranslationObject &text, int place)
    {
        if (place < OBJECTS)
            return;
        if (place < OBJECTS + ACTIONS) {
            actions.push_back(std::make_unique<QAction>());
            QObject::connect(&text, &CTranslationObject::signal_TextChanged, actions.back().get(),
                             [action = actions.back().get(), &text] { action->setText(text.GetTranslatedText()); });
        } else {
            menus.push_back(std::make_unique<QMenu>());
            QObject::connect(&text, &CTranslationObject::signal_TextChanged, menus.back().get(),
                             [menu = menus.back().get(), &text] { menu->setTitle(text.GetTranslatedText()); });
        }
    }

    QTemporaryDir dir;
    sqlite3 *plain = nullptr;
    std::vector<std::unique_ptr<CTranslationObject>> objects;
    std::vector<std::unique_ptr<QAction>> actions;
    std::vector<std::unique_ptr<QMenu>> menus;
};
SScreen *pScreen = nullptr;

void Switch(benchmark::State &state)
{
    int language = CTranslation::GetInstance()->GetLanguage().iID;
    for (auto _ : state) {
        language = 3 - language;
        CSettings::GetInstance()->SetSelectedLanguage(language, nullptr, false);
    }
    const QString sign = language == 1 ? QString() : QStringLiteral("-");
    Require(pScreen->actions.back()->text() == sign + QString::number(OBJECTS + ACTIONS - 1) &&
                pScreen->menus.back()->title() == sign + QString::number(TEXTS - 1),
            "the switch");
}
BENCHMARK(Switch)->Unit(benchmark::kMillisecond)->UseRealTime();

void PreparedLookups(benchmark::State &state)
{
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(pScreen->plain,
                       "SELECT TRL_cTranslation FROM tbl_translations WHERE TRL_cArea = 'bench' AND TRL_cKey = ? AND "
                       "TRL_AVL_iID = 2",
                       -1, &statement, nullptr);
    for (auto _ : state) {
        for (int place = 0; place < TEXTS; ++place) {
            const QByteArray key = "text_" + QByteArray::number(place);
            sqlite3_bind_text(statement, 1, key.constData(), key.size(), SQLITE_STATIC);
            Require(sqlite3_step(statement) == SQLITE_ROW, "a prepared look-up");
            benchmark::DoNotOptimize(sqlite3_column_text(statement, 0));
            sqlite3_reset(statement);
        }
    }
    sqlite3_finalize(statement);
}
BENCHMARK(PreparedLookups)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    SScreen screen;
    pScreen = &screen;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    sqlite3_close(screen.plain);
    return 0;
}
