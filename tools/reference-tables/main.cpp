// Writes the reference pages of the documentation to a folder. The current directory has to be the client's folder of
// an installation, in which the program creates the users' databases.

#include "Databases.h"
#include "Tables.h"

#include <files/FileHelpers.h>

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QString folder = QCoreApplication::arguments().value(1);
    const QPair<const char *, QString> pages[] = {
        {"settings.md", Tables::Settings()},
        {"events.md", Tables::Events()},
        {"models.md", Tables::Models()},
        {"databases.md", Databases::Page()},
    };
    for (const auto &[name, page] : pages) {
        const QString path = folder + QLatin1Char('/') + QLatin1String(name);
        if (folder.isEmpty() || page.isEmpty() || !Globals::WriteToFile(path, page.toUtf8(), -1, -1)) {
            std::fprintf(stderr, "%s can't be made\n", qPrintable(path));
            return 1;
        }
    }
    return 0;
}
