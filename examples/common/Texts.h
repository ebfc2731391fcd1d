#pragma once

#include <translation/Translation.h>
#include <translation/TranslationItem.h>

#include <QPair>
#include <QVariant>

#include <functional>
#include <initializer_list>

/// The example's own texts, in the area "EXAMPLE" of the catalogue. Keys and markers are ASCII.
namespace Texts {

/// Returns the area of all these texts.
QString Area();

/// The values that replace markers, by marker.
using TValues = std::initializer_list<QPair<const char *, QVariant>>;

QString Get(const QString &key);
QString Get(const char *key, TValues values = {});
/// Returns the text that \a make makes, and makes it only once for each \a name and language: looking texts up takes
/// long when there are many rows. Main thread.
QString Once(const QString &name, const std::function<QString()> &make);

/// Returns a text for an owner who keeps it and translates it again.
CTranslationItem MakeItem(const char *key, TValues values = {});

/// Calls \a action now and on each change of the language, while \a owner exists.
template <typename Action>
void Follow(QObject *owner, const Action &action)
{
    QObject::connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, owner, action);
    action();
}

/// Calls \a action now, on each change of the language and on each of the signals, while \a owner exists.
template <typename Action, typename Sender, typename... Signals>
void Follow(QObject *owner, const Action &action, const Sender *sender, Signals... signals)
{
    (QObject::connect(sender, signals, owner, action), ...);
    Follow(owner, action);
}

/// Passes the text to \a setter now and on each change of the language. \a setter is a member function of \a object,
/// or a function that takes the object first.
template <typename Object, typename Setter>
void Bind(Object *object, Setter setter, const char *key)
{
    Follow(object, [object, setter, key] { std::invoke(setter, object, Get(key)); });
}

} // namespace Texts
