#pragma once

#include <models/PlayerDataModel.h>

#include <QByteArray>
#include <QHash>
#include <QSharedPointer>

class CDownload;

/// A player, one live object for each nickname, the logged-in user included.
///
/// A model begins with the first mention of its nickname and lives until it is destroyed here; the table of models
/// owns it. The nickname is the key to the letter, and SetNickname() on a live model doesn't move it. A destroyed
/// model has left the table at once and ends at the next turn of the event loop; until then pointers to it stay good.
/// Take it off the lists of CPlayerLists before.
///
/// What the user notes of a player - note, tag, rating, custom avatar, whether a buddy, blocked as buddy or in chat -
/// goes to the user's player info store 3 s after the last change, and at once when the user logs out, be it by
/// CUserInfo::SetLoggedIn(), by CUserInfoDataModel::Reset() or by the end of the own player's model. What is changed
/// while nobody is logged in is nobody's and isn't stored, nor is what was changed last of a model that is destroyed.
/// A file that can't be written is tried again, first after a second, then at growing intervals of up to half a
/// minute, and at the next login, also for a user who has logged out.
///
/// The number of a custom avatar stands for a picture at Pathes::CustomAvatar(). One that isn't there is fetched from
/// the operator's server, and signal_CustomAvatarChanged() comes once more when it is. A picture that can't be had
/// leaves all as it is. The own player's avatars and the settings `cartoonavatar` and `customcurrent` follow each
/// other. Main thread.
class PLUGININTERFACE_EXPORT CPlayerModel : public CPlayerDataModel
{
    Q_OBJECT

public:
    /// Makes a model that isn't in the table; GetInstance() makes those that are.
    explicit CPlayerModel(const QString &nickname);
    ~CPlayerModel() override;

    /// Creates the model if there is none; never null.
    static CPlayerModel *GetInstance(QString nickname);
    /// Whether there is a model of that nickname; creates none.
    static bool IsExisting(QString nickname);
    /// Whether the table has that model, which may be a pointer to one that has ended. Walks over all models.
    static bool IsExisting(CPlayerModel *model);
    /// Takes the model out of the table, without storing what the user has changed of it last.
    static void DestroyInstance(QString nickname);
    /// The same by the model; does nothing with one that isn't in the table. Walks over all models.
    static void DestroyInstance(CPlayerModel *model);
    /// The same with all models.
    static void DestroyInstances();

    /// Takes over what was stored of the player, as if each value had been set. What a listener sets meanwhile counts
    /// as loaded, too.
    void SetLoadedInfo(QString note, unsigned int tagID, unsigned int customAvatar, unsigned char rating,
                       bool buddyBlocked, bool chatBlock);

    /// The user's choice of a picture for the player, 0 for none. Of another player than the own one
    /// GetCustomAvatar() tells the number once the picture is there, of the own one at once.
    void SetNewCustomAvatar(unsigned int id);

protected:
    void FieldChanged(EField field) override;

private Q_SLOTS:
    void slot_DownloadCustomAvatarFinished(bool status, QByteArray data);
    // Store the player at once; by name alone, the library itself stores many in a row.
    void slot_DBSaveTimer();
    void slot_DBUpdateTimer();
    void slot_CartoonAvatarChanged();
    void slot_CustomAvatarChanged();

private:
    friend class CPlayerLists; // a change of the buddy list is one of the player's

    QString GetKey() const;
    void SaveLater(bool travels);
    static void StoreBeforeEnd(const CPlayerModel *model);
    bool IsOwn() const;
    void ChangeCustomAvatarTo(unsigned int id);
    void AbandonDownload();

    CDownload *m_pDownload = nullptr;         // child, null when none runs
    unsigned int m_ulPendingCustomAvatar = 0; // the picture that it fetches, or has failed to fetch

    static QHash<QString, QSharedPointer<CPlayerModel>> m_Instances;
    static bool m_bRenamed; // whether a model has got another nickname than that of its making
};
