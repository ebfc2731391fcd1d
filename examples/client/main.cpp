#include "MainWindow.h"

#include <files/Console.h>
#include <files/Pathes.h>
#include <plugin/GlobalDefines.h>
#include <tour/Tour.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDesktopServices>
#include <QDir>
#include <QTextStream>

#include <optional>

namespace {

struct SOptions
{
    QString strServer;
    quint16 usPort = 0;
    std::optional<STourOptions> tour;
};

SOptions ParseCommandLine(const QApplication &application)
{
    const QCommandLineOption server(QStringLiteral("server"), QStringLiteral("Address of the game server."),
                                    QStringLiteral("host:port"), QStringLiteral("127.0.0.1:17171"));
    const QCommandLineOption tour(QStringLiteral("tour"),
                                  QStringLiteral("Show everything by itself and leave screenshots in a folder."),
                                  QStringLiteral("folder"));
    const QCommandLineOption gameServer(QStringLiteral("game-server"),
                                        QStringLiteral("Program that the tour starts as game server."),
                                        QStringLiteral("program"));
    const QCommandLineOption tables(QStringLiteral("tables"), QStringLiteral("Data file of that game server."),
                                    QStringLiteral("file"));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Example client: a host for the plugins of its installation."));
    parser.addHelpOption();
    parser.addOptions({server, tour, gameServer, tables});
    parser.process(application);

    SOptions options;
    const QUrl address(QLatin1String("tcp://") + parser.value(server), QUrl::StrictMode);
    options.strServer = address.host();
    options.usPort = static_cast<quint16>(address.port(0));
    if (options.strServer.isEmpty() || options.usPort == 0) {
        QTextStream(stderr) << "--server wants host:port, not \"" << parser.value(server) << "\"\n";
        parser.showHelp(2);
    }
    if (parser.isSet(tour)) {
        const QDir here;
        options.tour =
            STourOptions{here.absoluteFilePath(parser.value(tour)), here.absoluteFilePath(parser.value(gameServer)),
                         here.absoluteFilePath(parser.value(tables)), CTour::FindFreePort()};
        options.usPort = options.tour->usPort;
    }
    return options;
}

void PrintMessage(const CConsole::SConsoleMessage &message)
{
    QTextStream(stderr) << message.dtTimestamp.toString(Qt::ISODateWithMs) << ' ' << message.strMessage << '\n';
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication application(argc, argv);
    const SOptions options = ParseCommandLine(application);
    // The installation is the one that the program lies in, wherever it was started from.
    QDir::setCurrent(QApplication::applicationDirPath());

    GlobalDefines::RegisterQML();
    QObject::connect(CConsole::GetInstance(), &CConsole::signal_MessageAdded, &PrintMessage);

    int result = 0;
    {
        CHost host(options.strServer, options.usPort);
        QObject::connect(&host, &CHost::signal_PageRequested, &QDesktopServices::openUrl);
        CMainWindow window(host); // before the plugins, which may ask for something at once
        host.StartPlugins(Pathes::Plugins());
        window.CreateViews();
        window.show();
        host.OpenLink();
        result = options.tour ? CTour(*options.tour, host, window).Run() : QApplication::exec();
        host.Shutdown();
    }
    CConsole::DestroyInstance();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return result;
}
