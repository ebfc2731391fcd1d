#pragma once

#include <models/UserInfo.h>
#include <settings/Settings.h>

#include <QObject>
#include <QString>
#include <QVariant>

/// Whose settings a model shows. A model that hears only of settings that change would keep those of the user before
/// where the next one's are the same, or where there are none. Kept as a property of the model, whose layout is
/// public.
namespace LoadedUser {

inline constexpr char PROPERTY[] = "user";

inline void Set(QObject &model, const QString &user)
{
    model.setProperty(PROPERTY, user);
}

inline QString Get(const QObject &model)
{
    return model.property(PROPERTY).toString();
}

/// Whether the model has to load anew: the settings are those of a user whose choices it doesn't show yet. At a
/// logout the model forgets whose it shows.
inline bool HasChanged(QObject &model)
{
    const QString user = CUserInfo::GetInstance()->GetNickname();
    if (user.isEmpty())
        Set(model, QString());
    return !user.isEmpty() && user == CSettings::GetInstance()->GetNickname() && user != Get(model);
}

/// Connects the slot to what may end in such a change. For after the settings' own connections: they have applied
/// the user's rows by then.
template <typename Model>
void Connect(Model *model, void (Model::*slot)())
{
    const CUserInfo *user = CUserInfo::GetInstance();
    QObject::connect(user, &CUserInfo::signal_PlayerModelChanged, model, slot);
    QObject::connect(user, &CUserInfo::signal_LoginStateChanged, model, slot);
}

} // namespace LoadedUser
