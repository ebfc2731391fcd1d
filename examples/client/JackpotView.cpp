#include "JackpotView.h"

#include <common/Texts.h>
#include <models/CasinoInfo.h>

#include <QHBoxLayout>
#include <QLabel>

CJackpotView::CJackpotView(QWidget *parent)
    : QWidget(parent)
    , m_digits(CCasinoInfo::GetInstance()->GetBadBeatJackpotSpinner(), this)
{
    CCasinoInfo *info = CCasinoInfo::GetInstance();
    auto *title = new QLabel(this);
    Texts::Bind(title, &QLabel::setText, "JACKPOT");
    QFont bold = font();
    bold.setBold(true);
    m_digits.setFont(bold);

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, fontMetrics().averageCharWidth(), 0);
    layout->addWidget(title);
    layout->addWidget(&m_digits);
    setVisible(info->GetBadBeatJackpotValue() > 0);
    connect(info, &CCasinoInfo::signal_BadBeatJackpotChanged, this, &QWidget::show);
    // The spinner's sign is that of the language in which it was set.
    connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, this,
            [info] { info->GetBadBeatJackpotSpinner()->slot_SetMoneyType(info->GetBadBeatJackpotMoneyType()); });
}
