#include "SettingsRows_p.h"

#include <database/SettingsDB.h>

#include <QSqlError>
#include <QSqlQuery>

namespace {

const QLatin1String SQLITE_BUSY("5");

// User, area and key in lower case.
using TRowKey = QStringList;

struct SRow
{
    bool bExists = false;
    bool bChanged = false;
    QString strValue;
    qint64 iTimestamp = 0;
};

// A null text would be bound as NULL, which is no row's key and no setting's value.
QString NeverNull(const QString &text)
{
    return text.isNull() ? QLatin1String("") : text;
}

TRowKey KeyOf(const CSettings::SSetting &setting)
{
    return {NeverNull(setting.strUser.toLower()), NeverNull(setting.strArea.toLower()),
            NeverNull(setting.strKey.toLower())};
}

bool IsLocked(const QSqlQuery &query)
{
    return query.lastError().nativeErrorCode() == SQLITE_BUSY;
}

void Bind(QSqlQuery &query, const TRowKey &key)
{
    for (int column = 0; column < key.size(); ++column)
        query.bindValue(column, key.at(column));
}

// A row that can't be read counts as one that isn't there.
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

} // namespace

bool SettingsRows::Write(CSettingsDB &database, const QList<CSettings::SSetting> &rows, qint64 now)
{
    if (!database.IsOpen())
        return true;
    QSqlQuery select = database.GetQuery();
    select.prepare(QLatin1String("SELECT URS_cValue FROM ") + CSettingsDB::strTableName +
                   QLatin1String(" WHERE URS_cUser = ? AND URS_cArea = ? AND URS_cKey = ?"));
    QHash<TRowKey, SRow> known;
    for (const CSettings::SSetting &setting : rows) {
        const TRowKey key = KeyOf(setting);
        auto row = known.find(key);
        if (row == known.end()) {
            row = known.insert(key, ReadRow(select, key));
            if (IsLocked(select))
                return false;
        }
        const QString value = NeverNull(setting.vValue.toString());
        if (!row->bExists || row->strValue != value)
            *row = {true, true, value, setting.iTimestamp < 0 ? now : setting.iTimestamp};
    }

    QSqlQuery replace = database.GetQuery();
    replace.prepare(QLatin1String("INSERT OR REPLACE INTO ") + CSettingsDB::strTableName +
                    QLatin1String(" (URS_cUser, URS_cArea, URS_cKey, URS_cValue, URS_iTimestamp)"
                                  " VALUES (?, ?, ?, ?, ?)"));
    for (auto row = known.cbegin(); row != known.cend(); ++row) {
        if (!row->bChanged)
            continue;
        Bind(replace, row.key());
        replace.bindValue(3, row->strValue);
        replace.bindValue(4, row->iTimestamp);
        if (!replace.exec() && IsLocked(replace))
            return false;
    }
    return true;
}
