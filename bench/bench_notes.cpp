// What notes on 1,000 to 100,000 players cost one user: their load into the models, the saves that follow it, and the
// exchange with the server. Beside each stands a floor: the same rows read or written by prepared statements of the
// SQLite C API, with the models' work, or with none. The longest turn of the event loop and the memory are told with
// them. What was written is counted through a connection of its own.

#include <database/ConfigDB.h>
#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <files/Pathes.h>
#include <models/PlayerLists.h>
#include <models/UserInfo.h>
#include <settings/PlayerInfo.h>
#include <settings/Settings.h>
#include <settings/SettingsSync.h>
#include <time/CasinoTime.h>

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QThread>

#include <malloc.h>

namespace {

constexpr double IDLE_MS = 0.05; // a turn of the event loop that has written nothing
constexpr unsigned int TIME_FOUND = 1000;
constexpr unsigned int TIME_WRITTEN = 2000;
const QString USER = QStringLiteral("alice");

void Require(bool done, const char *what)
{
    if (!done)
        qFatal("%s failed", what);
}

QString Nickname(int number)
{
    return QStringLiteral("player%1").arg(number);
}

QString Note(int number)
{
    return QStringLiteral("raises with nothing before the flop, %1 times seen").arg(number);
}

// The library in an installation of its own, and beside its connection one of the C API.
class CInstallation
{
public:
    CInstallation()
    {
        const QString client = m_dir.filePath(QStringLiteral("Contents/Client"));
        Require(QDir().mkpath(client) && QDir(client).mkpath(QStringLiteral("../Tmp")), "the installation");
        QDir::setCurrent(client);
        CConfigDB::GetInstance()->Init(); // there is none, so that the defaults hold
        Require(CSettingsDB::GetInstance()->Init() && CPlayerInfoDB::GetInstance()->Init(), "the files");
        Require(sqlite3_open(QFile::encodeName(Pathes::PlayerInfoDB()), &m_pFile) == SQLITE_OK, "the connection");
        Run("PRAGMA synchronous = NORMAL");
        CCasinoTime::GetInstance()->SetTimeUTCServer(TIME_FOUND);
    }
    ~CInstallation() { sqlite3_close(m_pFile); }

    void Run(const char *sql) { Require(sqlite3_exec(m_pFile, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql); }

    sqlite3_stmt *Prepare(const char *sql)
    {
        sqlite3_stmt *statement = nullptr;
        Require(sqlite3_prepare_v2(m_pFile, sql, -1, &statement, nullptr) == SQLITE_OK, sql);
        return statement;
    }

    // A file with so many notes of the user, who is logged in and of whose notes no model knows.
    void Fill(int notes)
    {
        CUserInfo *user = CUserInfo::GetInstance();
        user->SetLoggedIn(QString());
        CPlayerLists::GetInstance()->ResetBuddyList();
        CPlayerModel::DestroyInstances();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        CPlayerInfoDB::GetInstance()->StartTransaction();
        CPlayerInfoDB::GetInstance()->Delete(CPlayerInfoDB::strTableNameInfo, {});
        for (int note = 0; note < notes; ++note)
            PlayerInfo::InsertPlayerInfo({USER, Nickname(note), Note(note), 3, note % 10 == 0 ? 1u : 0u, TIME_FOUND});
        CPlayerInfoDB::GetInstance()->EndTransaction(true);
        Run("PRAGMA wal_checkpoint(TRUNCATE)");
        CCasinoTime::GetInstance()->SetTimeUTCServer(TIME_WRITTEN);
        user->SetLoggedIn(USER);
        Require(Count(TIME_FOUND) == notes, "the filling");
    }

    int Count(unsigned int time)
    {
        sqlite3_stmt *count = Prepare("SELECT COUNT(*) FROM tbl_playerinfo WHERE PIN_iTimestamp = ?");
        sqlite3_bind_int64(count, 1, time);
        Require(sqlite3_step(count) == SQLITE_ROW, "the count");
        const int rows = sqlite3_column_int(count, 0);
        sqlite3_finalize(count);
        return rows;
    }

    void BindText(sqlite3_stmt *statement, int column, const QString &text)
    {
        sqlite3_bind_text16(statement, column, text.utf16(), text.size() * int(sizeof(QChar)), SQLITE_TRANSIENT);
    }

    // The same rows by one prepared statement, each a transaction of its own unless one is under way.
    void WriteNotes(int notes, unsigned int time)
    {
        sqlite3_stmt *insert = Prepare("INSERT INTO tbl_playerinfo (PIN_cUser, PIN_cPlayer, PIN_cNote, PIN_iTagID,"
                                       " PIN_iTimestamp) VALUES ('alice', ?, ?, 3, ?)"
                                       " ON CONFLICT (PIN_cUser, PIN_cPlayer) DO UPDATE SET"
                                       " PIN_cNote = excluded.PIN_cNote, PIN_iTimestamp = excluded.PIN_iTimestamp");
        for (int note = 0; note < notes; ++note) {
            BindText(insert, 1, Nickname(note));
            BindText(insert, 2, Note(note));
            sqlite3_bind_int64(insert, 3, time);
            Require(sqlite3_step(insert) == SQLITE_DONE, "an insert");
            sqlite3_reset(insert);
        }
        sqlite3_finalize(insert);
    }

    // As long as it lives, what is written without the library goes to another file, which has no write-ahead log.
    class CWithoutLog
    {
    public:
        explicit CWithoutLog(CInstallation &installation)
            : m_installation(installation)
            , m_pFile(installation.m_pFile)
        {
            const QByteArray path = QFile::encodeName(installation.m_dir.filePath(QStringLiteral("plain.sqlite")));
            Require(sqlite3_open(path, &installation.m_pFile) == SQLITE_OK, "the file without a log");
            installation.Run(
                "CREATE TABLE tbl_playerinfo (PIN_cUser CHAR(32), PIN_cPlayer CHAR(32), PIN_cNote CHAR(60),"
                " PIN_iTagID INTEGER, PIN_iTimestamp INTEGER, PRIMARY KEY(PIN_cUser, PIN_cPlayer))");
        }
        ~CWithoutLog()
        {
            sqlite3_close(m_installation.m_pFile);
            m_installation.m_pFile = m_pFile;
        }

    private:
        CInstallation &m_installation;
        sqlite3 *m_pFile;
    };

private:
    QTemporaryDir m_dir;
    sqlite3 *m_pFile = nullptr;
};
CInstallation *pInstallation = nullptr;

// Read, put under its nickname, and set.
void LoadPlain(benchmark::State &state)
{
    const int notes = int(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        pInstallation->Fill(notes);
        state.ResumeTiming();
        QHash<QString, QSharedPointer<CPlayerDataModel>> models;
        sqlite3_stmt *select = pInstallation->Prepare("SELECT PIN_cPlayer, PIN_cNote, PIN_iTagID FROM tbl_playerinfo"
                                                      " WHERE PIN_cUser = 'alice'");
        while (sqlite3_step(select) == SQLITE_ROW) {
            const auto text = [select](int column) {
                return QString::fromUtf16(static_cast<const char16_t *>(sqlite3_column_text16(select, column)));
            };
            const QSharedPointer<CPlayerDataModel> model(new CPlayerDataModel);
            model->SetNickname(text(0));
            model->SetNotes(text(1));
            model->SetTagID(static_cast<unsigned int>(sqlite3_column_int(select, 2)));
            models.insert(model->GetNickname(), model);
        }
        sqlite3_finalize(select);
        Require(models.size() == notes, "the load");
        state.PauseTiming();
        models.clear();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * notes);
}

void LoadLibrary(benchmark::State &state)
{
    const int notes = int(state.range(0));
    double bytes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        pInstallation->Fill(notes);
        malloc_trim(0);
        const auto before = mallinfo2();
        state.ResumeTiming();
        Require(PlayerInfo::LoadInfo(), "the load");
        state.PauseTiming();
        const auto after = mallinfo2();
        bytes = double(after.uordblks + after.hblkhd) - double(before.uordblks + before.hblkhd);
        Require(CPlayerModel::GetInstance(Nickname(notes - 1))->GetNotes() == Note(notes - 1), "the last note");
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * notes);
    state.counters["bytes_a_player"] = bytes / notes;
}

// One transaction a row in a file with a write-ahead log.
void SavePlain(benchmark::State &state)
{
    const int notes = int(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        pInstallation->Fill(notes);
        state.ResumeTiming();
        pInstallation->WriteNotes(notes, TIME_WRITTEN);
    }
    Require(pInstallation->Count(TIME_WRITTEN) == notes, "the write");
    state.SetItemsProcessed(state.iterations() * notes);
}

// The same in a file as SQLite makes it by itself: each transaction waits for the disk.
void SaveWithRollbackJournal(benchmark::State &state)
{
    const int notes = int(state.range(0));
    CInstallation::CWithoutLog file(*pInstallation);
    for (auto _ : state)
        pInstallation->WriteNotes(notes, TIME_WRITTEN);
    state.SetItemsProcessed(state.iterations() * notes);
}

// What the turns of the event loop take in which the loaded players are written, and the longest of them.
void SaveLibrary(benchmark::State &state)
{
    const int notes = int(state.range(0));
    double longest = 0;
    for (auto _ : state) {
        pInstallation->Fill(notes);
        Require(PlayerInfo::LoadInfo(), "the load");
        double working = 0;
        for (bool idle = false; !idle || pInstallation->Count(TIME_WRITTEN) < notes;) {
            QElapsedTimer clock;
            clock.start();
            QCoreApplication::processEvents();
            const double turn = double(clock.nsecsElapsed()) / 1e6;
            idle = turn < IDLE_MS;
            working += idle ? 0 : turn;
            longest = std::max(longest, turn);
            if (idle)
                QThread::msleep(1);
        }
        state.SetIterationTime(working / 1e3);
    }
    state.SetItemsProcessed(state.iterations() * notes);
    state.counters["longest_turn_ms"] = longest;
}

QByteArray MakeAnswer(int notes)
{
    QJsonArray infos;
    for (int note = 0; note < notes; ++note)
        infos.append(QJsonObject{{QStringLiteral("nick"), Nickname(note)},
                                 {QStringLiteral("note"), Note(note)},
                                 {QStringLiteral("tag"), 3},
                                 {QStringLiteral("flags"), 0},
                                 {QStringLiteral("time"), int(TIME_WRITTEN)}});
    const QJsonObject answer{{QStringLiteral("usersettingstime"), 0},
                             {QStringLiteral("playerinfostime"), int(TIME_WRITTEN)},
                             {QStringLiteral("playerinfos"), infos}};
    return QJsonDocument(answer).toJson();
}

// Into a variant map, and the rows in one transaction.
void TakeInPlain(benchmark::State &state)
{
    const int notes = int(state.range(0));
    const QByteArray answer = MakeAnswer(notes);
    for (auto _ : state) {
        state.PauseTiming();
        pInstallation->Fill(0);
        state.ResumeTiming();
        const QVariantMap map = QJsonDocument::fromJson(answer).object().toVariantMap();
        Require(map.value(QStringLiteral("playerinfos")).toList().size() == notes, "the reading");
        pInstallation->Run("BEGIN");
        pInstallation->WriteNotes(notes, TIME_WRITTEN);
        pInstallation->Run("COMMIT");
    }
    state.SetItemsProcessed(state.iterations() * notes);
}

// The same, and all into the models.
void TakeInLibrary(benchmark::State &state)
{
    const int notes = int(state.range(0));
    const QByteArray answer = MakeAnswer(notes);
    for (auto _ : state) {
        state.PauseTiming();
        pInstallation->Fill(0);
        state.ResumeTiming();
        CSettingsSync::GetInstance()->ReadJSON(answer);
        state.PauseTiming();
        Require(pInstallation->Count(TIME_WRITTEN) == notes, "the write");
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * notes);
}

void BuildPlain(benchmark::State &state)
{
    const int notes = int(state.range(0));
    const QVariantMap map = QJsonDocument::fromJson(MakeAnswer(notes)).object().toVariantMap();
    for (auto _ : state)
        benchmark::DoNotOptimize(QJsonDocument(QJsonObject::fromVariantMap(map)).toJson());
    state.SetItemsProcessed(state.iterations() * notes);
}

void BuildLibrary(benchmark::State &state)
{
    const int notes = int(state.range(0));
    pInstallation->Fill(notes);
    CSettingsSync::GetInstance()->ReadJSON("{}"); // a server that has nothing yet
    QByteArray json;
    for (auto _ : state)
        json = CSettingsSync::GetInstance()->CreateJSONforSync();
    Require(json.count("\"nick\"") == notes, "the JSON");
    state.SetItemsProcessed(state.iterations() * notes);
}

#define BENCH_CASE(Case) \
    BENCHMARK(Case)->Unit(benchmark::kMillisecond)->RangeMultiplier(10)->Range(1000, 100000)->Iterations(1)
BENCH_CASE(LoadPlain)->UseRealTime();
BENCH_CASE(LoadLibrary)->UseRealTime();
BENCH_CASE(SavePlain)->UseRealTime();
BENCHMARK(SaveWithRollbackJournal)->Unit(benchmark::kMillisecond)->Arg(1000)->Iterations(1)->UseRealTime();
BENCH_CASE(SaveLibrary)->UseManualTime();
BENCH_CASE(TakeInPlain)->UseRealTime();
BENCH_CASE(TakeInLibrary)->UseRealTime();
BENCH_CASE(BuildPlain)->UseRealTime();
BENCH_CASE(BuildLibrary)->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv); // the SQL driver is a plugin of Qt
    CInstallation installation;
    pInstallation = &installation;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
