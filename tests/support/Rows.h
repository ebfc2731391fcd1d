#pragma once

#include <QStringList>
#include <QTest>

#include <initializer_list>
#include <tuple>

/// Adds the columns, and for each row its name and one value for each column:
/// \code AddRows<QString, int>({"text", "length"}, {{"nothing", ""_s, 0}, {"a letter", "a"_s, 1}}); \endcode
template <typename... Values>
void AddRows(std::initializer_list<const char *> columns,
             std::initializer_list<std::tuple<const char *, Values...>> rows)
{
    auto column = columns.begin();
    (QTest::addColumn<Values>(*column++), ...);
    for (const auto &row : rows)
        std::apply([](const char *name, const auto &...values) { (QTest::newRow(name) << ... << values); }, row);
}

/// "a|b;c|d" is two rows; const, so that a loop over them detaches nothing.
inline const QList<QStringList> ToRows(const QString &text)
{
    QList<QStringList> rows;
    const QStringList lines = text.split(QLatin1Char(';'));
    for (const QString &row : lines)
        rows.append(row.split(QLatin1Char('|')));
    return rows;
}

/// Such rows, in the column "in"; their names are "a|b" and "c|d".
inline void AddRows(const QString &text)
{
    QTest::addColumn<QStringList>("in");
    for (const QStringList &row : ToRows(text))
        QTest::newRow(qPrintable(row.join(QLatin1Char('|')))) << row;
}
