#include "Tokens.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QRandomGenerator>
#include <QSqlQuery>

namespace {

constexpr qint64 DAY_SECONDS = qint64(24) * 60 * 60;
constexpr qint64 TOKEN_SECONDS = 30 * DAY_SECONDS;
constexpr int TOKEN_WORDS = 8; // of 32 bits

const QString TABLE = QStringLiteral("tbl_token");
const QString COLUMN_HASH = QStringLiteral("TOK_cHash");
const QString COLUMN_USER = QStringLiteral("TOK_cUser");
const QString COLUMN_EXPIRY = QStringLiteral("TOK_iExpiry");

// A token is random enough for a fast hash.
QString HashToken(const QString &token)
{
    return QString::fromLatin1(QCryptographicHash::hash(token.toUtf8(), QCryptographicHash::Sha256).toHex());
}

} // namespace

CTokens::CTokens(const QString &file)
    : CLocalDB(file, false, false)
{
}

bool CTokens::CreateDBVersion(unsigned int)
{
    return Exec(QStringLiteral("CREATE TABLE tbl_token (TOK_cHash TEXT PRIMARY KEY, TOK_cUser TEXT,"
                               " TOK_iExpiry INTEGER)")) &&
           Exec(QStringLiteral("CREATE INDEX idx_token_user ON tbl_token (TOK_cUser)")) &&
           Exec(QStringLiteral("CREATE INDEX idx_token_expiry ON tbl_token (TOK_iExpiry)"));
}

bool CTokens::Add(const QString &nickname, QString *token)
{
    quint32 words[TOKEN_WORDS] = {};
    QRandomGenerator::system()->fillRange(words);
    *token = QString::fromLatin1(QByteArray(reinterpret_cast<const char *>(words), sizeof words).toHex());
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    return Exec(QStringLiteral("DELETE FROM tbl_token WHERE TOK_iExpiry <= %1").arg(now)) &&
           Insert(TABLE, {{COLUMN_HASH, HashToken(*token)},
                          {COLUMN_USER, nickname.toLower()},
                          {COLUMN_EXPIRY, now + TOKEN_SECONDS}});
}

std::optional<bool> CTokens::Use(const QString &nickname, const QString &token)
{
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    QSqlQuery query = GetQuery();
    query.prepare(QStringLiteral("SELECT TOK_iExpiry FROM tbl_token WHERE TOK_cHash = ? AND TOK_cUser = ?"));
    query.addBindValue(HashToken(token));
    query.addBindValue(nickname.toLower());
    if (!query.exec())
        return std::nullopt;
    const qint64 expiry = query.next() ? query.value(0).toLongLong() : 0;
    query.finish();
    if (expiry < now + TOKEN_SECONDS - DAY_SECONDS && expiry > now) // a write a day is enough
        Update(TABLE, {{COLUMN_EXPIRY, now + TOKEN_SECONDS}}, {{COLUMN_HASH, HashToken(token)}});
    return expiry > now;
}

bool CTokens::Remove(const QString &token)
{
    return Delete(TABLE, {{COLUMN_HASH, HashToken(token)}});
}

bool CTokens::RemoveAll(const QString &nickname)
{
    return Delete(TABLE, {{COLUMN_USER, nickname.toLower()}});
}
