#include "PlayerSaves_p.h"

#include <database/BusyWait_p.h>
#include <database/PlayerInfoDB.h>
#include <database/Transaction_p.h>
#include <models/PlayerModel.h>
#include <models/UserInfo.h>
#include <settings/LocalChanges_p.h>
#include <settings/PlayerInfo_p.h>

#include <QPointer>
#include <QSqlQuery>

#include <limits>
#include <optional>

namespace {

constexpr qint64 PLAYER_SAVE_DELAY_MS = 3000;
// How long one pass of the event loop may spend writing: well below a frame.
constexpr qint64 SLICE_MS = 4;
constexpr int ROWS_A_SLICE = 200;

QPointer<CPlayerSaves> currentSaves;

} // namespace

CPlayerSaves *CPlayerSaves::Get()
{
    CUserInfo *owner = CUserInfo::IsExisting() ? CUserInfo::GetInstance() : nullptr;
    if (currentSaves && owner && currentSaves->parent() != owner)
        delete currentSaves; // its CUserInfo is about to be deleted; the new one takes the later changes
    if (!currentSaves && owner)
        currentSaves = new CPlayerSaves(owner);
    return currentSaves;
}

CPlayerSaves::CPlayerSaves(QObject *owner)
    : QObject(owner)
{
    m_clock.start();
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &CPlayerSaves::WriteDue);
}

CPlayerSaves::~CPlayerSaves()
{
    if ((!m_waiting.empty() || !m_kept.isEmpty()) && CPlayerInfoDB::IsExisting())
        Write(QList<SSave>(m_waiting.cbegin(), m_waiting.cend()));
}

QString CPlayerSaves::GetUser()
{
    return CUserInfo::IsExisting() ? CUserInfo::GetInstance()->GetNickname() : QString();
}

CPlayerSaves::CLoading::CLoading(const CPlayerModel *model)
    : m_pModel(model)
{
    if (CPlayerSaves *saves = Get())
        saves->m_loading.append(model);
}

CPlayerSaves::CLoading::~CLoading()
{
    if (CPlayerSaves *saves = Get())
        saves->m_loading.removeOne(m_pModel);
}

// Returns whether there is a user with an open file, and the table holds the model.
bool CPlayerSaves::IsStorable(const SSave &save)
{
    return !save.strUser.isEmpty() && !save.strKey.isEmpty() && CPlayerInfoDB::GetInstance()->IsOpen();
}

void CPlayerSaves::Restart(CPlayerModel *model, const QString &key, bool change)
{
    const qint64 due = m_clock.elapsed() + PLAYER_SAVE_DELAY_MS;
    const auto place = m_places.constFind(model);
    if (place != m_places.cend()) {
        m_waiting.splice(m_waiting.end(), m_waiting, *place);
        SSave &save = m_waiting.back();
        save.iDue = due;
        save.bChange |= change;
        save.strUser = GetUser();
    } else {
        m_places.insert(model, m_waiting.insert(m_waiting.end(), {model, key, due, change, GetUser()}));
    }
    if (!m_timer.isActive())
        RunTimer();
}

void CPlayerSaves::Forget(const CPlayerModel *model)
{
    const auto place = m_places.find(model);
    if (place == m_places.end())
        return;
    m_waiting.erase(*place);
    m_places.erase(place);
}

void CPlayerSaves::LoadNoBuddy(CPlayerModel *model, const QString &key)
{
    if (!model->GetBuddy())
        return;
    {
        const CLoading loading(model);
        model->SetBuddy(false);
    }
    Restart(model, key, false);
}

void CPlayerSaves::NumberUnwrittenChanges() const
{
    CLocalChanges *changes = CLocalChanges::Get();
    if (!changes)
        return;
    const QString user = GetUser();
    for (const SSave &save : m_waiting) {
        if (save.bChange && save.strUser == user)
            changes->AddPlayer(user, save.strKey);
    }
    for (const SKept &entry : m_kept) {
        if (entry.bChange && entry.row.constFirst() == user)
            changes->AddPlayer(user, entry.row.at(1).toString());
    }
}

void CPlayerSaves::SaveAgain(const QStringList &nicknames)
{
    for (const QString &nickname : nicknames) {
        CPlayerModel *model = CPlayerModel::IsExisting(nickname) ? CPlayerModel::GetInstance(nickname) : nullptr;
        if (model && !IsWaiting(model))
            Restart(model, nickname, true);
    }
}

void CPlayerSaves::EndLogin()
{
    WriteAll();
    if (CLocalChanges *changes = CLocalChanges::Get())
        changes->Forget();
}

void CPlayerSaves::WriteAll()
{
    const QList<SSave> saves(m_waiting.cbegin(), m_waiting.cend());
    if (Write(saves))
        return;
    const PlayerInfo::CSaver saver;
    for (const SSave &save : saves) {
        if (IsStorable(save))
            m_kept.append({saver.GetRow(save.strUser, save.strKey, *save.pModel), save.bChange});
    }
    if (m_kept.isEmpty())
        return;
    m_iPauseMs = CBusyWait::GetNextPause(m_iPauseMs);
    RunTimer();
}

QList<CPlayerSaves::SKept> CPlayerSaves::GetKept(const QString &user) const
{
    QList<SKept> rows;
    for (const SKept &entry : m_kept) {
        if (entry.row.constFirst() == user)
            rows.append(entry);
    }
    return rows;
}

// Returns false if the rows can't be written.
bool CPlayerSaves::WriteKept(int most)
{
    if (m_kept.isEmpty())
        return true;
    CTransaction transaction(*CPlayerInfoDB::GetInstance());
    if (!transaction.IsBegun())
        return false;
    const int count = static_cast<int>(qMin<qint64>(most, m_kept.size()));
    {
        PlayerInfo::CSaver changes(PlayerInfo::NotOlder);
        PlayerInfo::CSaver others(PlayerInfo::OwnFields);
        for (int row = 0; row < count; ++row) {
            if (!(m_kept.at(row).bChange ? changes : others).Write(m_kept.at(row).row))
                return false;
        }
    }
    if (!transaction.Commit())
        return false;
    m_kept.erase(m_kept.begin(), m_kept.begin() + count);
    if (m_kept.isEmpty()) { // the timer may be waiting for the next attempt
        m_iPauseMs = 0;
        m_timer.stop();
    }
    return true;
}

void CPlayerSaves::WriteDue()
{
    const CBusyWait wait(*CPlayerInfoDB::GetInstance(), CBusyWait::RETRY_MS);
    const bool good = WriteKept(ROWS_A_SLICE) && WriteSlice();
    m_iPauseMs = good ? 0 : CBusyWait::GetNextPause(m_iPauseMs);
    if (!m_waiting.empty() || !m_kept.isEmpty())
        RunTimer();
}

// Returns false if a row can't be written. The rows of a slice share one transaction: alone, each would write its
// whole page, and the write-ahead log would be synced every few hundred rows, which takes a frame. A savepoint,
// because a host may have a transaction of its own open.
bool CPlayerSaves::WriteSlice()
{
    const qint64 begin = m_clock.elapsed();
    if (m_waiting.empty() || m_waiting.front().iDue > begin)
        return true;
    const bool open = CPlayerInfoDB::GetInstance()->IsOpen(); // otherwise nothing is storable
    QSqlQuery slice = CPlayerInfoDB::GetInstance()->GetQuery();
    if (open)
        slice.exec(QStringLiteral("SAVEPOINT slice"));
    QList<SSave> written;
    bool good = true;
    PlayerInfo::CSaver saver;
    for (qint64 now = begin; good && !m_waiting.empty() && m_waiting.front().iDue <= now && now - begin < SLICE_MS;
         now = m_clock.elapsed()) {
        const SSave first = m_waiting.front();
        if (IsLoading(first.pModel)) { // a slot runs an event loop during the load; the row is incomplete
            Restart(first.pModel, first.strKey, first.bChange);
            continue;
        }
        Forget(first.pModel);
        if (!IsStorable(first))
            continue;
        good = saver.SaveOf(first.strUser, first.strKey, *first.pModel);
        if (good)
            written.append(first);
        else
            Restart(first.pModel, first.strKey, first.bChange);
    }
    if (!open || slice.exec(QStringLiteral("RELEASE slice")))
        return good;
    // The disk is full, or SQLite has ended the transaction with the row that it refused.
    slice.exec(QStringLiteral("ROLLBACK TO slice"));
    slice.exec(QStringLiteral("RELEASE slice"));
    for (const SSave &save : qAsConst(written))
        Restart(save.pModel, save.strKey, save.bChange);
    return false;
}

// Returns false if any player isn't stored. Players that are being loaded are left out: their rows exist, while the
// models are incomplete.
bool CPlayerSaves::Write(const QList<SSave> &saves)
{
    CPlayerInfoDB *database = CPlayerInfoDB::GetInstance();
    std::optional<CBusyWait> wait;
    if (saves.isEmpty()) // nothing can be lost, because the timer tries again
        wait.emplace(*database, CBusyWait::RETRY_MS);
    bool good = WriteKept(std::numeric_limits<int>::max()); // older rows first
    for (const SSave &save : saves)
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
        for (const SSave &save : saves) {
            if (good && IsStorable(save) && !IsLoading(save.pModel))
                good = saver.SaveOf(save.strUser, save.strKey, *save.pModel);
        }
    }
    return good && transaction.Commit(); // a full disk may not show before the commit
}

void CPlayerSaves::RunTimer()
{
    qint64 wait = m_iPauseMs;
    if (m_iPauseMs == 0 && m_kept.isEmpty())
        wait = m_waiting.front().iDue - m_clock.elapsed();
    m_timer.start(static_cast<int>(qMax(Q_INT64_C(0), wait)));
}
