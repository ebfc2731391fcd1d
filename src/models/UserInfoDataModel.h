#pragma once

#include <DataModel.h>
#include <Export.h>
#include <models/PlayerModel.h>
#include <models/UserInfoDataTable.h>
#include <plugin/GlobalDefines.h>

/// The logged-in user's account, as plain fields for widgets and QML.
///
/// The fields stand in USER_INFO_DATA_TABLE, which makes the page \ref models. For each there are a property, a
/// getter, a setter that stores and signals a value that differs, and a change signal with the new value:
/// `mvRealMoney`, `GetRealMoney()`, `SetRealMoney()`, `signal_RealMoneyChanged(GlobalDefines::MoneyValue)`. Times
/// are seconds since 1970 UTC, 0 for none. The model of the own player isn't owned: GetPlayerModel() is null once it
/// is gone, of which no signal tells. The password is kept in the form that the host gives. Main thread.
class PLUGININTERFACE_EXPORT CUserInfoDataModel : public QObject
{
    Q_OBJECT
    DATA_MODEL_FIELDS(CUserInfoDataModel, USER_INFO_DATA_TABLE)

public:
    /// All fields at their defaults.
    explicit CUserInfoDataModel(QObject *parent = nullptr);
    ~CUserInfoDataModel() override;

    /// Sets each field to its default, in the table's order.
    virtual void Reset();
    /// Called behind each read from a stream.
    virtual void LoadedFromStream();
};

/// The fields in the table's order, without the own player's model.
PLUGININTERFACE_EXPORT QDataStream &operator<<(QDataStream &stream, const CUserInfoDataModel &model);
/// Reads them without a signal, and calls LoadedFromStream(). If the stream ends early or is corrupt, as its status
/// then tells, the fields from there on have their defaults; the own player's model stays.
PLUGININTERFACE_EXPORT QDataStream &operator>>(QDataStream &stream, CUserInfoDataModel &model);

/// One line a field, with its label; the own player's model with all its lines, or "none". The hash of the password
/// is among them, so that this is nothing for a log.
PLUGININTERFACE_EXPORT QDebug operator<<(QDebug debug, const CUserInfoDataModel &model);
/// The same; \a model isn't null.
PLUGININTERFACE_EXPORT QDebug operator<<(QDebug debug, CUserInfoDataModel *model);
