#pragma once

#include <support/Literal.h>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>

/// The first column of what a statement selects, as another program reads it: by a connection of its own, which is
/// closed again.
inline QStringList ReadFirstColumn(const QString &file, const QString &sql)
{
    QStringList rows;
    {
        QSqlDatabase reader = QSqlDatabase::addDatabase("QSQLITE"_s, "reader"_s);
        reader.setDatabaseName(file);
        if (reader.open()) {
            QSqlQuery query(sql, reader);
            while (query.next())
                rows.append(query.value(0).toString());
        }
    }
    QSqlDatabase::removeDatabase("reader"_s);
    return rows;
}
