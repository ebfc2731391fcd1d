#pragma once

#include <DataModel.h>
#include <Export.h>
#include <money/MoneySpinnerDataTable.h>

/// An amount of money place by place, so that a view can draw each digit in a field of its own.
///
/// The fields stand in MONEY_SPINNER_DATA_TABLE, which makes the page \ref models. C2 are hundredths, C1 tenths,
/// D1 units, up to D7 for millions; DS and TS are the separators of decimals and thousands. For each there are a
/// property, a getter, a setter that stores and signals a text that differs, and a change signal: `strD1`,
/// `GetD1()`, `SetD1()`, `signal_D1Changed(QString)`. Main thread.
class PLUGININTERFACE_EXPORT CMoneySpinnerDataModel : public QObject
{
    Q_OBJECT
    DATA_MODEL_FIELDS(CMoneySpinnerDataModel, MONEY_SPINNER_DATA_TABLE)

public:
    /// All fields at their defaults.
    explicit CMoneySpinnerDataModel(QObject *parent = nullptr);
    ~CMoneySpinnerDataModel() override;

    /// Sets each field to its default, in the table's order.
    virtual void Reset();
    /// Called behind each read from a stream.
    virtual void LoadedFromStream();
};

/// The fields in the table's order.
PLUGININTERFACE_EXPORT QDataStream &operator<<(QDataStream &stream, const CMoneySpinnerDataModel &model);
/// Reads them without a signal, and calls LoadedFromStream(). If the stream ends early or is corrupt, as its status
/// then tells, the fields from there on have their defaults.
PLUGININTERFACE_EXPORT QDataStream &operator>>(QDataStream &stream, CMoneySpinnerDataModel &model);

/// One line a field, with its label.
PLUGININTERFACE_EXPORT QDebug operator<<(QDebug debug, const CMoneySpinnerDataModel &model);
/// The same; \a model isn't null.
PLUGININTERFACE_EXPORT QDebug operator<<(QDebug debug, CMoneySpinnerDataModel *model);
