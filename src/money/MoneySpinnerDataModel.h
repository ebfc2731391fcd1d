#pragma once

#include <DataModel.h>
#include <Export.h>
#include <money/MoneySpinnerDataTable.h>

/// An amount of money digit by digit, so that a view can draw each digit in a field of its own.
///
/// MONEY_SPINNER_DATA_TABLE lists the fields, from which the page \ref models is generated. C2 is the hundredths
/// digit, C1 the tenths, D1 the units, up to D7 for millions; DS and TS are the decimal and thousands separators.
/// Each field has a property, a getter, a setter that emits the change signal if the text differs, and a change
/// signal: `strD1`, `GetD1()`, `SetD1()`, `signal_D1Changed(QString)`. Main thread.
class PLUGININTERFACE_EXPORT CMoneySpinnerDataModel : public QObject
{
    Q_OBJECT
    DATA_MODEL_FIELDS(CMoneySpinnerDataModel, MONEY_SPINNER_DATA_TABLE)

public:
    /// Constructs a model with all fields at their defaults.
    explicit CMoneySpinnerDataModel(QObject *parent = nullptr);
    ~CMoneySpinnerDataModel() override;

    /// Sets each field to its default, in the order of the table.
    virtual void Reset();
    /// Called after each read from a stream.
    virtual void LoadedFromStream();
};

/// Writes the fields to the stream, in the order of the table.
PLUGININTERFACE_EXPORT QDataStream &operator<<(QDataStream &stream, const CMoneySpinnerDataModel &model);
/// Reads the fields without emitting signals, then calls LoadedFromStream(). If the stream ends early or is corrupt,
/// its status says so, and the remaining fields have their defaults.
PLUGININTERFACE_EXPORT QDataStream &operator>>(QDataStream &stream, CMoneySpinnerDataModel &model);

/// Writes one line per field, with its label.
PLUGININTERFACE_EXPORT QDebug operator<<(QDebug debug, const CMoneySpinnerDataModel &model);
/// Writes one line per field, with its label; \a model must not be null.
PLUGININTERFACE_EXPORT QDebug operator<<(QDebug debug, CMoneySpinnerDataModel *model);
