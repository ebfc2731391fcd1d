#pragma once

#include <models/PlayerDataModel.h>

#include <QHash>
#include <QSharedPointer>

/// A player, one live object for each nickname, the logged-in user included.
///
/// A model begins with the first mention of its nickname and lives until it is destroyed here; the table of models
/// owns it. The nickname is the key to the letter, and SetNickname() on a live model doesn't move it. A destroyed
/// model has left the table at once and ends at the next turn of the event loop; until then pointers to it stay good.
/// Take it off the lists of CPlayerLists before. Main thread.
class PLUGININTERFACE_EXPORT CPlayerModel : public CPlayerDataModel
{
    Q_OBJECT

public:
    /// Makes a model that isn't in the table; GetInstance() makes those that are.
    explicit CPlayerModel(const QString &nickname);
    ~CPlayerModel() override;

    /// Creates the model if there is none; never null.
    static CPlayerModel *GetInstance(QString nickname);
    static bool IsExisting(QString nickname);
    /// Walks over all models.
    static bool IsExisting(CPlayerModel *model);
    static void DestroyInstance(QString nickname);
    /// Walks over all models.
    static void DestroyInstance(CPlayerModel *model);
    static void DestroyInstances();

    /// Takes over what was stored of the player, as if each value had been set.
    void SetLoadedInfo(QString note, unsigned int tagID, unsigned int customAvatar, unsigned char rating,
                       bool buddyBlocked, bool chatBlock);

private:
    static QHash<QString, QSharedPointer<CPlayerModel>> m_Instances;
};
