// Live players: how fast they are found, changed, created, loaded with the user's notes, and saved.

#include "Notes.h"

#include <QThread>

#include <list>

namespace {

using namespace Notes;
using Bench::SRow;

constexpr double IDLE_SECONDS = 5e-5; // a turn of the event loop in which nothing was written
constexpr int CHANGES = 1000;

// A player as a program would write it by hand, with the same fields.
class CBarePlayer : public QObject
{
    Q_OBJECT

public:
    void SetVipLevel(unsigned int level)
    {
        if (m_ulVipLevel == level)
            return;
        m_ulVipLevel = level;
        Q_EMIT signal_VipLevelChanged(level);
    }

#define BENCH_MEMBER(Type, prefix, Name, SignalType, defaultValue) Type m_##prefix##Name = defaultValue;
    PLAYER_DATA_TABLE(BENCH_MEMBER)
#undef BENCH_MEMBER

Q_SIGNALS:
    void signal_VipLevelChanged(quint32 level);
};

// Players, and their nicknames in another order than that of their creation.
struct SFound
{
    QStringList names;
    TPlayers<CPlayerModel> players; // not owned
};

void MakePlayers(SFound &found, int players)
{
    found = {};
    ForgetPlayers();
    for (int i = 0; i < players; ++i) {
        found.names.append(Nickname(int(qint64(i) * 7919 % players)));
        CPlayerModel *player = CPlayerModel::GetInstance(Nickname(i));
        found.players.insert(Nickname(i), QSharedPointer<CPlayerModel>(player, [](CPlayerModel *) {}));
    }
}

template <typename Find>
bool FindAll(const QStringList &names, Find find)
{
    quintptr mixed = 0;
    for (const QString &name : names)
        mixed ^= quintptr(find(name));
    return mixed != 0;
}

void AddFindRow()
{
    static SFound found;
    SRow<bool> row{"find", {100, 1000, 10000, 100000}};
    row.Setup = [](int players) {
        MakePlayers(found, players);
        for (const QString &name : qAsConst(found.names))
            Require(CPlayerModel::GetInstance(name) == found.players.value(name).data(), "the same player");
    };
    const auto byHand = [](const QString &name) { return found.players.value(name).data(); };
    row.Side("library", [](int) { return FindAll(found.names, CPlayerModel::GetInstance); });
    row.Side("floor", [byHand](int) { return FindAll(found.names, byHand); });
}

// Adds a side that returns the sum of the values that a slot receives.
template <typename Player, typename Signal>
void AddSetterSide(SRow<quint64> &row, const char *side, Signal signal)
{
    static Player player;
    static quint64 heard;
    QObject::connect(&player, signal, &player, [](quint32 level) { heard += level; });
    row.Side(side, [](int) {
        heard = 0;
        for (unsigned int i = 0; i < CHANGES; ++i)
            player.SetVipLevel(i % 2 + 1);
        return heard;
    });
}

double BytesInUse()
{
    const auto memory = mallinfo2();
    return double(memory.uordblks + memory.hblkhd);
}

int MakeBarePlayers(TPlayers<CBarePlayer> &bare, int players)
{
    for (int i = 0; i < players; ++i) {
        const QSharedPointer<CBarePlayer> player(new CBarePlayer);
        player->m_strNickname = Nickname(i);
        bare.insert(player->m_strNickname, player);
    }
    return int(bare.size());
}

int MakeLivePlayers(int players)
{
    for (int i = 0; i < players; ++i)
        CPlayerModel::GetInstance(Nickname(i));
    return players;
}

void AddMemoryRow()
{
    static TPlayers<CBarePlayer> bare;
    static double before;
    SRow<int> row{"player", {1000}};
    row.Prepare = [](int) {
        bare.clear();
        ForgetPlayers();
        before = BytesInUse();
    };
    const auto tell = [](int players) {
        Bench::Count("bytes_a_player", (BytesInUse() - before) / players);
        return players;
    };
    row.Side("library", MakeLivePlayers, tell);
    row.Side(
        "floor", [](int players) { return MakeBarePlayers(bare, players); }, tell);
}

// The players that wait, in the order of their last change.
struct SQueue
{
    struct SEntry
    {
        CPlayerModel *pModel;
        qint64 iDue;
    };
    std::list<SEntry> waiting;
    QHash<CPlayerModel *, std::list<SEntry>::iterator> places;
    QElapsedTimer clock;
};

void RestartByHand(SQueue &queue, CPlayerModel *model)
{
    const qint64 due = queue.clock.elapsed() + 3000;
    auto place = queue.places.find(model);
    if (place == queue.places.end())
        place = queue.places.insert(model, queue.waiting.insert(queue.waiting.end(), {model, due}));
    queue.waiting.splice(queue.waiting.end(), queue.waiting, *place);
    queue.waiting.back().iDue = due;
}

void AddRestartRow()
{
    static SFound found;
    static SQueue queue;
    const auto change = [rating = std::make_shared<unsigned char>()](int players) {
        ++*rating;
        for (const auto &player : qAsConst(found.players))
            player->SetRating(*rating);
        return players;
    };
    const auto restart = [](int) {
        for (const auto &player : qAsConst(found.players))
            RestartByHand(queue, player.data());
        return int(queue.waiting.size());
    };
    SRow<int> row{"restart", {100, 1000, 10000, 100000}};
    row.Setup = [=](int players) {
        MakePlayers(found, players);
        queue = {};
        queue.clock.start();
        change(players);
        restart(players);
    };
    row.Side("library", change);
    row.Side("floor", restart);
}

void AddLoadRow(CFile &file)
{
    static TPlayers<CPlayerDataModel> players;
    SRow<int> row{"load", {100, 1000, 10000, 100000}};
    row.Prepare = [&file](int notes) {
        players.clear();
        file.Fill(notes);
    };
    const auto check = [](int notes) {
        for (int i = 0; i < notes; ++i)
            Require(CPlayerModel::GetInstance(Nickname(i))->GetNotes() == Note(i), "a note");
        return notes;
    };
    row.Side(
        "library", [](int notes) { return PlayerInfo::LoadInfo() ? notes : 0; }, check);
    row.Side("floor", [](int) { return LoadByHand(players); });
    row.Side("C API of SQLite", [&file](int) { return LoadBySQLite(file, players); });
}

// Runs the event loop until all is written; only the turns that write are timed.
int SaveThroughLibrary(CFile &file, int notes)
{
    for (bool done = false; !done;) {
        QElapsedTimer clock;
        clock.start();
        QCoreApplication::processEvents();
        const double turn = double(clock.nsecsElapsed()) / 1e9;
        Bench::Count("longest_turn_ms", turn * 1e3);
        if (turn >= IDLE_SECONDS)
            continue;
        done = file.Count(TIME_WRITTEN) == notes;
        QThread::msleep(1);
        Bench::idleSeconds += double(clock.nsecsElapsed()) / 1e9;
    }
    return notes;
}

void AddSaveRow(CFile &file)
{
    SRow<int> row{"save", {1000, 10000}};
    row.Prepare = [&file](int notes) {
        file.Fill(notes);
        Require(PlayerInfo::LoadInfo(), "the load");
    };
    row.iIterations = 1;
    const auto check = [&file](int) { return file.Count(TIME_WRITTEN); };
    row.Side(
        "library", [&file](int notes) { return SaveThroughLibrary(file, notes); }, check);
    row.Side(
        "floor", [&file](int notes) { return file.Write(notes, TIME_WRITTEN); }, check);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv); // the SQL driver is a plugin of Qt
    const CInstallationTree installation;
    CFile file;
    AddFindRow();
    SRow<quint64> setter{"setter", {1}};
    AddSetterSide<CPlayerDataModel>(setter, "library", &CPlayerDataModel::signal_VipLevelChanged);
    AddSetterSide<CBarePlayer>(setter, "floor", &CBarePlayer::signal_VipLevelChanged);
    AddMemoryRow();
    AddRestartRow();
    AddLoadRow(file);
    AddSaveRow(file);
    return Bench::RunRows(argc, argv);
}

#include "bench_players.moc"
