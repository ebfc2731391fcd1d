#pragma once

#include <DataModel.h>
#include <Export.h>
#include <models/PlayerModel.h>
#include <models/UserInfoDataTable.h>
#include <plugin/GlobalDefines.h>

/// The account of the logged-in user as plain fields for widgets and QML.
///
/// USER_INFO_DATA_TABLE lists the fields, from which the page \ref models is generated. Each field has a property, a
/// getter, a setter that emits the change signal if the value differs, and a change signal with the new value:
/// `mvRealMoney`, `GetRealMoney()`, `SetRealMoney()`, `signal_RealMoneyChanged(GlobalDefines::MoneyValue)`. Times are
/// seconds since 1970 UTC, 0 for none. The object doesn't own the user's player model: once that is destroyed,
/// GetPlayerModel() returns null, and no signal is emitted. The password is kept in the form that the host passes.
/// Main thread.
class PLUGININTERFACE_EXPORT CUserInfoDataModel : public QObject
{
    Q_OBJECT
    DATA_MODEL_FIELDS(CUserInfoDataModel, USER_INFO_DATA_TABLE)

public:
    /// Constructs a model with all fields at their defaults.
    explicit CUserInfoDataModel(QObject *parent = nullptr);
    ~CUserInfoDataModel() override;

    /// Sets each field to its default, in the order of the table.
    virtual void Reset();
    /// Called after each read from a stream.
    virtual void LoadedFromStream();
};

/// Writes the fields to the stream, in the order of the table and without the user's player model.
PLUGININTERFACE_EXPORT QDataStream &operator<<(QDataStream &stream, const CUserInfoDataModel &model);
/// Reads the fields without emitting signals, then calls LoadedFromStream(). If the stream ends early or is corrupt,
/// its status says so, and the remaining fields have their defaults; the user's player model doesn't change.
PLUGININTERFACE_EXPORT QDataStream &operator>>(QDataStream &stream, CUserInfoDataModel &model);

/// Writes one line per field, with its label; for the user's player model all its lines, or "none". The output
/// contains the password hash and doesn't belong in a log.
PLUGININTERFACE_EXPORT QDebug operator<<(QDebug debug, const CUserInfoDataModel &model);
/// Writes one line per field, with its label; \a model must not be null.
PLUGININTERFACE_EXPORT QDebug operator<<(QDebug debug, CUserInfoDataModel *model);
