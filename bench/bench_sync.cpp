// The exchange of notes with the web server: the JSON that the client sends and receives, compared with the same JSON
// by way of variant maps.

#include "Notes.h"

#include <settings/SettingsSync.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

using namespace Notes;
using Bench::SRow;

const QString NICK = QStringLiteral("nick");
const QString NOTE = QStringLiteral("note");
const QString TAG = QStringLiteral("tag");
const QString FLAGS = QStringLiteral("flags");
const QString TIME = QStringLiteral("time");
const QString INFOS = QStringLiteral("playerinfos");

QByteArray MakeAnswer(int notes)
{
    QJsonArray infos;
    for (int note = 0; note < notes; ++note)
        infos.append(QJsonObject{
            {NICK, Nickname(note)}, {NOTE, Note(note)}, {TAG, 3}, {FLAGS, Flags(note)}, {TIME, int(TIME_WRITTEN)}});
    const QJsonObject answer{{QStringLiteral("usersettingstime"), 0},
                             {QStringLiteral("playerinfostime"), int(TIME_WRITTEN)},
                             {INFOS, infos}};
    return QJsonDocument(answer).toJson();
}

QVariantMap MapOfNotes(const QVariantList &infos)
{
    return {{QStringLiteral("usersettingstime"), QStringLiteral("0")},
            {QStringLiteral("playerinfostime"), QString::number(TIME_FOUND)},
            {QStringLiteral("usersettings"), QVariantList()},
            {INFOS, infos}};
}

QVariantMap ReadMap(CFile &file)
{
    QVariantList infos;
    sqlite3_stmt *select = file.Prepare("SELECT PIN_cPlayer, PIN_cNote, PIN_iTagID, PIN_iPlayerFlags, PIN_iTimestamp"
                                        " FROM tbl_playerinfo WHERE PIN_cUser = 'alice' AND PIN_iTimestamp > 0");
    while (sqlite3_step(select) == SQLITE_ROW)
        infos.append(QVariantMap{{NICK, CFile::Text(select, 0)},
                                 {NOTE, CFile::Text(select, 1)},
                                 {TAG, CFile::Text(select, 2)},
                                 {FLAGS, CFile::Text(select, 3)},
                                 {TIME, CFile::Text(select, 4)}});
    sqlite3_finalize(select);
    return MapOfNotes(infos);
}

QByteArray WriteMap(const QVariantMap &map)
{
    return QJsonDocument(QJsonObject::fromVariantMap(map)).toJson();
}

void AddBuildRow(CFile &file)
{
    SRow<QByteArray> row{"sync_build", {100, 1000, 10000, 100000}};
    row.Setup = [&file](int notes) {
        file.Fill(notes);
        CSettingsSync::GetInstance()->ReadJSON("{}"); // a server without rows
        CSettingsSync::GetInstance()->GetLocalTimestamps();
    };
    row.Side("library", [](int) { return CSettingsSync::GetInstance()->CreateJSONforSync(); });
    row.Side("floor", [&file](int) { return WriteMap(ReadMap(file)); });
}

// Reads the answer into variant maps, and writes the rows in one transaction.
void TakeInByHand(CFile &file, const QByteArray &answer)
{
    const QVariantMap map = QJsonDocument::fromJson(answer).object().toVariantMap();
    const int notes = int(map.value(INFOS).toList().size());
    file.Run("BEGIN");
    file.Write(notes, TIME_WRITTEN);
    file.Run("COMMIT");
}

void AddTakeInRow(CFile &file)
{
    static QByteArray answer;
    static TPlayers<CPlayerDataModel> players;
    SRow<int> row{"sync_take_in", {100, 1000, 10000, 100000}};
    row.Setup = [](int notes) { answer = MakeAnswer(notes); };
    row.Prepare = [&file](int) {
        players.clear();
        file.Fill(0);
    };
    const auto takeIn = [](int notes) {
        CSettingsSync::GetInstance()->ReadJSON(answer);
        return notes;
    };
    const auto byHand = [&file](int) {
        TakeInByHand(file, answer);
        return LoadByHand(players);
    };
    const auto check = [&file](int) { return file.Count(TIME_WRITTEN); };
    row.Side("library", takeIn, [check](int notes) {
        for (int i = 0; i < notes; ++i)
            Require(CPlayerModel::GetInstance(Nickname(i))->GetNotes() == Note(i), "a note of a player");
        return check(notes);
    });
    row.Side("floor", byHand, check);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv); // the SQL driver is a plugin of Qt
    const CInstallationTree installation;
    CFile file;
    AddBuildRow(file);
    AddTakeInRow(file);
    return Bench::RunRows(argc, argv);
}
