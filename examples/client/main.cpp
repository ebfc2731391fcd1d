#include "Client.h"
#include "Look.h"

#include <plugin/GlobalDefines.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QTextStream>

int main(int argc, char *argv[])
{
    Look::FollowScreens();
    const QApplication application(argc, argv);
    const QCommandLineOption server(QStringLiteral("server"), QStringLiteral("Address of the game server."),
                                    QStringLiteral("host:port"), QStringLiteral("127.0.0.1:17171"));
    // The installation is the one that contains the program, wherever the program was started.
    const QCommandLineOption folder(QStringLiteral("folder"),
                                    QStringLiteral("Client folder of the installation, if not the program's own."),
                                    QStringLiteral("path"), QApplication::applicationDirPath());
    const QCommandLineOption authority(
        QStringLiteral("authority"),
        QStringLiteral("PEM file of the authorities that vouch for the servers, if not the installation's "
                       "authority.pem. Without either those count that the system trusts."),
        QStringLiteral("file"));
    const QCommandLineOption plain(
        QStringLiteral("plain"), QStringLiteral("Have the connection to the game server not encrypted, for a look at "
                                                "its bytes. Nobody can log in over it."));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Example client: a host for the plugins of its installation."));
    parser.addHelpOption();
    parser.addOptions({server, folder, authority, plain});
    parser.process(application);
    const QUrl address(QLatin1String("tcp://") + parser.value(server), QUrl::StrictMode);
    if (address.host().isEmpty() || address.port(0) == 0) {
        QTextStream(stderr) << "--server wants host:port, not \"" << parser.value(server) << "\"\n";
        parser.showHelp(2);
    }
    const QString authorityFile =
        parser.value(authority).isEmpty() ? QString() : QDir().absoluteFilePath(parser.value(authority));
    if (!QDir::setCurrent(parser.value(folder))) {
        QTextStream(stderr) << "no folder \"" << parser.value(folder) << "\"\n";
        return 2;
    }
    GlobalDefines::RegisterQML();
    const CClient client({address.host(), static_cast<quint16>(address.port()), authorityFile, parser.isSet(plain)});
    return QApplication::exec();
}
