#pragma once

#include <DataModel.h>
#include <Export.h>
#include <models/PlayerDataTable.h>

/// What is known of a player, as plain fields for widgets and QML; it knows nothing of the rest of the system.
///
/// The fields stand in PLAYER_DATA_TABLE, which makes the page \ref models. For each there are a property, a getter,
/// a setter that stores and signals a value that differs, and a change signal with the new value: `strNickname`,
/// `GetNickname()`, `SetNickname()`, `signal_NicknameChanged(QString)`. The cartoon avatar is the number of a stock
/// picture, the custom avatar that of an uploaded one, and the tag an index into the player tags; 0 is none for
/// each. What the numbers of sex and VIP level mean is the game server's business. Main thread.
class PLUGININTERFACE_EXPORT CPlayerDataModel : public QObject
{
    Q_OBJECT // NOLINTNEXTLINE(clang-analyzer-optin.cplusplus.VirtualCall): in a constructor nobody watches yet
    DATA_MODEL_WATCHED_FIELDS(CPlayerDataModel, PLAYER_DATA_TABLE)

public:
    /// All fields at their defaults.
    explicit CPlayerDataModel(QObject *parent = nullptr);
    ~CPlayerDataModel() override;

    /// Sets each field to its default, in the table's order.
    virtual void Reset();
    /// Called behind each read from a stream.
    virtual void LoadedFromStream();

protected:
    /// A setter has stored another value and signals it next. Does nothing here.
    virtual void FieldChanged(EField field);
};

/// The fields in the table's order.
PLUGININTERFACE_EXPORT QDataStream &operator<<(QDataStream &stream, const CPlayerDataModel &model);
/// Reads them without a signal, and calls LoadedFromStream(). If the stream ends early or is corrupt, as its status
/// then tells, the fields from there on have their defaults.
PLUGININTERFACE_EXPORT QDataStream &operator>>(QDataStream &stream, CPlayerDataModel &model);

/// One line a field, with its label.
PLUGININTERFACE_EXPORT QDebug operator<<(QDebug debug, const CPlayerDataModel &model);
/// The same; \a model isn't null.
PLUGININTERFACE_EXPORT QDebug operator<<(QDebug debug, CPlayerDataModel *model);
