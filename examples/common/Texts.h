#pragma once

#include <translation/Translation.h>
#include <translation/TranslationItem.h>

#include <QPair>
#include <QVariant>

#include <functional>
#include <initializer_list>

/// The example's own texts, area "EXAMPLE" of the catalogue. Keys and markers are ASCII.
namespace Texts {

/// The area of all of them.
QString Area();

/// Values by the markers in whose place they stand.
using TValues = std::initializer_list<QPair<const char *, QVariant>>;

QString Get(const QString &key);
QString Get(const char *key, TValues values = {});
/// A text of which \a name tells all but the language. It is made once in each language: a look into the catalogue
/// takes long for what stands in many rows. Main thread.
QString Once(const QString &name, const std::function<QString()> &make);

/// The same for an owner who keeps the text and translates it again.
CTranslationItem MakeItem(const char *key, TValues values = {});

/// Calls \a action now and on each change of the language, as long as \a owner lives.
template <typename Action>
void Follow(QObject *owner, const Action &action)
{
    QObject::connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, owner, action);
    action();
}

/// The same, and also at each of the signals.
template <typename Action, typename Sender, typename... Signals>
void Follow(QObject *owner, const Action &action, const Sender *sender, Signals... signals)
{
    (QObject::connect(sender, signals, owner, action), ...);
    Follow(owner, action);
}

/// Gives the text to \a object, now and on each change of the language. \a setter is a member of the object, or takes
/// the object first.
template <typename Object, typename Setter>
void Bind(Object *object, Setter setter, const char *key)
{
    Follow(object, [object, setter, key] { std::invoke(setter, object, Get(key)); });
}

} // namespace Texts
