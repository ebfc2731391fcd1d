#include "OptionsPage.h"

COptionsPage::COptionsPage(QObject *parent)
    : QObject(parent)
{
}

COptionsPage::~COptionsPage() = default;
