#include "AutoTopUpModel.h"

#include <Singleton_p.h>
#include <models/LoadedUser_p.h>
#include <models/PackedSetting_p.h>
#include <models/UserInfo.h>
#include <settings/Settings.h>

PLUGININTERFACE_DEFINE_SINGLETON(CAutoTopUpModel);

namespace {

constexpr unsigned int WHOLE = 10; // a lower limit of ten tenths

enum ETargetMode : unsigned int {
    TM_MODE0 = 0,
    TM_MODE1 = 1,
    TM_MULTIPLE = 2,
    TM_MODE3 = 3,
};

// Calls the operation with all fields, in their stored order.
template <typename AutoTopUp, typename Operation>
auto WithFields(AutoTopUp &choices, const Operation &operation)
{
    return operation(choices.bFixedEnabled, choices.ulFixedLowerLimit, choices.ulFixedTargetMode,
                     choices.ulFixedTargetMultiple, choices.bOtherEnabled, choices.ulOtherLowerLimit,
                     choices.ulOtherTargetMode, choices.ulOtherTargetMultiple, choices.bNotification);
}

} // namespace

CAutoTopUpModel::CAutoTopUpModel(QObject *parent)
    : QObject(parent)
{
    connect(CSettings::GetInstance(), &CSettings::signal_AutoTopUpSettingsChanged, this,
            &CAutoTopUpModel::slot_AutoTopUpSettingsChanged);
    LoadedUser::Connect(this, &CAutoTopUpModel::FollowUser);
    LoadSettings();
}

CAutoTopUpModel::~CAutoTopUpModel() = default;

CAutoTopUpModel::SAutoTopUp CAutoTopUpModel::GetAutoTopUp() const
{
    return m_AutoTopUp;
}

void CAutoTopUpModel::SetAutoTopUp(const CAutoTopUpModel::SAutoTopUp &autoTopUp, bool saved)
{
    m_AutoTopUp = autoTopUp;
    m_bSaved = saved;
    SaveSettings();
}

bool CAutoTopUpModel::IsSaved() const
{
    return m_bSaved;
}

bool CAutoTopUpModel::IsNotificationEnabled() const
{
    return m_AutoTopUp.bNotification;
}

bool CAutoTopUpModel::IsEnabled(GlobalDefines::MoneyType moneyType, GlobalDefines::LimitType limitType) const
{
    return GetGroup(moneyType, limitType).bEnabled;
}

unsigned int CAutoTopUpModel::GetLowerLimitChips(GlobalDefines::MoneyType moneyType,
                                                 GlobalDefines::LimitType limitType, unsigned int chips) const
{
    const SGroup group = GetGroup(moneyType, limitType);
    if (!group.bEnabled || group.ulLowerLimit > WHOLE)
        return 0;
    return group.ulLowerLimit == WHOLE ? chips : chips * group.ulLowerLimit / WHOLE;
}

unsigned int CAutoTopUpModel::GetTargetChips(GlobalDefines::MoneyType moneyType, GlobalDefines::LimitType limitType,
                                             unsigned int chipsMode1, unsigned int chipsUnit, unsigned int chipsMode0,
                                             unsigned int chipsMode3) const
{
    const SGroup group = GetGroup(moneyType, limitType);
    if (!group.bEnabled)
        return 0;
    switch (group.ulTargetMode) {
    case TM_MODE0:
        return chipsMode0;
    case TM_MODE1:
        return chipsMode1;
    case TM_MULTIPLE:
        return group.ulTargetMultiple * chipsUnit;
    case TM_MODE3:
        return chipsMode3;
    default:
        return 0;
    }
}

void CAutoTopUpModel::slot_AutoTopUpSettingsChanged()
{
    if (CSettings::GetInstance()->GetCaller() != this)
        LoadSettings();
}

// Returns the choices for such tables; the defaults, which are off, for all but real money.
CAutoTopUpModel::SGroup CAutoTopUpModel::GetGroup(GlobalDefines::MoneyType moneyType,
                                                  GlobalDefines::LimitType limitType) const
{
    if (moneyType == GlobalDefines::MONEYTYPE_PLAY || moneyType == GlobalDefines::MONEYTYPE_POINTS ||
        moneyType == GlobalDefines::MONEYTYPE_TOURN)
        return {};
    const SAutoTopUp &all = m_AutoTopUp;
    if (limitType == GlobalDefines::LT_FIXED_LIMIT)
        return {all.bFixedEnabled, all.ulFixedLowerLimit, all.ulFixedTargetMode, all.ulFixedTargetMultiple};
    return {all.bOtherEnabled, all.ulOtherLowerLimit, all.ulOtherTargetMode, all.ulOtherTargetMultiple};
}

// Loads the user's choices once CSettings holds the user's settings, even if it signalled no change.
void CAutoTopUpModel::FollowUser()
{
    if (LoadedUser::HasChanged(*this))
        LoadSettings();
}

// A value that isn't in the stored form counts as not stored.
void CAutoTopUpModel::LoadSettings()
{
    LoadedUser::Set(*this, CUserInfo::GetInstance()->GetNickname());
    QByteArray value;
    if (CUserInfo::GetInstance()->IsLoggedIn())
        value = CSettings::GetInstance()->GetAutoTopUpSettings();
    SAutoTopUp loaded;
    m_bSaved = WithFields(loaded, [&value](auto &...fields) { return PackedSetting::Unpack(value, fields...); });
    m_AutoTopUp = loaded;
    Q_EMIT signal_AutoTopUpChanged();
}

void CAutoTopUpModel::SaveSettings()
{
    if (!CUserInfo::GetInstance()->IsLoggedIn())
        return;
    QByteArray value;
    if (m_bSaved)
        value = WithFields(m_AutoTopUp, [](const auto &...fields) { return PackedSetting::Pack(fields...); });
    CSettings::GetInstance()->SetAutoTopUpSettings(value, this, true);
    Q_EMIT signal_AutoTopUpChanged();
}
