#include "PlayerSaves_p.h"

#include <database/BusyWait_p.h>
#include <database/PlayerInfoDB.h>
#include <database/Transaction_p.h>
#include <models/PlayerModel.h>
#include <models/UserInfo.h>
#include <settings/LocalChanges_p.h>
#include <settings/PlayerInfo_p.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>

#include <algorithm>
#include <optional>

namespace {

constexpr qint64 SAVE_DELAY_MS = 3000;
// How long one turn of the event loop may write: well below a frame.
constexpr qint64 SLICE_MS = 4;
constexpr int ROWS_A_SLICE = 200;

// The delay is the same for all, so that the order of their restarts is that in which they are due. Each player knows
// its place.
std::list<SPlayerSave> waiting;
// A row of a user who has logged out before the file could be written.
struct SKept
{
    QVariantList row;
    bool bChange; // as that of SPlayerSave
};
QList<SKept> kept;
int pauseMs = 0; // until the next attempt to write, while the file can't be used
// A child of the application, which may end before the library does.
QPointer<QTimer> timer;

// Milliseconds since the first call.
qint64 Now()
{
    static const QElapsedTimer clock = [] {
        QElapsedTimer started;
        started.start();
        return started;
    }();
    return clock.elapsed();
}

// Whether there is a user and a file for it, and the table knows it. What is being loaded is stored already.
bool IsStorable(const SPlayerSave &save)
{
    return !save.strUser.isEmpty() && CPlayerInfoDB::GetInstance()->IsOpen() &&
           !CPlayerSaves::GetKey(*save.pModel).isEmpty();
}

} // namespace

void CPlayerSaves::Restart(CPlayerModel *model, bool change)
{
    const qint64 due = Now() + SAVE_DELAY_MS;
    if (model->m_save) {
        waiting.splice(waiting.end(), waiting, *model->m_save);
        SPlayerSave &save = waiting.back();
        save = {model, due, save.bChange || change, GetUser()};
    } else {
        model->m_save = waiting.insert(waiting.end(), {model, due, change, GetUser()});
    }
    if (!timer || !timer->isActive())
        RunTimer();
}

void CPlayerSaves::Forget(CPlayerModel *model)
{
    if (!model->m_save)
        return;
    waiting.erase(*model->m_save);
    model->m_save.reset();
}

bool CPlayerSaves::IsWaiting(const CPlayerModel &model)
{
    return model.m_save.has_value();
}

void CPlayerSaves::LoadNoBuddy(CPlayerModel *model)
{
    model->SetLoadedBuddy(false);
}

void CPlayerSaves::NumberUnwrittenChanges()
{
    const QString user = GetUser();
    for (const SPlayerSave &save : waiting) {
        if (save.bChange && save.strUser == user)
            CLocalChanges::AddPlayer(user, GetKey(*save.pModel));
    }
    for (const SKept &entry : qAsConst(kept)) {
        if (entry.bChange && entry.row.constFirst() == user)
            CLocalChanges::AddPlayer(user, entry.row.at(1).toString());
    }
}

void CPlayerSaves::SaveAgain(const QStringList &nicknames)
{
    for (const QString &nickname : nicknames) {
        CPlayerModel *model = CPlayerModel::m_Instances.value(nickname).data();
        if (model && !IsWaiting(*model))
            Restart(model, true);
    }
}

QString CPlayerSaves::GetUser()
{
    return CUserInfo::IsExisting() ? CUserInfo::GetInstance()->GetNickname() : QString();
}

QString CPlayerSaves::GetKey(const CPlayerModel &model)
{
    const auto &models = CPlayerModel::m_Instances;
    auto entry = models.constFind(model.GetNickname());
    const bool found = entry != models.cend() && entry->data() == &model;
    if (!found && CPlayerModel::m_bRenamed)
        entry = std::find(models.cbegin(), models.cend(), &model);
    return found || (CPlayerModel::m_bRenamed && entry != models.cend()) ? entry.key() : QString();
}

void CPlayerSaves::EndLogin()
{
    WriteAll();
    CLocalChanges::Forget();
}

void CPlayerSaves::WriteAll()
{
    const QList<SPlayerSave> saves(waiting.cbegin(), waiting.cend());
    if (Write(saves))
        return;
    const PlayerInfo::CSaver saver;
    for (const SPlayerSave &save : saves) {
        if (IsStorable(save))
            kept.append({saver.GetRow(save.strUser, *save.pModel), save.bChange});
    }
    if (kept.isEmpty())
        return;
    pauseMs = CBusyWait::GetNextPause(pauseMs);
    RunTimer();
}

QList<QVariantList> CPlayerSaves::GetKept(const QString &user)
{
    QList<QVariantList> rows;
    for (const SKept &entry : qAsConst(kept)) {
        if (entry.row.constFirst() == user)
            rows.append(entry.row);
    }
    return rows;
}

// False if they can't be written.
bool CPlayerSaves::WriteKept(int most)
{
    if (kept.isEmpty())
        return true;
    CTransaction transaction(*CPlayerInfoDB::GetInstance());
    if (!transaction.IsBegun())
        return false;
    const int count = qMin(most, kept.size());
    {
        PlayerInfo::CSaver saver(PlayerInfo::CSaver::NotOlder);
        for (int row = 0; row < count; ++row) {
            if (!saver.Write(kept.at(row).row))
                return false;
        }
    }
    if (!transaction.Commit())
        return false;
    kept.erase(kept.begin(), kept.begin() + count);
    if (kept.isEmpty() && timer) { // which may be in a pause
        pauseMs = 0;
        timer->stop();
    }
    return true;
}

void CPlayerSaves::WriteDue()
{
    const CBusyWait wait(*CPlayerInfoDB::GetInstance(), CBusyWait::RETRY_MS);
    bool good = WriteKept(ROWS_A_SLICE);
    PlayerInfo::CSaver saver;
    const qint64 begin = Now();
    for (qint64 now = begin; good && !waiting.empty() && waiting.front().iDue <= now && now - begin < SLICE_MS;
         now = Now()) {
        const SPlayerSave first = waiting.front();
        if (first.pModel->m_bLoading) { // a listener runs an event loop; half of the row isn't there yet
            Restart(first.pModel, first.bChange);
            continue;
        }
        Forget(first.pModel); // a change that comes on the way has to wait anew
        good = saver.SaveOf(first.strUser, *first.pModel) || !IsStorable(first);
        if (!good)
            Restart(first.pModel, first.bChange);
    }
    pauseMs = good ? 0 : CBusyWait::GetNextPause(pauseMs);
    if (!waiting.empty() || !kept.isEmpty())
        RunTimer();
}

// False if any isn't stored. What is being loaded is left out: its row is there, and half of it isn't here yet.
bool CPlayerSaves::Write(const QList<SPlayerSave> &saves)
{
    CPlayerInfoDB *database = CPlayerInfoDB::GetInstance();
    std::optional<CBusyWait> wait;
    if (saves.isEmpty()) // nothing is at stake, for the timer comes again
        wait.emplace(*database, CBusyWait::RETRY_MS);
    bool good = WriteKept(kept.size()); // before the newer ones
    for (const SPlayerSave &save : saves)
        Forget(save.pModel);
    if (saves.isEmpty())
        return true;
    if (!good)
        return false;
    CTransaction transaction(*database);
    if (!transaction.IsBegun())
        return false;
    {
        PlayerInfo::CSaver saver;
        for (const SPlayerSave &save : saves) {
            if (good && IsStorable(save) && !save.pModel->m_bLoading)
                good = saver.SaveOf(save.strUser, *save.pModel);
        }
    }
    return good && transaction.Commit(); // a full disk may be met no sooner than at the commit
}

void CPlayerSaves::RunTimer()
{
    if (!timer) {
        timer = new QTimer(QCoreApplication::instance());
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer);
        QObject::connect(timer, &QTimer::timeout, timer, [] { WriteDue(); });
    }
    qint64 wait = pauseMs;
    if (pauseMs == 0 && kept.isEmpty())
        wait = waiting.front().iDue - Now();
    timer->start(static_cast<int>(qMax(Q_INT64_C(0), wait)));
}
