#pragma once

#include <QList>
#include <QObject>

#include <algorithm>

/// For the slot of a destroyed() signal: takes every occurrence of the object off the list. It is nothing more than a
/// QObject by then, so that only its address is looked at.
template <typename Type>
void RemoveSender(QList<Type *> &list, const QObject *sender)
{
    const auto isSender = [sender](const Type *entry) { return static_cast<const QObject *>(entry) == sender; };
    list.erase(std::remove_if(list.begin(), list.end(), isSender), list.end());
}
