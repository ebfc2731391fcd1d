#include "Passwords.h"

#include <sodium.h>

QString Passwords::Hash(const QString &password)
{
    const QByteArray text = password.toUtf8();
    char hash[crypto_pwhash_STRBYTES] = {};
    const bool isMade =
        sodium_init() >= 0 &&
        crypto_pwhash_str(hash, text.constData(), static_cast<unsigned long long>(text.size()),
                          crypto_pwhash_OPSLIMIT_INTERACTIVE, crypto_pwhash_MEMLIMIT_INTERACTIVE) == 0;
    return isMade ? QString::fromLatin1(hash) : QString();
}

// The library knows its own form, and whether a hash is as slow as those that it makes now.
bool Passwords::IsHash(const QString &text)
{
    const QByteArray hash = text.toLatin1();
    return hash.size() < int(crypto_pwhash_STRBYTES) && sodium_init() >= 0 &&
           crypto_pwhash_str_needs_rehash(hash.constData(), crypto_pwhash_OPSLIMIT_INTERACTIVE,
                                          crypto_pwhash_MEMLIMIT_INTERACTIVE) == 0;
}

std::optional<bool> Passwords::Matches(const QString &password, const QString &hash)
{
    const QByteArray text = password.toUtf8();
    if (sodium_init() < 0)
        return std::nullopt;
    if (crypto_pwhash_str_verify(hash.toLatin1().constData(), text.constData(),
                                 static_cast<unsigned long long>(text.size())) == 0)
        return true;
    if (Hash(password).isEmpty()) // which the library doesn't tell from a wrong password
        return std::nullopt;
    return false;
}
