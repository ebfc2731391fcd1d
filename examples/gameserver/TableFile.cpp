#include "TableFile.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <limits>

using LobbyProtocol::STable;

namespace {

constexpr quint32 MAX_U16 = std::numeric_limits<quint16>::max();
constexpr quint32 MAX_U32 = std::numeric_limits<quint32>::max();
constexpr quint32 MAX_STARTS_IN = 365 * 24 * 60 * 60;

/// One row of the file. The first thing found wrong with it stays; what is taken after it means nothing.
class CRow
{
public:
    explicit CRow(const QJsonObject &row)
        : m_row(row)
    {
    }

    bool Has(QLatin1String key) const { return m_row.contains(key); }

    void Check(bool good, QLatin1String key, const QString &wanted)
    {
        if (!good && m_strFault.isEmpty())
            m_strFault = QStringLiteral("\"%1\" has to be %2").arg(key, wanted);
    }

    quint32 TakeNumber(QLatin1String key, quint32 least, quint32 most)
    {
        const double number = m_row.take(key).toDouble(-1);
        const bool good = number >= least && number <= most;
        const auto whole = good ? static_cast<quint32>(number) : 0;
        Check(good && number - whole <= 0, key, QStringLiteral("a whole number from %1 to %2").arg(least).arg(most));
        return whole;
    }

    QString TakeText(QLatin1String key, int least, int most)
    {
        QString text = m_row.take(key).toString();
        Check(text.size() >= least && text.size() <= most, key,
              QStringLiteral("a text of %1 to %2 characters").arg(least).arg(most));
        return text;
    }

    // The library reads an unknown letter as a known one, which a file is not to rest on.
    template <typename Enum>
    Enum TakeLetter(QLatin1String key, Enum (*decode)(char))
    {
        const QString text = TakeText(key, 1, 1);
        const char letter = text.isEmpty() ? '\0' : text.at(0).toLatin1();
        const Enum value = decode(letter);
        Check(value == letter, key, QStringLiteral("a letter that is known"));
        return value;
    }

    GlobalDefines::GameType TakeGame(QLatin1String key)
    {
        const QString code = TakeText(key, 4, 4);
        const GlobalDefines::GameType game = Globals::GetGameType(code);
        char known[4];
        Globals::GetGameType(game, known);
        Check(code == QLatin1String(known, sizeof known), key, QStringLiteral("a game that is known"));
        return game;
    }

    /// Empty if all is well. To be asked last: what wasn't taken by then is a fault too.
    QString GetFault() const
    {
        if (!m_strFault.isEmpty() || m_row.isEmpty())
            return m_strFault;
        return QStringLiteral("\"%1\" is not a known key").arg(m_row.begin().key());
    }

private:
    QJsonObject m_row;
    QString m_strFault;
};

QString ReadTable(const QJsonValue &value, quint32 now, STable &table)
{
    if (!value.isObject())
        return QStringLiteral("not an object");

    CRow row(value.toObject());
    table.uiID = row.TakeNumber(QLatin1String("id"), 1, MAX_U32);
    table.strName = row.TakeText(QLatin1String("name"), 1, LobbyProtocol::MAX_NAME_LENGTH);
    table.eType = row.TakeLetter(QLatin1String("type"), &Globals::GetTableType);
    table.eGame = row.TakeGame(QLatin1String("game"));
    table.eLimit = row.TakeLetter(QLatin1String("limit"), &Globals::GetLimitType);
    table.eMoney = row.TakeLetter(QLatin1String("money"), &Globals::GetMoneyType);
    table.mvLow = row.TakeNumber(QLatin1String("low"), 0, MAX_U32);
    table.mvHigh = row.TakeNumber(QLatin1String("high"), 0, MAX_U32);
    table.usPlaces = static_cast<quint16>(row.TakeNumber(QLatin1String("places"), 2, MAX_U16));
    table.usPlayers = static_cast<quint16>(row.TakeNumber(QLatin1String("players"), 0, table.usPlaces));
    if (row.Has(QLatin1String("starts_in")))
        table.uiStart = now + row.TakeNumber(QLatin1String("starts_in"), 0, MAX_STARTS_IN);
    return row.GetFault();
}

bool ReadDocument(const QString &fileName, QJsonDocument &document, QString &error)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("%1: %2").arg(fileName, file.errorString());
        return false;
    }
    QJsonParseError fault;
    document = QJsonDocument::fromJson(file.readAll(), &fault);
    if (fault.error != QJsonParseError::NoError)
        error =
            QStringLiteral("%1: malformed at byte %2: %3").arg(fileName).arg(fault.offset).arg(fault.errorString());
    else if (!document.isArray())
        error = QStringLiteral("%1: not an array of tables").arg(fileName);
    else if (document.array().size() > LobbyProtocol::MAX_TABLES)
        error = QStringLiteral("%1: more than %2 tables").arg(fileName).arg(LobbyProtocol::MAX_TABLES);
    return error.isEmpty();
}

} // namespace

bool LoadTables(const QString &fileName, quint32 now, QVector<STable> &tables, QString &error)
{
    QJsonDocument document;
    if (!ReadDocument(fileName, document, error))
        return false;

    QSet<quint32> ids;
    const QJsonArray rows = document.array();
    for (int i = 0; i < rows.size(); ++i) {
        STable table;
        QString fault = ReadTable(rows.at(i), now, table);
        if (fault.isEmpty() && ids.contains(table.uiID))
            fault = QStringLiteral("id %1 is another row's already").arg(table.uiID);
        if (!fault.isEmpty()) {
            error = QStringLiteral("%1: row %2: %3").arg(fileName).arg(i + 1).arg(fault);
            return false;
        }
        ids.insert(table.uiID);
        tables.append(table);
    }
    return true;
}
