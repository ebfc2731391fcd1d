#pragma once

#include <models/UserInfo.h>
#include <settings/Settings.h>

#include <QObject>
#include <QString>
#include <QVariant>

/// Remembers whose settings a model shows. A model that only followed the change signals of CSettings would keep the
/// previous user's settings if those of the next user are the same or missing. The nickname is a dynamic property of
/// the model, because the layout of the models is public.
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

/// Returns whether the model has to load again: the settings belong to a user whose choices it doesn't show yet. At a
/// logout the model forgets its user.
inline bool HasChanged(QObject &model)
{
    const QString user = CUserInfo::GetInstance()->GetNickname();
    if (user.isEmpty())
        Set(model, QString());
    return !user.isEmpty() && user == CSettings::GetInstance()->GetNickname() && user != Get(model);
}

/// Connects the slot to the signals after which HasChanged() may return true. Call it after CSettings has made its
/// own connections, so that the user's rows are applied first.
template <typename Model>
void Connect(Model *model, void (Model::*slot)())
{
    const CUserInfo *user = CUserInfo::GetInstance();
    QObject::connect(user, &CUserInfo::signal_PlayerModelChanged, model, slot);
    QObject::connect(user, &CUserInfo::signal_LoginStateChanged, model, slot);
}

} // namespace LoadedUser
