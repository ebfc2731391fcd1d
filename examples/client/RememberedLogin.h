#pragma once

#include <protocol/AccountProtocol.h>

/// The login of a user who stays logged in when the client ends. The settings keep it, in a file that only the user
/// of the machine can open.
namespace RememberedLogin {

/// Returns the login; its token is empty if there is none.
AccountProtocol::STokenLogin Get();

/// Stores the login in place of another one. Stores nothing, and says so in the console, if there is no token, or if
/// the settings can't be kept from other users of the machine.
void Store(const AccountProtocol::STokenLogin &login);

/// Removes the login. The settings still have the nickname, as what the user typed last.
void Forget();

} // namespace RememberedLogin
