#include "PlayerSaves_p.h"

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

namespace {

constexpr qint64 SAVE_DELAY_MS = 3000;
// How long one turn of the event loop may write: well below a frame.
constexpr qint64 SLICE_MS = 4;

// The delay is the same for all, so that the order of their restarts is that in which they are due. Each player knows
// its place.
std::list<SPlayerSave> waiting;
// Rows of users who have logged out before the file could be written.
QList<QVariantList> leftRows;
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

// Whether there is a user and a file for it, and the table knows it.
bool IsStorable(const CPlayerModel *model)
{
    return CUserInfo::GetInstance()->IsLoggedIn() && CPlayerInfoDB::GetInstance()->IsOpen() &&
           !CPlayerSaves::GetKey(*model).isEmpty();
}

} // namespace

void CPlayerSaves::Restart(CPlayerModel *model, bool byUser)
{
    const qint64 due = Now() + SAVE_DELAY_MS;
    if (model->m_save) {
        waiting.splice(waiting.end(), waiting, *model->m_save);
        waiting.back().iDue = due;
        waiting.back().bByUser |= byUser;
        return; // the timer runs for one that is due no later
    }
    model->m_save = waiting.insert(waiting.end(), {model, due, byUser});
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

QString CPlayerSaves::GetKey(const CPlayerModel &model)
{
    const auto &models = CPlayerModel::m_Instances;
    auto entry = models.constFind(model.GetNickname());
    if (entry == models.cend() || entry->data() != &model)
        entry = std::find(models.cbegin(), models.cend(), &model);
    return entry == models.cend() ? QString() : entry.key();
}

void CPlayerSaves::WriteAll()
{
    QList<CPlayerModel *> models;
    for (const SPlayerSave &entry : waiting)
        models.append(entry.pModel);
    if (Write(models))
        return;
    for (const CPlayerModel *model : qAsConst(models)) {
        if (IsStorable(model))
            leftRows.append(PlayerInfo::CSaver::GetRow(*model));
    }
    if (!leftRows.isEmpty())
        RunTimer();
}

void CPlayerSaves::WriteChanges()
{
    QList<CPlayerModel *> models;
    for (const SPlayerSave &entry : waiting) {
        if (entry.bByUser)
            models.append(entry.pModel);
    }
    if (Write(models))
        return;
    for (CPlayerModel *model : qAsConst(models)) {
        Restart(model, true);
        CLocalChanges::AddPlayer(CUserInfo::GetInstance()->GetNickname(), GetKey(*model));
    }
}

// False if there are still some.
bool CPlayerSaves::WriteLeft()
{
    if (leftRows.isEmpty())
        return true;
    PlayerInfo::CSaver saver;
    while (!leftRows.isEmpty() && saver.Write(leftRows.constFirst()))
        leftRows.removeFirst();
    return leftRows.isEmpty();
}

void CPlayerSaves::WriteDue()
{
    if (!WriteLeft()) {
        RunTimer();
        return;
    }
    PlayerInfo::CSaver saver;
    const qint64 begin = Now();
    for (qint64 now = begin; !waiting.empty() && waiting.front().iDue <= now && now - begin < SLICE_MS; now = Now()) {
        const SPlayerSave first = waiting.front();
        Forget(first.pModel); // a change that comes on the way has to wait anew
        if (!saver.Save(*first.pModel) && IsStorable(first.pModel)) {
            // Another program holds the file, and each attempt up for seconds.
            Restart(first.pModel, first.bByUser);
            break;
        }
    }
    if (!waiting.empty())
        RunTimer();
}

// Those that can't be stored while nobody is logged in wait on. False if any of the others isn't stored.
bool CPlayerSaves::Write(const QList<CPlayerModel *> &models)
{
    bool good = WriteLeft(); // a file that is locked holds each attempt up for seconds
    if (models.isEmpty() || !CUserInfo::GetInstance()->IsLoggedIn())
        return true;
    for (CPlayerModel *model : models)
        Forget(model);
    if (!good)
        return false;
    CTransaction transaction(*CPlayerInfoDB::GetInstance());
    if (!transaction.IsBegun())
        return false;
    {
        PlayerInfo::CSaver saver;
        for (const CPlayerModel *model : models) {
            if (good && !GetKey(*model).isEmpty())
                good = saver.Save(*model);
        }
    }
    return transaction.Commit() && good; // a full disk may be met no sooner than at the commit
}

void CPlayerSaves::RunTimer()
{
    if (!timer) {
        timer = new QTimer(QCoreApplication::instance());
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer);
        QObject::connect(timer, &QTimer::timeout, timer, [] { WriteDue(); });
    }
    const qint64 wait = leftRows.isEmpty() ? waiting.front().iDue - Now() : SAVE_DELAY_MS;
    timer->start(static_cast<int>(qMax(Q_INT64_C(0), wait)));
}
