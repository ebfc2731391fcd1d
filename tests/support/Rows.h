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

/// Rows of texts, in the column "in": "a|b;c|d" is two rows, whose names are "a|b" and "c|d".
inline void AddRows(const QString &text)
{
    QTest::addColumn<QStringList>("in");
    const QStringList rows = text.split(QLatin1Char(';'));
    for (const QString &row : rows)
        QTest::newRow(qPrintable(row)) << row.split(QLatin1Char('|'));
}
