#include "Tokens.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QRandomGenerator>
#include <QSqlQuery>

#include <algorithm>
#include <cstdio>

namespace {

constexpr qint64 DAY_SECONDS = qint64(24) * 60 * 60;
constexpr qint64 TOKEN_SECONDS = 30 * DAY_SECONDS;
constexpr int TOKEN_WORDS = 8; // of 32 bits
constexpr int TOKENS_OF_A_USER = 20;
constexpr int LOCKED_MS = 200; // for which the server may stand still

const QString TABLE = QStringLiteral("tbl_token");
const QString COLUMN_HASH = QStringLiteral("TOK_cHash");
const QString COLUMN_USER = QStringLiteral("TOK_cUser");
const QString COLUMN_ACCOUNT = QStringLiteral("TOK_cAccount");
const QString COLUMN_EXPIRY = QStringLiteral("TOK_iExpiry");

// A token is random enough for a fast hash, and so is the salt of a password's slow one.
QString HashFast(const QString &text)
{
    return QString::fromLatin1(QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha256).toHex());
}

} // namespace

CTokens::CTokens(const QString &file)
    : CLocalDB(file, false, false)
{
}

bool CTokens::Open()
{
    return Init() && Exec(QStringLiteral("PRAGMA busy_timeout = %1").arg(LOCKED_MS));
}

// The tokens of version 1 don't tell the password, and have ended.
bool CTokens::CreateDBVersion(unsigned int version)
{
    if (version == 2)
        return Exec(QStringLiteral("ALTER TABLE tbl_token ADD COLUMN TOK_cAccount TEXT DEFAULT ''"));
    return Exec(QStringLiteral("CREATE TABLE tbl_token (TOK_cHash TEXT PRIMARY KEY, TOK_cUser TEXT,"
                               " TOK_iExpiry INTEGER)")) &&
           Exec(QStringLiteral("CREATE INDEX idx_token_user ON tbl_token (TOK_cUser)")) &&
           Exec(QStringLiteral("CREATE INDEX idx_token_expiry ON tbl_token (TOK_iExpiry)"));
}

bool CTokens::Add(const QString &nickname, const QString &passwordHash, QString *token)
{
    quint32 words[TOKEN_WORDS] = {};
    QRandomGenerator::system()->fillRange(words);
    *token = QString::fromLatin1(QByteArray(reinterpret_cast<const char *>(words), sizeof words).toHex());
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    const QString user = nickname.toLower();
    if (!WriteRemovals() || // which would take back this one too
        !Insert(TABLE, {{COLUMN_HASH, HashFast(*token)},
                        {COLUMN_USER, user},
                        {COLUMN_ACCOUNT, HashFast(passwordHash)},
                        {COLUMN_EXPIRY, now + TOKEN_SECONDS}}))
        return false;
    // What isn't done now is the next time. A clock that is ahead for some days deletes nothing that it shouldn't,
    // and makes nothing last.
    Exec(QStringLiteral("DELETE FROM tbl_token WHERE TOK_iExpiry <= %1").arg(now - TOKEN_SECONDS));
    Exec(QStringLiteral("UPDATE tbl_token SET TOK_iExpiry = %1 WHERE TOK_iExpiry > %1").arg(now + TOKEN_SECONDS));
    Exec(QStringLiteral("DELETE FROM tbl_token WHERE TOK_cHash IN (SELECT TOK_cHash FROM tbl_token"
                        " WHERE TOK_cUser = '%1' ORDER BY TOK_iExpiry DESC, rowid DESC LIMIT -1 OFFSET %2)")
             .arg(Escape(user))
             .arg(TOKENS_OF_A_USER));
    return true;
}

std::optional<bool> CTokens::Use(const QString &nickname, const QString &passwordHash, const QString &token)
{
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    const QString hash = HashFast(token);
    if (IsRemoved(COLUMN_HASH, hash) || IsRemoved(COLUMN_USER, nickname.toLower()))
        return false;
    QSqlQuery query = GetQuery();
    query.prepare(QStringLiteral("SELECT TOK_iExpiry FROM tbl_token WHERE TOK_cHash = ? AND TOK_cUser = ?"
                                 " AND TOK_cAccount = ?"));
    query.addBindValue(hash);
    query.addBindValue(nickname.toLower());
    query.addBindValue(HashFast(passwordHash));
    if (!query.exec())
        return std::nullopt;
    const qint64 expiry = query.next() ? query.value(0).toLongLong() : 0;
    query.finish();
    // A write a day is enough, but for what was used while the clock was ahead.
    const bool isOff = expiry < now + TOKEN_SECONDS - DAY_SECONDS || expiry > now + TOKEN_SECONDS;
    if (isOff && expiry > now)
        Update(TABLE, {{COLUMN_EXPIRY, now + TOKEN_SECONDS}}, {{COLUMN_HASH, hash}});
    return expiry > now;
}

void CTokens::Remove(const QString &token)
{
    Remove({COLUMN_HASH, HashFast(token)});
}

void CTokens::RemoveAll(const QString &nickname)
{
    Remove({COLUMN_USER, nickname.toLower()});
}

void CTokens::Remove(const SRemoval &removal)
{
    if (!IsRemoved(removal.strColumn, removal.strValue))
        m_removals.append(removal);
    if (!WriteRemovals())
        std::fprintf(stderr, "the file of tokens can't be written; a logout is written as soon as it can\n");
}

bool CTokens::WriteRemovals()
{
    while (!m_removals.isEmpty() &&
           Delete(TABLE, {{m_removals.constFirst().strColumn, m_removals.constFirst().strValue}}))
        m_removals.removeFirst();
    return m_removals.isEmpty();
}

bool CTokens::IsRemoved(const QString &column, const QString &value) const
{
    return std::any_of(m_removals.begin(), m_removals.end(), [&](const SRemoval &removal) {
        return removal.strColumn == column && removal.strValue == value;
    });
}
