#include "UserInfo.h"

#include <Singleton_p.h>
#include <models/PlayerLists.h>
#include <models/PlayerSaves_p.h>
#include <settings/Config.h>

#include <QCoreApplication>
#include <QEvent>

PLUGININTERFACE_DEFINE_SINGLETON(CUserInfo);

CUserInfo::CUserInfo(QObject *parent)
    : CUserInfoDataModel(parent)
{
    const CConfig *config = CConfig::GetInstance();
    ConvertAvatarDisplayMode(m_lAvatarDisplayModes, config->GetAvatarDisplayMode());
    m_ActivityTimer.setInterval(qMax(0, config->GetActivityTimerTimeout()));
    connect(&m_ActivityTimer, &QTimer::timeout, this, &CUserInfo::slot_ActivityTimeout);
    m_ActivityTimer.start();
    if (QCoreApplication *application = QCoreApplication::instance())
        application->installEventFilter(this);
    // Deferred, because the construction of CSettings needs this object.
    QTimer::singleShot(0, this, &CUserInfo::slot_ConnectSlots);
}

CUserInfo::~CUserInfo() = default;

bool CUserInfo::IsLoggedIn() const
{
    return GetPlayerModel() != nullptr;
}

void CUserInfo::SetLoggedIn(const QString &nickname)
{
    if (nickname != GetNickname())
        EndLogin();
    CPlayerModel *model = nickname.isEmpty() ? nullptr : CPlayerLists::GetInstance()->GetPlayerModel(nickname);
    SetPlayerModel(model);
    if (GetPlayerModel() == model) // otherwise a slot has logged in or out and set the state
        SetLoginState(model != nullptr);
}

QString CUserInfo::GetNickname() const
{
    const CPlayerModel *model = GetPlayerModel();
    return model ? model->GetNickname() : QString();
}

void CUserInfo::AddTournament(unsigned int id)
{
    m_hTournaments.insert(id, 1);
}

void CUserInfo::RemoveTournament(unsigned int id)
{
    m_hTournaments.remove(id);
}

bool CUserInfo::IsInTournament(unsigned int id) const
{
    return m_hTournaments.contains(id);
}

void CUserInfo::AddWaitingListTable(unsigned int table, unsigned char position)
{
    m_hWaitingLists.insert(table, position);
}

void CUserInfo::RemoveWaitingListTable(unsigned int table)
{
    m_hWaitingLists.remove(table);
}

unsigned char CUserInfo::GetPositionOnWaitingList(unsigned int table) const
{
    return m_hWaitingLists.value(table);
}

void CUserInfo::SetUserActivity(bool active)
{
    RunActivityTimer(active);
}

const QList<CUserInfo::EAvatarDisplayMode> &CUserInfo::GetAvatarDisplayModes() const
{
    return m_lAvatarDisplayModes;
}

void CUserInfo::ConvertAvatarDisplayMode(QList<CUserInfo::EAvatarDisplayMode> &list, const QString &text)
{
    static const QList<QPair<QString, EAvatarDisplayMode>> words{
        {QStringLiteral("cartoon"), ADM_CartoonAvatars},
        {QStringLiteral("custom"), ADM_CustomAvatars},
        {QStringLiteral("noavatar"), ADM_NoAvatars},
    };
    list.clear();
    if (text.isEmpty()) {
        list = {ADM_CartoonAvatars, ADM_CustomAvatars, ADM_NoAvatars};
        return;
    }
    for (QString::size_type position = 0; position < text.size();) {
        const QStringView rest = QStringView(text).mid(position);
        QString::size_type step = 1;
        for (const auto &[word, mode] : words) {
            if (!rest.startsWith(word, Qt::CaseInsensitive))
                continue;
            list.append(mode);
            step = word.size() + 1; // plus the separator, whatever it is
            break;
        }
        position += step;
    }
    if (list.isEmpty())
        list.append(ADM_NoAvatars);
}

void CUserInfo::EmitLoginCanceled()
{
    Q_EMIT signal_LoginCanceled();
}

bool CUserInfo::eventFilter(QObject *object, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::KeyPress:
        RunActivityTimer(true);
        break;
    default:
        break;
    }
    return CUserInfoDataModel::eventFilter(object, event);
}

void CUserInfo::slot_ActivityTimeout()
{
    RunActivityTimer(false);
}

void CUserInfo::Reset()
{
    EndLogin();
    CUserInfoDataModel::Reset();
    m_hWaitingLists.clear();
    m_hTournaments.clear();
    RunActivityTimer(true);
}

// Only the shared object represents a login; other objects don't.
void CUserInfo::EndLogin() const
{
    if (IsLoggedIn() && this == m_Instance.data())
        CPlayerSaves::Get()->EndLogin();
}

// Starting a running timer restarts its interval.
void CUserInfo::RunActivityTimer(bool run)
{
    const bool wasActive = m_ActivityTimer.isActive();
    if (run)
        m_ActivityTimer.start();
    else
        m_ActivityTimer.stop();
    if (run != wasActive)
        Q_EMIT signal_ActivityChanged(run);
}
