#include "JackpotView.h"

#include <common/Texts.h>

#include <QHBoxLayout>
#include <QLabel>

CJackpotView::CJackpotView(QWidget *parent)
    : QWidget(parent)
    , m_digits(&m_spinner, this)
{
    auto *title = new QLabel(this);
    Texts::Bind(title, &QLabel::setText, "JACKPOT");
    QFont bold = font();
    bold.setBold(true);
    m_digits.setFont(bold);

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, fontMetrics().averageCharWidth(), 0);
    layout->addWidget(title);
    layout->addWidget(&m_digits);
    hide();
    // The spinner's sign is that of the language in which it was set.
    connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, this,
            [this] { m_spinner.slot_SetMoneyType(m_eCurrency); });
}

// The first amount has nothing to run from.
void CJackpotView::ShowJackpot(GlobalDefines::MoneyType currency, GlobalDefines::MoneyValue amount)
{
    if (currency != m_eCurrency) {
        m_eCurrency = currency;
        m_spinner.slot_SetMoneyType(currency);
        m_spinner.SetValue(amount);
    }
    m_spinner.slot_SetValue(amount);
    show();
}
