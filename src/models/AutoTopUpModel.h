#pragma once

#include <Export.h>
#include <plugin/GlobalDefines.h>

#include <QByteArray>
#include <QObject>
#include <QSharedPointer>

/// The user's choices for automatic top-ups: when to buy chips because the stack is low, and how many. The table does
/// the buying.
///
/// The choices are stored in the user's setting `autotopupsettings`, one group for fixed-limit tables and one for all
/// others. They apply to real money only: play money, points and tournament chips are never topped up. Each login
/// loads the choices of that user. CSettings' databases must be initialised. Main thread.
class PLUGININTERFACE_EXPORT CAutoTopUpModel : public QObject
{
    Q_OBJECT

public:
    /// The user's choices: fields with "Fixed" apply to fixed-limit tables, fields with "Other" to all other tables.
    struct SAutoTopUp
    {
        bool bFixedEnabled = false;              ///< Whether to top up at fixed-limit tables.
        unsigned int ulFixedLowerLimit = 0;      ///< The lower limit in tenths, 0 to 10.
        unsigned int ulFixedTargetMode = 0;      ///< The target mode, 0 to 3, see GetTargetChips().
        unsigned int ulFixedTargetMultiple = 10; ///< The multiple for target mode 2.
        bool bOtherEnabled = false;              ///< Whether to top up at other tables.
        unsigned int ulOtherLowerLimit = 0;      ///< The lower limit in tenths, 0 to 10.
        unsigned int ulOtherTargetMode = 0;      ///< The target mode, 0 to 3.
        unsigned int ulOtherTargetMultiple = 10; ///< The multiple for target mode 2.
        bool bNotification = true;               ///< Whether to tell the user of a top-up at any table.
    };

    /// Constructs an object in addition to the shared one.
    explicit CAutoTopUpModel(QObject *parent = nullptr);
    ~CAutoTopUpModel() override;

    /// Returns the object, creating it on first use; the library owns it.
    static CAutoTopUpModel *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Destroys the object at the next turn of the event loop.
    static void DestroyInstance();

    /// Returns the choices in effect, which are the defaults if none are stored.
    CAutoTopUpModel::SAutoTopUp GetAutoTopUp() const;
    /// Applies the choices. If \a saved, stores them for the user; otherwise stores that the user has none, and these
    /// apply until the next load. Without a login they are only kept in memory, and no signal is emitted.
    void SetAutoTopUp(const CAutoTopUpModel::SAutoTopUp &autoTopUp, bool saved);
    /// Returns whether the user has stored choices.
    bool IsSaved() const;
    /// Returns whether the user wants to be told of a top-up.
    bool IsNotificationEnabled() const;

    /// Returns whether to top up at tables of this kind.
    bool IsEnabled(GlobalDefines::MoneyType moneyType, GlobalDefines::LimitType limitType) const;
    /// Returns the stack below which to top up: the chosen number of tenths of \a chips. 0 if nothing is to be done.
    unsigned int GetLowerLimitChips(GlobalDefines::MoneyType moneyType, GlobalDefines::LimitType limitType,
                                    unsigned int chips) const;
    /// Returns the stack to top up to: for the target modes 0 to 3, \a chipsMode0, \a chipsMode1, a multiple of
    /// \a chipsUnit, or \a chipsMode3. 0 if nothing is to be done.
    unsigned int GetTargetChips(GlobalDefines::MoneyType moneyType, GlobalDefines::LimitType limitType,
                                unsigned int chipsMode1, unsigned int chipsUnit, unsigned int chipsMode0,
                                unsigned int chipsMode3) const;

Q_SIGNALS:
    /// Emitted when choices were loaded, or stored by SetAutoTopUp(), whether or not they differ.
    void signal_AutoTopUpChanged();

private Q_SLOTS:
    void slot_AutoTopUpSettingsChanged();

private:
    struct SGroup
    {
        bool bEnabled = false;
        unsigned int ulLowerLimit = 0;
        unsigned int ulTargetMode = 0;
        unsigned int ulTargetMultiple = 0;
    };

    SGroup GetGroup(GlobalDefines::MoneyType moneyType, GlobalDefines::LimitType limitType) const;
    void FollowUser();
    void LoadSettings();
    void SaveSettings();

    bool m_bSaved = false;
    SAutoTopUp m_AutoTopUp;

    static QSharedPointer<CAutoTopUpModel> m_Instance;
};
