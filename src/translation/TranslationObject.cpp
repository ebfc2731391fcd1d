#include "TranslationObject.h"

#include <translation/Translation.h>

CTranslationObject::CTranslationObject(QObject *parent)
    : QObject(parent)
{
    connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, this,
            &CTranslationObject::slot_TranslationChanged);
}

CTranslationObject::~CTranslationObject() = default;

void CTranslationObject::TranslationChanged()
{
    Q_EMIT signal_TextChanged();
}

void CTranslationObject::slot_TranslationChanged()
{
    ReTranslate();
}
