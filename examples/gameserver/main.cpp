#include "GameServer.h"
#include "MadeTables.h"
#include "TableFile.h"

#include <protocol/Options.h>

#include <QCoreApplication>
#include <QDateTime>

#include <cstdio>
#include <limits>

namespace {

int Fail(const QString &error)
{
    std::fprintf(stderr, "gameserver: %s\n", qUtf8Printable(error));
    return 1;
}

struct SOptions
{
    QString strData;
    QString strAccounts;
    QString strWebServer;
    QString strWebKey;
    quint32 uiTables = 0;
    quint32 uiPort = 0;
    quint32 uiSeed = 0;
    quint32 uiIdle = 0;
};

bool ReadOptions(const QCoreApplication &application, SOptions &options, QString &error)
{
    const QCommandLineOption data(QStringLiteral("data"), QStringLiteral("JSON file with the tables."),
                                  QStringLiteral("file"));
    const QCommandLineOption made(
        QStringLiteral("tables"),
        QStringLiteral("Serve at least this many tables, of which those that the file lacks "
                       "are made up, and let players move at each of them in each second. "
                       "At most 10000. Without it, --data is required."),
        QStringLiteral("number"), QStringLiteral("0"));
    const QCommandLineOption accounts(QStringLiteral("accounts"),
                                      QStringLiteral("JSON file with the accounts; nobody can log in without it."),
                                      QStringLiteral("file"));
    const QCommandLineOption port(QStringLiteral("port"),
                                  QStringLiteral("Port on 127.0.0.1; 0, the default, is any."),
                                  QStringLiteral("number"), QStringLiteral("0"));
    const QCommandLineOption seed(
        QStringLiteral("seed"),
        QStringLiteral("Seed for made-up tables, the players' moves and the jackpot; default 1."),
        QStringLiteral("number"), QStringLiteral("1"));
    const QCommandLineOption idle(QStringLiteral("idle-ms"),
                                  QStringLiteral("Milliseconds that a packet may stay half-sent; default 15000."),
                                  QStringLiteral("number"), QStringLiteral("15000"));
    const QCommandLineOption web(QStringLiteral("web-server"),
                                 QStringLiteral("Web server that gives sessions; without it nobody gets one."),
                                 QStringLiteral("host:port"));
    const QCommandLineOption webKey(QStringLiteral("web-key"), QStringLiteral("Secret that it shares with that."),
                                    QStringLiteral("text"));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Serves a list of poker tables, and the accounts of their players, to clients on this machine\n"
        "until a signal ends it.\n"
        "Prints \"listening on PORT\" once clients can connect. Clients that come and go, and why, are\n"
        "told on standard error. The exit code is 1 if the server cannot start."));
    parser.addHelpOption();
    parser.addOptions({data, made, accounts, port, seed, idle, web, webKey});
    parser.process(application);

    options.strData = parser.value(data);
    options.strAccounts = parser.value(accounts);
    options.strWebServer = parser.value(web);
    options.strWebKey = parser.value(webKey);
    if (options.strData.isEmpty() && !parser.isSet(made))
        error = QStringLiteral("--data is missing; see --help");
    else if (!parser.positionalArguments().isEmpty())
        error = QStringLiteral("unknown argument \"%1\"; see --help").arg(parser.positionalArguments().constFirst());
    return error.isEmpty() &&
           Options::ReadNumber(parser, made, 0, LobbyProtocol::MAX_TABLES, options.uiTables, error) &&
           Options::ReadNumber(parser, port, 0, std::numeric_limits<quint16>::max(), options.uiPort, error) &&
           Options::ReadNumber(parser, seed, 0, std::numeric_limits<quint32>::max(), options.uiSeed, error) &&
           Options::ReadNumber(parser, idle, 1, std::numeric_limits<qint32>::max(), options.uiIdle, error);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    SOptions options;
    QVector<LobbyProtocol::STable> tables;
    CAccounts accounts;
    QString error;
    const auto now = static_cast<quint32>(QDateTime::currentSecsSinceEpoch());
    if (!ReadOptions(application, options, error) ||
        (!options.strData.isEmpty() && !LoadTables(options.strData, now, tables, error)) ||
        (!options.strAccounts.isEmpty() && !accounts.Load(options.strAccounts, error)))
        return Fail(error);
    AddMadeTables(static_cast<int>(options.uiTables), options.uiSeed, now, tables);

    CGameServer server(tables, accounts, options.uiSeed, static_cast<int>(options.uiIdle));
    if (options.uiTables > 0)
        server.MovePlayersEverywhere();
    server.SetWebServer(options.strWebServer, options.strWebKey);
    if (!server.Listen(static_cast<quint16>(options.uiPort)))
        return Fail(QStringLiteral("port %1: %2").arg(options.uiPort).arg(server.GetError()));

    // The program that has started the server reads the port from this line. Nothing is stored that a signal could
    // lose, so the default action of SIGTERM and SIGINT is the right end.
    std::printf("listening on %d\n", int(server.GetPort()));
    std::fflush(stdout);
    return QCoreApplication::exec();
}
