#include "MoneySpinner.h"

#include <money/MoneyStrings.h>
#include <settings/Settings.h>
#include <translation/Translation.h>

namespace {

constexpr int RUN_MS = 500;
constexpr int MAX_DIGITS_WITH_COMMA = 7;

} // namespace

CMoneySpinner::CMoneySpinner(unsigned int value, GlobalDefines::MoneyType moneytype, QObject *parent)
    : CMoneySpinnerDataModel(parent)
    , m_uiValue(value)
{
    slot_SetMoneyType(moneytype);
    Init();
}

CMoneySpinner::CMoneySpinner(QObject *parent)
    : CMoneySpinnerDataModel(parent)
{
    Init();
}

CMoneySpinner::~CMoneySpinner() = default;

unsigned int CMoneySpinner::GetValue() const
{
    return m_uiValue;
}

void CMoneySpinner::SetValue(unsigned int value)
{
    if (value == m_uiValue)
        return;
    m_uiValue = value;
    UpdateDisplay();
}

// The animation always starts at the lower amount; its direction tells which way it runs.
void CMoneySpinner::slot_SetValue(unsigned int value)
{
    // Setting the start or end value of a running animation already changes the displayed amount.
    const unsigned int displayed = m_uiValue;
    if (value == displayed)
        return;
    if (CSettings::GetInstance()->GetAnimationOff()) {
        m_animation.stop();
        m_uiValue = value;
        UpdateDisplay();
        return;
    }
    m_animation.setDirection(value < displayed ? QAbstractAnimation::Backward : QAbstractAnimation::Forward);
    m_animation.setStartValue(qMin(value, displayed));
    m_animation.setEndValue(qMax(value, displayed));
    m_animation.start(QAbstractAnimation::KeepWhenStopped);
}

void CMoneySpinner::slot_SetMoneyType(GlobalDefines::MoneyType moneytype)
{
    SetCurrency(Globals::MoneyTypeToString(moneytype).trimmed());
}

void CMoneySpinner::slot_TranslationChanged()
{
    const QString area = QStringLiteral("CORE");
    const CTranslation *catalogue = CTranslation::GetInstance();
    SetDS(catalogue->GetTranslatedString(QStringLiteral("MONEY_DECIMALSEPERATOR"), area, -1));
    SetTS(catalogue->GetTranslatedString(QStringLiteral("MONEY_THOUSANDSSEPERATOR"), area, -1));
}

void CMoneySpinner::Init()
{
    connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, this,
            &CMoneySpinner::slot_TranslationChanged);
    slot_TranslationChanged();
    m_animation.setTargetObject(this);
    m_animation.setParent(this);
    m_animation.setPropertyName("value");
    m_animation.setDuration(RUN_MS);
    UpdateDisplay();
}

void CMoneySpinner::UpdateDisplay()
{
    using TSetPlace = void (CMoneySpinner::*)(QString);
    static constexpr TSetPlace PLACES[] = {&CMoneySpinner::SetC2, &CMoneySpinner::SetC1, &CMoneySpinner::SetD1,
                                           &CMoneySpinner::SetD2, &CMoneySpinner::SetD3, &CMoneySpinner::SetD4,
                                           &CMoneySpinner::SetD5, &CMoneySpinner::SetD6, &CMoneySpinner::SetD7};
    const unsigned int value = m_uiValue;
    const QString digits = QString::number(value);
    SetShowComma(digits.size() <= MAX_DIGITS_WITH_COMMA);
    auto position = digits.size();
    for (const TSetPlace setPlace : PLACES) {
        // A connected slot may have set another amount, which is displayed already.
        if (m_uiValue != value)
            return;
        (this->*setPlace)(--position >= 0 ? digits.mid(position, 1) : QStringLiteral("0"));
    }
}
