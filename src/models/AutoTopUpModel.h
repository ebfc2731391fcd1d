#pragma once

#include <Export.h>
#include <plugin/GlobalDefines.h>

#include <QByteArray>
#include <QObject>
#include <QSharedPointer>

/// The user's choices for chips that are bought when the stack gets low, and what they come to at a table. The buying
/// is the table's.
///
/// The choices are the user's and stored in the setting `autotopupsettings`, one group for tables with a fixed limit
/// and one for all others. They hold for real money alone: with play money, points and tournament chips nothing is
/// topped up. At each login those of the user are loaded. Needs the databases of CSettings. Main thread.
class PLUGININTERFACE_EXPORT CAutoTopUpModel : public QObject
{
    Q_OBJECT

public:
    /// The choices: "fixed" for tables with a fixed limit, "other" for the rest.
    struct SAutoTopUp
    {
        bool bFixedEnabled = false;              ///< Whether to top up.
        unsigned int ulFixedLowerLimit = 0;      ///< Tenths, 0 to 10.
        unsigned int ulFixedTargetMode = 0;      ///< 0 to 3, see GetTargetChips().
        unsigned int ulFixedTargetMultiple = 10; ///< For target mode 2.
        bool bOtherEnabled = false;              ///< Whether to top up.
        unsigned int ulOtherLowerLimit = 0;      ///< Tenths, 0 to 10.
        unsigned int ulOtherTargetMode = 0;      ///< 0 to 3.
        unsigned int ulOtherTargetMultiple = 10; ///< For target mode 2.
        bool bNotification = true;               ///< Tell the user of a top-up, at whatever table.
    };

    /// Makes an object beside the shared one.
    explicit CAutoTopUpModel(QObject *parent = nullptr);
    ~CAutoTopUpModel() override;

    /// Creates the object on first use; the library owns it.
    static CAutoTopUpModel *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// The object ends at the next turn of the event loop.
    static void DestroyInstance();

    /// The choices in force; all at their defaults where none were stored.
    CAutoTopUpModel::SAutoTopUp GetAutoTopUp() const;
    /// Stores the choices, or unless \a saved that there are none: then they hold until the next load. Without a
    /// login they are kept in memory, without a word.
    void SetAutoTopUp(const CAutoTopUpModel::SAutoTopUp &autoTopUp, bool saved);
    /// Whether the user has stored choices.
    bool IsSaved() const;
    /// Whether the user wants to be told of a top-up.
    bool IsNotificationEnabled() const;

    /// Whether to top up at tables of this kind.
    bool IsEnabled(GlobalDefines::MoneyType moneyType, GlobalDefines::LimitType limitType) const;
    /// The stack below which to top up: so many tenths of \a chips. 0 if nothing is to be done.
    unsigned int GetLowerLimitChips(GlobalDefines::MoneyType moneyType, GlobalDefines::LimitType limitType,
                                    unsigned int chips) const;
    /// The stack to top up to, by target mode: \a chipsMode0, \a chipsMode1, a multiple of \a chipsUnit, or
    /// \a chipsMode3. 0 if nothing is to be done.
    unsigned int GetTargetChips(GlobalDefines::MoneyType moneyType, GlobalDefines::LimitType limitType,
                                unsigned int chipsMode1, unsigned int chipsUnit, unsigned int chipsMode0,
                                unsigned int chipsMode3) const;

Q_SIGNALS:
    /// Choices were loaded, or stored by SetAutoTopUp(), other ones or not.
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
