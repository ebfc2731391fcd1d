#include "StoredTexts_p.h"

#include <database/LocalDB.h>
#include <database/Statements_p.h>
#include <database/TranslationDB.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QPointer>
#include <QSet>
#include <QThread>

#include <algorithm>
#include <utility>

namespace {

// In characters, about. An operator's file has some 10,000 texts a language.
constexpr int MOST_TEXT = 4 * 1024 * 1024;
constexpr int MOST_MISSING = 128 * 1024;
constexpr int ENTRY = 100; // of a text of no length
// More than a screen shows, and few enough for a moment.
constexpr int MOST_AHEAD = 1000;

const QString FALLBACK_AREA = QStringLiteral("core");

// The connection's driver may go at any time, and its texts with it.
QPointer<CStoredTexts> latest;

const QString &GetSelection()
{
    static const QString sql = QLatin1String("SELECT TRL_cTranslation FROM '") +
                               CTranslationDB::strTableNameTranslations +
                               QLatin1String("' WHERE TRL_cArea=? AND TRL_cKey=? AND TRL_AVL_iID=? LIMIT 1");
    return sql;
}

// Of many keys at once. Key by key, as the other.
const QString &GetSelectionOfAll()
{
    static const QString sql = QLatin1String("SELECT wanted.key, TRL_cTranslation FROM json_each(?) AS wanted"
                                             " CROSS JOIN '") +
                               CTranslationDB::strTableNameTranslations +
                               QLatin1String("' WHERE TRL_cArea=? AND TRL_cKey=wanted.value AND TRL_AVL_iID=?");
    return sql;
}

// Returns whether JSON, and SQLite with it, carries the key as it is.
bool IsPlain(const QString &key)
{
    return key.isValidUtf16() && !key.contains(QChar(0));
}

} // namespace

CStoredTexts::THash qHash(const CStoredTexts::SName &name, CStoredTexts::THash seed)
{
    return qHash(name.strKey, seed) ^ (31 * qHash(name.strArea, seed));
}

CStoredTexts::THash qHash(const CStoredTexts::SEntry &entry, CStoredTexts::THash seed)
{
    return qHash(entry.name, seed) ^ CStoredTexts::THash(entry.iLanguage);
}

CStoredTexts::CStoredTexts(CStatements *statements)
    : QObject(statements)
    , m_statements(*statements)
    , m_texts(MOST_TEXT)
    , m_missing(MOST_MISSING)
{
}

CStoredTexts *CStoredTexts::Get(const CLocalDB &database)
{
    if (latest && latest->IsOf(database))
        return latest;
    CStatements *statements = CStatements::Get(database.GetConnection());
    if (!statements)
        return nullptr;
    latest = nullptr;
    for (QObject *child : statements->children()) {
        if (auto *texts = dynamic_cast<CStoredTexts *>(child))
            latest = texts;
    }
    if (!latest)
        latest = new CStoredTexts(statements);
    latest->ForgetFormerOpening();
    return latest;
}

QString CStoredTexts::GetNotFound(const SName &name)
{
    return name.strArea.toLower() + QLatin1Char('/') + name.strKey.toLower() + QLatin1String("\nNOT IN TRANSLATION");
}

QString CStoredTexts::Find(int language, const SName &name)
{
    const SEntry entry{language, name};
    if (const QString *text = FindRemembered(entry)) {
        if (m_bCountsAll)
            Use(name);
        return *text;
    }
    const QString area = name.strArea.toLower();
    const QString key = name.strKey.toLower();
    QString text;
    EAnswer answer = m_statements.GetOpening() < 0 ? Missing : Read(text, language, area, key);
    const bool refused = answer == Refused || (answer == Missing && !Hold());
    if (answer == Missing && !refused) {
        // All that is asked while the file is held is about one version of it.
        answer = Read(text, language, area, key);
        if (answer == Missing && area != FALLBACK_AREA)
            answer = Read(text, language, FALLBACK_AREA, key);
        m_statements.Release();
    } else if (answer == Refused && area != FALLBACK_AREA) {
        answer = Read(text, language, FALLBACK_AREA, key); // as if the area hadn't the text, which isn't known
    }
    if (answer != Found)
        text = GetNotFound(name);
    if (!refused && answer != Refused)
        Remember(entry, text, answer == Found);
    Use(name);
    return text;
}

void CStoredTexts::ReadAhead(int language)
{
    QVector<SName> wanted = TakeUsed();
    if (wanted.isEmpty() || !Hold())
        return;
    wanted.erase(
        std::remove_if(
            wanted.begin(), wanted.end(),
            [this, language](const SName &name) {
                return !m_bKnown || m_texts.contains({language, name}) || m_missing.contains({language, name});
            }),
        wanted.end());
    QHash<QString, QVector<SName>> areas;
    for (const SName &name : qAsConst(wanted))
        areas[name.strArea.toLower()].append(name);
    QVector<SName> inherited;
    for (auto area = areas.cbegin(); area != areas.cend(); ++area)
        inherited += ReadAll(language, area.key(), *area);
    ReadAll(language, FALLBACK_AREA, inherited);
    m_statements.Release();
}

// Returns whether the texts are those in the file of the database, whose connection is open as it was when they were
// read. No other thread may use it.
bool CStoredTexts::IsOf(const CLocalDB &database) const
{
    return thread() == QThread::currentThread() && m_statements.GetPath() == database.m_strDatabase &&
           m_iOpening >= 0 && m_statements.GetOpening() == m_iOpening;
}

// Returns null if nothing is remembered that holds now. The text is valid until the next call.
const QString *CStoredTexts::FindRemembered(const SEntry &entry)
{
    CFileState::TVersion version;
    if (m_iOpening < 0 || !m_state.Read(version) || version != m_version)
        return nullptr;
    const QString *text = m_texts.object(entry);
    return text ? text : m_missing.object(entry);
}

// Keeps the file as it is, so that its version is that of what is read until it is released.
bool CStoredTexts::Hold()
{
    if (!m_statements.Hold())
        return false;
    ReadVersion();
    return true;
}

// Called while a statement of the connection runs, which keeps the file as it is.
void CStoredTexts::ReadVersion()
{
    CFileState::TVersion version;
    m_bKnown = IsSameFile() && m_state.Read(version);
    if (m_bKnown && version != m_version) {
        Forget();
        m_version = version;
    }
}

// Returns whether the state is that of the connection's file. If the file at the path was replaced before the
// connection was opened again, it isn't, and is opened again.
bool CStoredTexts::IsSameFile()
{
    ForgetFormerOpening();
    m_iOpening = m_statements.GetOpening();
    if (m_eMatch == CFileState::Unknown)
        m_eMatch = m_state.Match();
    if (m_eMatch == CFileState::Other && m_iOpening != m_iOpened) {
        m_state.Open(m_statements.GetPath());
        m_iOpened = m_iOpening;
        m_eMatch = m_state.Match();
    }
    return m_eMatch == CFileState::Same;
}

void CStoredTexts::ForgetFormerOpening()
{
    if (m_statements.GetOpening() == m_iOpening)
        return;
    Forget();
    m_iOpening = -1;
    m_eMatch = CFileState::Unknown;
}

// Asks for the text of the area itself.
CStoredTexts::EAnswer CStoredTexts::Read(QString &text, int language, const QString &area, const QString &key)
{
    EAnswer answer = Missing;
    const bool done = m_statements.Select(GetSelection(), {area, key, language}, true,
                                          [this, &text, &answer](const QSqlQuery &query, const QStringList &) {
                                              ReadVersion();
                                              text = query.value(0).toString();
                                              answer = Found;
                                          });
    return done ? answer : Refused;
}

// Remembers the texts that the area itself has, and returns the names of the others.
QVector<CStoredTexts::SName> CStoredTexts::ReadAll(int language, const QString &area, const QVector<SName> &names)
{
    if (names.isEmpty())
        return {};
    QJsonArray keys;
    for (const SName &name : names)
        keys.append(name.strKey.toLower());
    QVector<bool> found(names.size(), false);
    m_statements.Select(GetSelectionOfAll(),
                        {QString::fromUtf8(QJsonDocument(keys).toJson(QJsonDocument::Compact)), area, language}, true,
                        [&](QSqlQuery &query, const QStringList &) {
                            do {
                                const int index = query.value(0).toInt();
                                if (!std::exchange(found[index], true)) // the first row counts
                                    Remember({language, names.at(index)}, query.value(1).toString(), true);
                            } while (query.next());
                        });
    QVector<SName> others;
    for (int index = 0; index < names.size(); ++index) {
        if (!found.at(index))
            others.append(names.at(index));
    }
    return others;
}

void CStoredTexts::Use(const SName &name)
{
    m_used.append(name);
    if (m_used.size() > 2 * MOST_AHEAD)
        m_used = m_used.mid(MOST_AHEAD);
}

// Returns each of the latest once.
QVector<CStoredTexts::SName> CStoredTexts::TakeUsed()
{
    QVector<SName> used;
    QSet<SName> seen;
    for (auto name = m_used.crbegin(); name != m_used.crend() && used.size() < MOST_AHEAD; ++name) {
        if (!IsPlain(name->strKey) || seen.contains(*name))
            continue;
        seen.insert(*name);
        used.append(*name);
    }
    m_used.clear();
    return used;
}

void CStoredTexts::Remember(const SEntry &entry, const QString &text, bool found)
{
    if (m_bKnown)
        (found ? m_texts : m_missing)
            .insert(entry, new QString(text),
                    ENTRY + entry.name.strArea.size() + entry.name.strKey.size() + text.size());
}

void CStoredTexts::Forget()
{
    m_texts.clear();
    m_missing.clear();
}
