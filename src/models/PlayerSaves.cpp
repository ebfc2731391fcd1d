#include "PlayerSaves_p.h"

#include <database/PlayerInfoDB.h>
#include <models/PlayerModel.h>
#include <settings/PlayerInfo.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QHash>
#include <QPointer>
#include <QTimer>

#include <list>

namespace {

constexpr qint64 SAVE_DELAY_MS = 3000;
// How long one turn of the event loop may write: well below a frame.
constexpr qint64 SLICE_MS = 4;

struct SWaiting
{
    CPlayerModel *pModel;
    qint64 iDue; // by Now()
};

// The delay is the same for all, so that the order of their restarts is that in which they are due.
std::list<SWaiting> waiting;
QHash<const CPlayerModel *, std::list<SWaiting>::iterator> places;

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

} // namespace

void CPlayerSaves::Restart(CPlayerModel *model)
{
    const qint64 due = Now() + SAVE_DELAY_MS;
    const auto place = places.constFind(model);
    if (place != places.constEnd()) {
        waiting.splice(waiting.end(), waiting, *place);
        waiting.back().iDue = due;
        return; // the timer runs for one that is due no later
    }
    places.insert(model, waiting.insert(waiting.end(), {model, due}));
    if (waiting.size() == 1)
        RunTimer();
}

void CPlayerSaves::Forget(CPlayerModel *model)
{
    const auto place = places.constFind(model);
    if (place == places.constEnd())
        return;
    waiting.erase(*place);
    places.erase(place);
}

void CPlayerSaves::WriteAll()
{
    if (waiting.empty())
        return;
    CPlayerInfoDB *database = CPlayerInfoDB::GetInstance();
    database->StartTransaction();
    bool good = true; // a file that is locked holds each attempt up for seconds
    while (!waiting.empty()) {
        const QString nickname = waiting.front().pModel->GetNickname();
        Forget(waiting.front().pModel);
        if (good && !nickname.isEmpty())
            good = PlayerInfo::SaveInfo(nickname);
    }
    database->EndTransaction(true);
}

void CPlayerSaves::WriteDue()
{
    const qint64 begin = Now();
    while (!waiting.empty() && waiting.front().iDue <= Now() && Now() - begin < SLICE_MS)
        WriteFirst();
    if (!waiting.empty())
        RunTimer();
}

void CPlayerSaves::WriteFirst()
{
    CPlayerModel *model = waiting.front().pModel;
    Forget(model); // first: a change that comes on the way has to wait anew
    model->slot_DBSaveTimer();
}

void CPlayerSaves::RunTimer()
{
    // A child of the application, which may end before the library does.
    static QPointer<QTimer> timer;
    if (!timer) {
        timer = new QTimer(QCoreApplication::instance());
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer);
        QObject::connect(timer, &QTimer::timeout, timer, [] { WriteDue(); });
    }
    timer->start(static_cast<int>(qMax(Q_INT64_C(0), waiting.front().iDue - Now())));
}
