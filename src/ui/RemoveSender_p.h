#pragma once

#include <QList>
#include <QObject>

#include <algorithm>

/// Removes every occurrence of \a sender from the list, for the slot of a destroyed() signal. By then the object is
/// only a QObject, so only its address is compared.
template <typename Type>
void RemoveSender(QList<Type *> &list, const QObject *sender)
{
    const auto isSender = [sender](const Type *entry) { return static_cast<const QObject *>(entry) == sender; };
    list.erase(std::remove_if(list.begin(), list.end(), isSender), list.end());
}
