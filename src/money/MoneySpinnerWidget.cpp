#include "MoneySpinnerWidget.h"

#include <money/MoneySpinner.h>
#include <money/MoneyStrings.h>

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>

namespace {

// The places from left to right: ROW(name, layout number). Style sheets refer to the names.
// clang-format off
#define PLACES_TABLE(ROW) \
    ROW(Currency, 33) \
    ROW(D7, 35) \
    ROW(TS2, 499) \
    ROW(D6, 36) \
    ROW(D5, 37) \
    ROW(D4, 38) \
    ROW(TS, 500) \
    ROW(D3, 43) \
    ROW(D2, 42) \
    ROW(D1, 41) \
    ROW(DS, 44) \
    ROW(C1, 45) \
    ROW(C2, 46)
// clang-format on

QHBoxLayout *MakeLayout(QWidget *widget, const QString &name)
{
    auto *layout = new QHBoxLayout(widget);
    layout->setObjectName(name);
    layout->setSpacing(0);
    layout->setContentsMargins(0, 0, 0, 0);
    return layout;
}

} // namespace

struct CMoneySpinnerWidget::SForm
{
    explicit SForm(QWidget *widget)
    {
        widget->setObjectName(QStringLiteral("W_MoneySpinner"));
        widget->resize(65, 13);
        // Digits are written from left to right even in a right-to-left language.
        widget->setLayoutDirection(Qt::LeftToRight);
        widget->setAttribute(Qt::WA_StyledBackground); // lets a style sheet draw background and border
        QHBoxLayout *row = MakeLayout(widget, QStringLiteral("horizontalLayout"));
#define MAKE_PLACE(Name, number)                                                             \
    F_##Name = new QFrame(widget);                                                           \
    F_##Name->setObjectName(QStringLiteral("F_" #Name));                                     \
    LB_##Name = new QLabel(F_##Name);                                                        \
    LB_##Name->setObjectName(QStringLiteral("LB_" #Name));                                   \
    LB_##Name->setAlignment(Qt::AlignCenter);                                                \
    MakeLayout(F_##Name, QStringLiteral("horizontalLayout_" #number))->addWidget(LB_##Name); \
    row->addWidget(F_##Name);
        // NOLINTNEXTLINE(cppcoreguidelines-prefer-member-initializer): each place has its name from the table
        PLACES_TABLE(MAKE_PLACE)
#undef MAKE_PLACE
        QMetaObject::connectSlotsByName(widget);
    }

#define PLACE_MEMBERS(Name, number) \
    QFrame *F_##Name;               \
    QLabel *LB_##Name;
    PLACES_TABLE(PLACE_MEMBERS)
#undef PLACE_MEMBERS

    // Returns the amount at the end of the run. The start value is the lower amount, whatever the direction.
    static unsigned int Target(const CMoneySpinner &spinner)
    {
        const QPropertyAnimation &run = spinner.m_animation;
        if (run.state() != QAbstractAnimation::Running)
            return spinner.GetValue();
        return (run.direction() == QAbstractAnimation::Forward ? run.endValue() : run.startValue()).toUInt();
    }

    void NameAfter(QWidget *widget, const CMoneySpinner &spinner)
    {
        uiNamed = Target(spinner);
        const QString name =
            spinner.GetCurrency().trimmed() + Globals::MoneyToString(GlobalDefines::MONEYTYPE_POINTS, uiNamed, true);
        if (name != widget->accessibleName())
            widget->setAccessibleName(name); // this notifies assistive technology
    }

    void NameAfterTarget(QWidget *widget, const CMoneySpinner &spinner)
    {
        if (uiNamed != Target(spinner))
            NameAfter(widget, spinner);
    }

    unsigned int uiNamed = 0; // the amount in the accessible name
};

CMoneySpinnerWidget::CMoneySpinnerWidget(CMoneySpinner *spinner, QWidget *parent)
    : QWidget(parent)
    , m_pSpinner(spinner)
    , m_pForm(std::make_unique<SForm>(this))
{
#define CONNECT_FIELD(Type, prefix, Name, SignalType, defaultValue)                                             \
    connect(spinner, &CMoneySpinner::signal_##Name##Changed, this, &CMoneySpinnerWidget::slot_##Name##Changed); \
    slot_##Name##Changed();
    MONEY_SPINNER_DATA_TABLE(CONNECT_FIELD)
#undef CONNECT_FIELD
    // The animation changes its state before the first digit changes.
    connect(&spinner->m_animation, &QAbstractAnimation::stateChanged, this, [this](QAbstractAnimation::State state) {
        if (state == QAbstractAnimation::Running)
            m_pForm->NameAfterTarget(this, *m_pSpinner);
    });
}

CMoneySpinnerWidget::~CMoneySpinnerWidget() = default;

#define COPY_TO_LABEL(Name)                                   \
    void CMoneySpinnerWidget::slot_##Name##Changed()          \
    {                                                         \
        m_pForm->LB_##Name->setText(m_pSpinner->Get##Name()); \
        m_pForm->NameAfterTarget(this, *m_pSpinner);          \
    }
COPY_TO_LABEL(C2)
COPY_TO_LABEL(C1)
COPY_TO_LABEL(D1)
COPY_TO_LABEL(D2)
COPY_TO_LABEL(D3)
COPY_TO_LABEL(D4)
COPY_TO_LABEL(D5)
COPY_TO_LABEL(D6)
COPY_TO_LABEL(D7)
#undef COPY_TO_LABEL

void CMoneySpinnerWidget::slot_DSChanged()
{
    m_pForm->LB_DS->setText(m_pSpinner->GetDS());
    m_pForm->NameAfter(this, *m_pSpinner);
}

void CMoneySpinnerWidget::slot_TSChanged()
{
    m_pForm->LB_TS->setText(m_pSpinner->GetTS());
    m_pForm->LB_TS2->setText(m_pSpinner->GetTS());
    m_pForm->NameAfter(this, *m_pSpinner);
}

void CMoneySpinnerWidget::slot_CurrencyChanged()
{
    const QString currency = m_pSpinner->GetCurrency();
    m_pForm->LB_Currency->setText(currency);
    m_pForm->F_Currency->setVisible(!currency.trimmed().isEmpty());
    m_pForm->NameAfter(this, *m_pSpinner);
}

// Shows either the cents or the two highest digits.
void CMoneySpinnerWidget::slot_ShowCommaChanged()
{
    const bool cents = m_pSpinner->GetShowComma();
    for (QFrame *frame : {m_pForm->F_C1, m_pForm->F_C2, m_pForm->F_DS})
        frame->setVisible(cents);
    for (QFrame *frame : {m_pForm->F_D7, m_pForm->F_TS2, m_pForm->F_D6})
        frame->setVisible(!cents);
}
