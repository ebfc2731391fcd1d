#include "Action.h"

#include <translation/Translation.h>

CAction::CAction(const QString &key, const QString &area)
{
    SetTranslationKey(key, area);
    FollowLanguage();
}

CAction::CAction(const QString &text)
{
    SetText(text);
    FollowLanguage();
}

CAction::~CAction() = default;

void CAction::AddParameter(const QString &name, const QVariant &value)
{
    m_hParameters.insert(name, value);
}

QVariant CAction::GetParameter(const QString &name) const
{
    return m_hParameters.value(name);
}

void CAction::RemoveParameter(const QString &name)
{
    m_hParameters.remove(name);
}

void CAction::ClearParameters()
{
    m_hParameters.clear();
}

void CAction::slot_Update()
{
    Q_EMIT signal_Update(this);
}

void CAction::TranslationChanged()
{
    setText(GetTranslatedText());
}

void CAction::slot_TranslationChanged()
{
    ReTranslate();
}

void CAction::FollowLanguage()
{
    connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, this,
            &CAction::slot_TranslationChanged);
}
