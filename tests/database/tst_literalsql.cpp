// CLocalDB does what SQL text with the values in it would do: random operations on two files, in one of them by such
// a text. PLUGININTERFACE_OPERATIONS=20000 makes so many instead of some thousand, PLUGININTERFACE_SEED others.

#include <database/LocalDB.h>
#include <support/Literal.h>

#include <QDate>
#include <QRandomGenerator>
#include <QSqlRecord>
#include <QUrl>
#include <QtTest>

#include <functional>

using TRow = QHash<QString, QVariant>;
using TRows = QList<TRow>;

namespace {

#ifdef SANITIZED
constexpr int USUAL_OPERATIONS = 1000;
#else
constexpr int USUAL_OPERATIONS = 4000;
#endif
constexpr int OPERATIONS_A_CHECK = 50;
constexpr int MOST_ROWS = 200;

const QStringList TABLES{"tbl_a"_s, "tbl_b"_s};
const QStringList MADE{
    "CREATE TABLE tbl_a (id INTEGER PRIMARY KEY, text TEXT, number INTEGER, real REAL, any, data BLOB)"_s,
    "CREATE TABLE tbl_b (id INTEGER, text CHAR(8) NOT NULL, number NUMERIC DEFAULT 7, real REAL,"
    " any TEXT DEFAULT 'd', data BLOB, PRIMARY KEY(id, text))"_s};

// The text of a value as a literal. SQL text ends at a NUL, and SQLite combines half a surrogate pair with what
// follows.
QString ToLiteral(const QVariant &value)
{
    QString text = value.toString();
    if (!text.contains(QChar(0)) && text.isValidUtf16())
        return u'\'' + CLocalDB::Escape(text) + u'\'';
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i).isSurrogate() && !text.mid(i, 2).isValidUtf16())
            text[i] = QChar::ReplacementCharacter;
        else if (text.at(i).isHighSurrogate())
            ++i;
    }
    return "CAST(x'"_s + QString::fromLatin1(text.toUtf8().toHex()) + "' AS TEXT)"_s;
}

QString Equations(const TRow &pairs, const QString &separator)
{
    QStringList equations;
    for (auto pair = pairs.cbegin(); pair != pairs.cend(); ++pair)
        equations.append(pair.key() + u'=' + ToLiteral(*pair));
    return equations.join(separator);
}

QString Condition(const TRow &where)
{
    return where.isEmpty() ? QString() : " WHERE "_s + Equations(where, " AND "_s);
}

// The file on which SQL text works.
class CLiteral
{
public:
    explicit CLiteral(const QString &path)
        : m_connection(QSqlDatabase::addDatabase("QSQLITE"_s, path))
    {
        m_connection.setDatabaseName(path);
        m_connection.open();
    }

    bool Exec(const QString &sql) { return !m_connection.exec(sql).lastError().isValid(); }

    bool Select(TRows &rows, const QString &table, const QStringList &fields, const TRow &where, unsigned int limit)
    {
        QSqlQuery query(m_connection);
        const QString columns = fields.isEmpty() ? "*"_s : fields.join(", "_s);
        if (table.isEmpty() || !query.exec("SELECT "_s + columns + " FROM '"_s + table + u'\'' + Condition(where) +
                                           (limit > 0 ? " LIMIT %1"_s.arg(limit) : QString())))
            return false;
        while (query.next()) {
            TRow row;
            for (int column = 0; column < query.record().count(); ++column)
                row.insert(query.record().fieldName(column), query.value(column));
            rows.append(row);
        }
        return !rows.isEmpty();
    }

    bool Insert(const QString &verb, const QString &table, const TRow &values)
    {
        QStringList columns, literals;
        for (auto pair = values.cbegin(); pair != values.cend(); ++pair) {
            columns.append(u'\'' + pair.key() + u'\'');
            literals.append(ToLiteral(*pair));
        }
        return !table.isEmpty() && !values.isEmpty() &&
               Exec(verb + " INTO '"_s + table + "' ("_s + columns.join(u',') + ") VALUES ("_s + literals.join(u',') +
                    u')');
    }

    bool Update(const QString &table, const TRow &values, const TRow &where)
    {
        return Exec("UPDATE '"_s + table + "' SET "_s + Equations(values, ", "_s) + Condition(where));
    }

    bool Delete(const QString &table, const TRow &where)
    {
        return Exec("DELETE FROM '"_s + table + u'\'' + Condition(where));
    }

private:
    QSqlDatabase m_connection;
};

// What is drawn for an operation.
class CDrawn
{
public:
    explicit CDrawn(quint32 seed)
        : m_random(seed)
    {
    }

    int Below(int end) { return m_random.bounded(end); }
    bool IsRare() { return Below(20) == 0; }

    QString Table() { return IsRare() ? Of({QString(), "tbl_none"_s, "tbl'a"_s, "a?"_s}) : TABLES.at(Below(2)); }

    QString Column()
    {
        return IsRare() ? Of({"none"_s, "id?"_s, "te'xt"_s, QString(), "1"_s})
                        : Of({"id"_s, "id"_s, "text"_s, "number"_s, "real"_s, "any"_s, "data"_s, "extra"_s});
    }

    QStringList Fields()
    {
        QStringList fields;
        for (int number = Below(4); number > 0; --number)
            fields.append(IsRare()
                              ? Of({"MAX(number)"_s, "hex(text)"_s, "typeof(any)"_s, "'a?:b'"_s, "COUNT(*) AS n"_s})
                              : Column());
        return fields;
    }

    QVariant Value()
    {
        switch (Below(12)) {
        case 0:
            return Below(20);
        case 1:
            return (Below(2000) - 1000) / 8.;
        case 2:
            return quint64(-1) - quint64(Below(3));
        case 3:
            return std::numeric_limits<qint64>::min() + Below(3);
        case 4:
            return Below(2) == 0 ? QVariant(QString()) : Below(2) == 0 ? QVariant(QLatin1String("")) : QVariant();
        case 5:
            return QDate(2026, 1 + Below(12), 1);
        case 6:
            return Below(2) == 0 ? QVariant(true) : QVariant(QUrl("http://a/?b=%27"_s));
        case 7:
            return QByteArray("a\xff\0b", 4).left(Below(5));
        default:
            return Text();
        }
    }

    TRow Pairs(int most)
    {
        TRow pairs;
        for (int number = Below(most + 1); number > 0; --number)
            pairs.insert(Column(), Value());
        return pairs;
    }

private:
    QString Of(const QStringList &from) { return from.at(Below(int(from.size()))); }

    QString Text()
    {
        static const QStringList pieces{"a"_s,
                                        "b"_s,
                                        "'"_s,
                                        "''"_s,
                                        "\""_s,
                                        "\\"_s,
                                        "%"_s,
                                        "?"_s,
                                        ":a"_s,
                                        "5"_s,
                                        " "_s,
                                        "\n"_s,
                                        "; --"_s,
                                        "\u00df"_s,
                                        "\ufeff"_s,
                                        "1e3"_s,
                                        QString(QChar(0)),
                                        QString(QChar(0xd83c)),
                                        QString(QChar(0xdca1)),
                                        "\U0001f0a1"_s};
        QString text;
        for (int number = Below(4); number > 0; --number)
            text += Of(pieces);
        return text;
    }

    QRandomGenerator m_random;
};

TRows Sorted(TRows rows)
{
    const auto toText = [](const TRow &row) {
        QStringList pairs;
        for (auto pair = row.cbegin(); pair != row.cend(); ++pair)
            pairs.append(pair.key() + u'=' + pair->toString());
        pairs.sort();
        return pairs.join(u',');
    };
    std::sort(rows.begin(), rows.end(),
              [&](const TRow &left, const TRow &right) { return toText(left) < toText(right); });
    return rows;
}

} // namespace

class tst_literalsql : public QObject
{
    Q_OBJECT

    // Both files are changed, and answer the same.
    bool Change(const QString &sql) { return m_database->Exec(sql) == m_literal->Exec(sql); }

    bool Operate(CDrawn &drawn)
    {
        const QString table = drawn.Table();
        const int kind = drawn.Below(40);
        if (kind < 12) {
            const QString verb = kind < 8 ? "INSERT"_s : "INSERT OR REPLACE"_s;
            const TRow values = drawn.Pairs(6);
            const bool done =
                kind < 8 ? m_database->Insert(table, values) : m_database->InsertOrReplace(table, values);
            m_iDone += done ? 1 : 0;
            return done == m_literal->Insert(verb, table, values);
        }
        const TRow where = drawn.Pairs(2);
        if (kind < 24) {
            const QStringList fields = drawn.Fields();
            const unsigned int limit = drawn.IsRare() ? unsigned(drawn.Below(3)) : 0;
            TRows rows, expected;
            const bool done = m_database->SelectAll(rows, table, fields, where, limit);
            m_iDone += done ? 1 : 0;
            return done == m_literal->Select(expected, table, fields, where, limit) && rows == expected;
        }
        const TRow values = drawn.Pairs(3);
        if (kind < 30)
            return m_database->Update(table, values, where) == m_literal->Update(table, values, where);
        if (kind < 36) {
            TRows found;
            return m_database->InsertOrUpdate(table, values, where) ==
                   (m_literal->Select(found, table, {}, where, 1) ? m_literal->Update(table, values, where)
                                                                  : m_literal->Insert("INSERT"_s, table, values));
        }
        if (kind < 38 && !where.isEmpty())
            return m_database->Delete(table, where) == m_literal->Delete(table, where);
        return ChangeTable(drawn);
    }

    // Prepared statements have to follow.
    bool ChangeTable(CDrawn &drawn)
    {
        const int table = drawn.Below(int(TABLES.size()));
        switch (drawn.Below(5)) {
        case 0:
            return Change("DROP TABLE "_s + TABLES.at(table)) && Change(MADE.at(table));
        case 1:
            return Change("ALTER TABLE %1 ADD COLUMN extra INTEGER DEFAULT 5"_s.arg(TABLES.at(table)));
        case 2:
            return Change("ALTER TABLE %1 RENAME COLUMN any TO extra"_s.arg(TABLES.at(table))) &&
                   Change("ALTER TABLE %1 RENAME COLUMN extra TO any"_s.arg(TABLES.at(table)));
        case 3:
            return Change("CREATE INDEX IF NOT EXISTS idx_%1 ON %1 (number)"_s.arg(TABLES.at(table)));
        default:
            QSqlDatabase::database(m_strPath, false).close();
            return true;
        }
    }

    // All of both tables, by value, type and bytes.
    bool IsAlike()
    {
        bool alike = true;
        for (const QString &table : TABLES) {
            const QStringList fields{"*"_s,
                                     "hex(text) AS h"_s,
                                     "hex(any) AS i"_s,
                                     "typeof(id) AS a"_s,
                                     "typeof(text) AS b"_s,
                                     "typeof(number) AS c"_s,
                                     "typeof(real) AS d"_s,
                                     "typeof(any) AS e"_s,
                                     "typeof(data) AS f"_s};
            TRows rows, expected;
            m_database->SelectAll(rows, table, fields, {}, 0);
            m_literal->Select(expected, table, fields, {}, 0);
            alike = alike && Sorted(rows) == Sorted(expected);
            if (rows.size() > MOST_ROWS)
                alike = alike && m_database->Delete(table, {}) && m_literal->Delete(table, {});
        }
        return alike;
    }

    QTemporaryDir m_dir;
    QString m_strPath = m_dir.filePath("bound.sqlite"_s);
    std::unique_ptr<CLocalDB> m_database;
    std::unique_ptr<CLiteral> m_literal;
    int m_iDone = 0; // inserts and selections that weren't refused

private Q_SLOTS:
    void DoesTheSame()
    {
        m_database = std::make_unique<CLocalDB>(m_strPath, false, true);
        m_literal = std::make_unique<CLiteral>(m_dir.filePath("literal.sqlite"_s));
        QVERIFY(m_database->Init());
        for (const QString &sql : MADE)
            QVERIFY(Change(sql));
        bool given = false;
        const int asked = qEnvironmentVariableIntValue("PLUGININTERFACE_OPERATIONS", &given);
        const int operations = given ? asked : USUAL_OPERATIONS;
        CDrawn drawn(quint32(qEnvironmentVariableIntValue("PLUGININTERFACE_SEED")));
        for (int number = 0; number < operations; ++number) {
            QVERIFY2(Operate(drawn), QByteArray::number(number));
            if (number % OPERATIONS_A_CHECK == 0 || number == operations - 1)
                QVERIFY2(IsAlike(), QByteArray::number(number));
        }
        QVERIFY2(m_iDone > operations / 10, QByteArray::number(m_iDone)); // much isn't refused
    }

    // What is left of a selection keeps nobody from writing, and nothing is prepared twice.
    void LeavesTheFileFree()
    {
        TRow row;
        QVERIFY(m_database->Insert("tbl_a"_s, {{"text"_s, "x"_s}}) &&
                m_database->Insert("tbl_a"_s, {{"text"_s, "x"_s}}));
        QVERIFY(m_database->SelectOne(row, "tbl_a"_s, {}, {{"text"_s, "x"_s}})); // the first of two
        QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE"_s, "other"_s);
        other.setDatabaseName(m_strPath);
        other.setConnectOptions("QSQLITE_BUSY_TIMEOUT=0"_s);
        QVERIFY(other.open());
        QVERIFY(!other.exec("BEGIN EXCLUSIVE"_s).lastError().isValid());
        QVERIFY(!other.exec("COMMIT"_s).lastError().isValid());
        // A driver that goes takes its statements along.
        QSqlDatabase::removeDatabase(m_strPath);
        QVERIFY(!m_database->SelectOne(row, "tbl_a"_s, {}, {{"text"_s, "x"_s}}));
        QVERIFY(m_database->Init());
        QVERIFY(m_database->SelectOne(row, "tbl_a"_s, {}, {{"text"_s, "x"_s}}));
    }
};

QTEST_GUILESS_MAIN(tst_literalsql)
#include "tst_literalsql.moc"
