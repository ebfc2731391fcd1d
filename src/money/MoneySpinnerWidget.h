#pragma once

#include <Export.h>

#include <QWidget>

#include <memory>

class CMoneySpinner;

/// A row of labels that shows a CMoneySpinner, from left to right in every language. The widget, its frames and
/// labels have object names but no style of their own; the style sheet of the brand provides it, using
/// `#W_MoneySpinner`, `QFrame#F_D1`, `QLabel#LB_D1` and so on.
///
/// Its accessible name is the amount at the end of the run, with the currency: "$1,234.56". It changes once per new
/// amount, not with each step of a run.
class PLUGININTERFACE_EXPORT CMoneySpinnerWidget : public QWidget
{
    Q_OBJECT

public:
    /// Constructs a widget that shows \a spinner, which it doesn't own and which must outlive it.
    explicit CMoneySpinnerWidget(CMoneySpinner *spinner, QWidget *parent = nullptr);
    ~CMoneySpinnerWidget() override;

private Q_SLOTS:
    void slot_C2Changed();
    void slot_C1Changed();
    void slot_DSChanged();
    void slot_D1Changed();
    void slot_D2Changed();
    void slot_D3Changed();
    void slot_TSChanged();
    void slot_D4Changed();
    void slot_D5Changed();
    void slot_D6Changed();
    void slot_D7Changed();
    void slot_CurrencyChanged();
    void slot_ShowCommaChanged();

private:
    struct SForm;

    CMoneySpinner *m_pSpinner;
    std::unique_ptr<SForm> m_pForm;
};
