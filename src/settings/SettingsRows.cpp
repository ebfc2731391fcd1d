#include "SettingsRows_p.h"

#include <database/BoundText_p.h>
#include <database/SettingsDB.h>
#include <database/SqliteResult_p.h>
#include <database/Transaction_p.h>

#include <QSqlQuery>

namespace {

// User, area and key in lower case.
using TRowKey = QStringList;

struct SRow
{
    bool bExists = false;
    bool bChanged = false;
    QString strValue;
    qint64 iTimestamp = 0;
};

TRowKey KeyOf(const CSettings::SSetting &setting)
{
    return {setting.strUser.toLower(), setting.strArea.toLower(), setting.strKey.toLower()};
}

// Returns whether the query failed but may succeed later.
bool CanBeRetried(const QSqlQuery &query)
{
    return SqliteResult::IsPassing(query.lastError());
}

void Bind(QSqlQuery &query, const TRowKey &key)
{
    for (int column = 0; column < key.size(); ++column)
        query.bindValue(column, BoundText::ToBind(key.at(column)));
}

// A row that can't be read counts as missing.
SRow ReadRow(QSqlQuery &select, const TRowKey &key)
{
    SRow row;
    Bind(select, key);
    if (select.exec() && select.next() && !select.isNull(0)) {
        row.bExists = true;
        row.strValue = select.value(0).toString();
    }
    select.finish();
    return row;
}

// Fills merged with the rows as they are to be written. Reads each from the file when it first occurs. Returns false
// if it has to be retried.
bool Merge(QHash<TRowKey, SRow> &merged, CSettingsDB &database, const QList<CSettings::SSetting> &rows, qint64 now)
{
    QSqlQuery select = database.GetQuery();
    select.prepare(QLatin1String("SELECT URS_cValue FROM ") + CSettingsDB::strTableName +
                   QLatin1String(" WHERE URS_cUser = ? AND URS_cArea = ? AND URS_cKey = ?"));
    for (const CSettings::SSetting &setting : rows) {
        if (CanBeRetried(select))
            return false;
        const TRowKey key = KeyOf(setting);
        auto row = merged.find(key);
        if (row == merged.end())
            row = merged.insert(key, ReadRow(select, key));
        if (row->bExists && setting.iTimestamp == SettingsRows::STORED_AGAIN && !setting.strUser.isEmpty())
            continue;
        const QString value = BoundText::Stored(setting.vValue.toString());
        if (!row->bExists || row->strValue != value || setting.iTimestamp == SettingsRows::STAMPED_ANEW)
            *row = {true, true, value, setting.iTimestamp < 0 ? now : setting.iTimestamp};
    }
    return !CanBeRetried(select);
}

// Returns false if it has to be retried.
bool WriteChanged(CSettingsDB &database, const QHash<TRowKey, SRow> &merged)
{
    QSqlQuery replace = database.GetQuery();
    replace.prepare(QLatin1String("INSERT OR REPLACE INTO ") + CSettingsDB::strTableName +
                    QLatin1String(" (URS_cUser, URS_cArea, URS_cKey, URS_cValue, URS_iTimestamp)"
                                  " VALUES (?, ?, ?, ?, ?)"));
    for (auto row = merged.cbegin(); row != merged.cend() && !CanBeRetried(replace); ++row) {
        if (!row->bChanged)
            continue;
        Bind(replace, row.key());
        replace.bindValue(3, BoundText::ToBind(row->strValue));
        replace.bindValue(4, row->iTimestamp);
        replace.exec();
    }
    return !CanBeRetried(replace);
}

} // namespace

bool SettingsRows::Write(CSettingsDB &database, const QList<CSettings::SSetting> &rows, qint64 now)
{
    if (!database.IsOpen())
        return true;
    CTransaction transaction(database);
    if (!transaction.IsBegun())
        return false;
    QHash<TRowKey, SRow> merged;
    if (!Merge(merged, database, rows, now) || !WriteChanged(database, merged))
        return false;
    return transaction.Commit() || !SqliteResult::IsPassing(transaction.GetError());
}
