#include "Tour.h"
#include "WatchedApplication.h"

#include <client/Client.h>
#include <client/Look.h>
#include <plugin/GlobalDefines.h>

#include <QCommandLineParser>
#include <QDir>
#include <QTextStream>

namespace {

bool ReadOptions(const QApplication &application, STourOptions &options)
{
    const auto make = [](const char *name, const char *meaning, const char *value) {
        return QCommandLineOption(QString::fromLatin1(name), QString::fromLatin1(meaning),
                                  QString::fromLatin1(value));
    };
    const auto gameServer = make("game-server", "Program to start as game server.", "program");
    const auto tables = make("tables", "Its tables.", "file");
    const auto accounts = make("accounts", "Its accounts.", "file");
    const auto webServer = make("web-server", "Program to start as web server.", "program");
    const auto pictures = make("pictures", "Its avatars.", "folder");
    const auto keys = make("keys", "Their certificate and key, and authority.pem, which vouches for it.", "folder");
    const auto port = make("second-machine", "Another tour's client: takes the steps that its input names.", "port");
    const QCommandLineOption bigLobby(QStringLiteral("big-lobby"),
                                      QStringLiteral("Only the steps with very many tables."));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Shows the example client by itself, prints what was seen, and leaves screenshots in a folder.\n"
        "The exit code is 1 if something doesn't happen."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("folder"), QStringLiteral("For screenshots and installations."));
    parser.addOptions({gameServer, tables, accounts, webServer, pictures, keys, port, bigLobby});
    parser.process(application);
    const auto path = [&](const QCommandLineOption &option) { return QDir().absoluteFilePath(parser.value(option)); };
    const bool isSecond = parser.isSet(port);
    options = {QDir().absoluteFilePath(parser.positionalArguments().value(0)),
               path(gameServer),
               path(tables),
               path(accounts),
               path(webServer),
               path(pictures),
               path(keys),
               isSecond ? static_cast<quint16>(parser.value(port).toUInt()) : CTour::FindFreePort(),
               CTour::FindFreePort(),
               isSecond,
               parser.isSet(bigLobby)};
    return parser.positionalArguments().size() == 1;
}

} // namespace

int main(int argc, char *argv[])
{
    Look::FollowScreens();
    CWatchedApplication application(argc, argv);
    STourOptions options;
    if (!ReadOptions(application, options)) {
        QTextStream(stderr) << "One folder is needed; see --help\n";
        return 2;
    }
    QDir::setCurrent(QApplication::applicationDirPath());
    if (!options.bSecondMachine)
        CTour::MakeInstallation(options.strOutput, options.usWebPort, options.strKeys);
    CTour::EnterInstallation(options.strOutput);
    GlobalDefines::RegisterQML();
    CClient client({QStringLiteral("127.0.0.1"), options.usPort});
    return CTour(options, client.GetHost(), client.GetWindow()).Run();
}
