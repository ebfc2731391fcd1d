#pragma once

#include <models/PlayerDataModel.h>

#include <QByteArray>
#include <QHash>
#include <QSharedPointer>

class CDownload;

/// A player. Each nickname has one live object, including that of the logged-in user.
///
/// A model is created when its nickname is first used and lives until it is destroyed here; the table of models owns
/// it. The nickname, compared exactly, is the key, and SetNickname() on a live model doesn't change the key. A
/// destroyed model is removed from the table at once and destroyed at the next turn of the event loop; pointers to it
/// stay valid until then. Remove it from the lists of CPlayerLists first.
///
/// What the user notes about a player - note, tag, rating, custom avatar, whether a buddy, blocked as a buddy or in
/// chat - is stored in the user's player info store 3 s after the last change, and at once when the user logs out: by
/// CUserInfo::SetLoggedIn(), by CUserInfoDataModel::Reset(), or when the user's own model is destroyed. Changes made
/// while nobody is logged in aren't stored, nor are the last changes to a model that is destroyed. If the file can't
/// be written, the library tries again, first after a second, then at growing intervals of up to half a minute, and
/// at the next login, also for a user who has logged out.
///
/// The number of a custom avatar stands for a picture at Pathes::CustomAvatar(). A missing picture is downloaded from
/// the operator's server, and signal_CustomAvatarChanged() is emitted once more when it has arrived. If the download
/// fails, nothing changes. The user's own avatars and the settings `cartoonavatar` and `customcurrent` follow each
/// other. Main thread.
class PLUGININTERFACE_EXPORT CPlayerModel : public CPlayerDataModel
{
    Q_OBJECT

public:
    /// Constructs a model that isn't in the table; GetInstance() creates those that are.
    explicit CPlayerModel(const QString &nickname);
    ~CPlayerModel() override;

    /// Returns the model for the nickname, never null; creates it if there is none.
    static CPlayerModel *GetInstance(QString nickname);
    /// Returns whether there is a model for the nickname, without creating one.
    static bool IsExisting(QString nickname);
    /// Returns whether the table contains the model, which may be a dangling pointer. Walks over all models.
    static bool IsExisting(CPlayerModel *model);
    /// Removes the model from the table and destroys it without storing the user's last changes to it.
    static void DestroyInstance(QString nickname);
    /// Destroys a model like the function above that takes a nickname; does nothing if the model isn't in the table.
    /// Walks over all models.
    static void DestroyInstance(CPlayerModel *model);
    /// Destroys all models in the table, like DestroyInstance().
    static void DestroyInstances();

    /// Sets the values that were stored for the player, with the signals of the setters. What a connected slot sets
    /// meanwhile counts as loaded, too.
    void SetLoadedInfo(QString note, unsigned int tagID, unsigned int customAvatar, unsigned char rating,
                       bool buddyBlocked, bool chatBlock);

    /// Sets the user's choice of a picture for the player, 0 for none. For the user's own model GetCustomAvatar()
    /// returns the number at once, for any other once the picture exists.
    void SetNewCustomAvatar(unsigned int id);

protected:
    void FieldChanged(EField field) override;

private Q_SLOTS:
    void slot_DownloadCustomAvatarFinished(bool status, QByteArray data);
    // Both store the player at once. They are there to be called by name; the library itself stores many players in a
    // row.
    void slot_DBSaveTimer();
    void slot_DBUpdateTimer();
    void slot_CartoonAvatarChanged();
    void slot_CustomAvatarChanged();

private:
    friend class CPlayerLists; // stores a player whose entry in the buddy list changes

    QString GetKey() const;
    void SaveLater(bool travels);
    static void StoreBeforeEnd(const CPlayerModel *model);
    bool IsOwn() const;
    void ChangeCustomAvatarTo(unsigned int id);
    void AbandonDownload();

    CDownload *m_pDownload = nullptr;         // child, null if no download runs
    unsigned int m_ulPendingCustomAvatar = 0; // the picture that is being downloaded, or whose download failed

    static QHash<QString, QSharedPointer<CPlayerModel>> m_Instances;
    static bool m_bRenamed; // whether any model was renamed after its construction
};
