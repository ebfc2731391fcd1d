#pragma once

#include <DataModel.h>
#include <Export.h>
#include <models/PlayerDataTable.h>

/// The data of a player as plain fields for widgets and QML, independent of the rest of the system.
///
/// PLAYER_DATA_TABLE lists the fields, from which the page \ref models is generated. Each field has a property, a
/// getter, a setter that emits the change signal if the value differs, and a change signal with the new value:
/// `strNickname`, `GetNickname()`, `SetNickname()`, `signal_NicknameChanged(QString)`. The cartoon avatar is the
/// number of a stock picture, the custom avatar the number of an uploaded one, and the tag an index into the player
/// tags; 0 means none for each. The game server defines the numbers of sex and VIP level. Main thread.
class PLUGININTERFACE_EXPORT CPlayerDataModel : public QObject
{
    Q_OBJECT // NOLINTNEXTLINE(clang-analyzer-optin.cplusplus.VirtualCall): in a constructor no slot is connected yet
    DATA_MODEL_WATCHED_FIELDS(CPlayerDataModel, PLAYER_DATA_TABLE)

public:
    /// Constructs a model with all fields at their defaults.
    explicit CPlayerDataModel(QObject *parent = nullptr);
    ~CPlayerDataModel() override;

    /// Sets each field to its default, in the order of the table.
    virtual void Reset();
    /// Called after each read from a stream.
    virtual void LoadedFromStream();

protected:
    /// Called when a setter has stored a different value, before the change signal. Does nothing here.
    virtual void FieldChanged(EField field);
};

/// Writes the fields to the stream, in the order of the table.
PLUGININTERFACE_EXPORT QDataStream &operator<<(QDataStream &stream, const CPlayerDataModel &model);
/// Reads the fields without emitting signals, then calls LoadedFromStream(). If the stream ends early or is corrupt,
/// its status says so, and the remaining fields have their defaults.
PLUGININTERFACE_EXPORT QDataStream &operator>>(QDataStream &stream, CPlayerDataModel &model);

/// Writes one line per field, with its label.
PLUGININTERFACE_EXPORT QDebug operator<<(QDebug debug, const CPlayerDataModel &model);
/// Writes one line per field, with its label; \a model must not be null.
PLUGININTERFACE_EXPORT QDebug operator<<(QDebug debug, CPlayerDataModel *model);
