// A second process on a file: crashchild report|lock|climb|insert FILE
//
// "report" climbs without the rights of root and prints the answer and how many rows tbl_step1 holds. The others
// print a line for whatever they have done and go on until killed.

#include "Ladder.h"

#include <QCoreApplication>

#include <cstdio>
#include <unistd.h>

namespace {

void Announce(const char *what, int number)
{
    std::printf("%s %d\n", what, number);
    std::fflush(stdout);
}

int Report(CLadder &database)
{
    if (geteuid() == 0 && setuid(65534) != 0)
        return 1;
    const bool done = database.Init();
    QList<QHash<QString, QVariant>> rows;
    database.SelectAll(rows, QStringLiteral("tbl_step1"), {}, {}, 0);
    Announce(done ? "true" : "false", rows.size());
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QString mode = application.arguments().value(1);
    CLadder database(application.arguments().value(2));
    if (mode == QLatin1String("report"))
        return Report(database);

    int inserted = 0;
    database.m_iRows = 50;
    database.m_strText = QString(2000, QLatin1Char('x'));
    database.m_Inserted = [&] {
        if (inserted == 0) // a small cache, so that the file is written to long before the commit
            database.Exec(QStringLiteral("PRAGMA cache_size = 5"));
        Announce("row", ++inserted);
    };
    const bool done = database.Init();
    if (mode == QLatin1String("lock"))
        Announce("locked", database.Exec(QStringLiteral("BEGIN EXCLUSIVE")));
    Announce("open", done);
    for (int batch = 1; mode == QLatin1String("insert"); ++batch) {
        database.StartTransaction();
        database.Fill(QStringLiteral("tbl_step1"));
        database.EndTransaction(true);
        Announce("batch", batch);
    }
    return pause();
}
