#pragma once

#include "support.h"

#include <QHash>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

namespace Bench {

using TRow = QHash<QString, QVariant>;

/// Runs a query as a program would write it by hand: SQL text that contains the values, and each row as a hash.
inline QList<TRow> RunLiteral(const QSqlDatabase &connection, const QString &sql)
{
    QSqlQuery query(connection);
    query.setForwardOnly(true);
    Require(query.exec(sql), qUtf8Printable(sql));
    const QSqlRecord record = query.record();
    QStringList names;
    for (int column = 0; column < record.count(); ++column)
        names.append(record.fieldName(column));
    QList<TRow> rows;
    while (query.next()) {
        TRow row;
        row.reserve(names.size());
        for (int column = 0; column < names.size(); ++column)
            row.insert(names.at(column), query.value(column));
        rows.append(row);
    }
    return rows;
}

} // namespace Bench
