#include "GameServer.h"
#include "MadeTables.h"
#include "Passwords.h"
#include "TableFile.h"
#include "Tokens.h"

#include <protocol/Options.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QTextStream>

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
    QString strTokens;
    QUrl webServer;
    QString strWebKey;
    CServerTrust webTrust;
    QSslConfiguration tls;
    quint32 uiTables = 0;
    quint32 uiPort = 0;
    quint32 uiSeed = 0;
    quint32 uiIdle = 0;
    bool bHashes = false;
};

// The connections are encrypted, or somebody has asked for plain ones.
bool ReadTls(const QCommandLineParser &parser, SOptions &options, QString &error)
{
    const QString certificate = parser.value(QStringLiteral("certificate"));
    const QString privateKey = parser.value(QStringLiteral("private-key"));
    const bool isPlain = parser.isSet(QStringLiteral("plain"));
    if (isPlain ? !certificate.isEmpty() || !privateKey.isEmpty() : certificate.isEmpty() || privateKey.isEmpty()) {
        error = QStringLiteral("wants --certificate and --private-key, or --plain; see --help");
        return false;
    }
    return isPlain || CLinkServer::ReadConfiguration(certificate, privateKey, options.tls, error);
}

bool ReadWebServer(const QCommandLineParser &parser, SOptions &options, QString &error)
{
    const QString authority = parser.value(QStringLiteral("authority"));
    options.webServer = QUrl(parser.value(QStringLiteral("web-server")), QUrl::StrictMode);
    options.strWebKey = parser.value(QStringLiteral("web-key"));
    const QString scheme = options.webServer.scheme();
    const bool isWeb = scheme == QLatin1String("https") || scheme == QLatin1String("http");
    if (parser.isSet(QStringLiteral("web-server")) && (!isWeb || options.webServer.host().isEmpty())) {
        error = QStringLiteral("--web-server wants an address such as https://127.0.0.1:17174");
        return false;
    }
    return authority.isEmpty() || options.webTrust.AddFile(authority, QString(), &error);
}

bool ReadOptions(const QCoreApplication &application, SOptions &options, QString &error)
{
    const auto data = Options::Make("data", "JSON file with the tables.", "file");
    const auto made =
        Options::Make("tables",
                      "Serve at least this many tables, of which those that the file lacks are made up, and "
                      "let players move at each of them in each second. At most 10000. Without it, --data is "
                      "required.",
                      "number", "0");
    const auto accounts =
        Options::Make("accounts", "JSON file with the accounts; nobody can log in without it.", "file");
    const auto tokens = Options::Make("tokens",
                                      "SQLite file of the logins that users have remembered; without it those end "
                                      "with the server.",
                                      "file");
    const auto hashes =
        Options::Make("hash-password", "Read a password from the standard input, print its hash for the file "
                                       "of accounts, and end.");
    const auto certificate =
        Options::Make("certificate", "PEM file with the certificate, for encrypted connections.", "file");
    const auto privateKey = Options::Make("private-key", "PEM file with its key.", "file");
    const auto plain = Options::Make("plain", "Don't encrypt the connections, over which nobody can log in then.");
    const auto port = Options::Make("port", "Port on 127.0.0.1; 0, the default, is any.", "number", "0");
    const auto seed = Options::Make("seed", "Seed for made-up tables, the players' moves and the jackpot; default 1.",
                                    "number", "1");
    const auto idle =
        Options::Make("idle-ms", "Milliseconds that a packet may stay half-sent; default 15000.", "number", "15000");
    const auto web =
        Options::Make("web-server", "Web server that gives sessions; without it nobody gets one.", "address");
    const auto webKey = Options::Make("web-key", "Secret that it shares with that.", "text");
    const auto authority = Options::Make("authority",
                                         "PEM file of the authorities that vouch for it; by default the "
                                         "system's.",
                                         "file");
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Serves a list of poker tables, and the accounts of their players, to clients on this machine\n"
        "until a signal ends it.\n"
        "Prints \"listening on PORT\" once clients can connect. Clients that come and go, and why, are\n"
        "told on standard error. The exit code is 1 if the server cannot start."));
    parser.addHelpOption();
    parser.addOptions({data, made, accounts, tokens, hashes, certificate, privateKey, plain, port, seed, idle, web,
                       webKey, authority});
    parser.process(application);

    options.strData = parser.value(data);
    options.strAccounts = parser.value(accounts);
    options.strTokens = parser.isSet(tokens) ? parser.value(tokens) : QStringLiteral(":memory:");
    options.bHashes = parser.isSet(hashes);
    if (options.bHashes)
        return true;
    if (options.strData.isEmpty() && !parser.isSet(made))
        error = QStringLiteral("--data is missing; see --help");
    else if (!parser.positionalArguments().isEmpty())
        error = QStringLiteral("unknown argument \"%1\"; see --help").arg(parser.positionalArguments().constFirst());
    return error.isEmpty() && ReadTls(parser, options, error) && ReadWebServer(parser, options, error) &&
           Options::ReadNumber(parser, made, 0, LobbyProtocol::MAX_TABLES, options.uiTables, error) &&
           Options::ReadNumber(parser, port, 0, std::numeric_limits<quint16>::max(), options.uiPort, error) &&
           Options::ReadNumber(parser, seed, 0, std::numeric_limits<quint32>::max(), options.uiSeed, error) &&
           Options::ReadNumber(parser, idle, 1, std::numeric_limits<qint32>::max(), options.uiIdle, error);
}

int PrintHash()
{
    QTextStream input(stdin);
    const QString password = input.readLine();
    if (password.isEmpty() || password.size() > AccountProtocol::MAX_PASSWORD_LENGTH)
        return Fail(QStringLiteral("a password has 1 to %1 characters").arg(AccountProtocol::MAX_PASSWORD_LENGTH));
    const QString hash = Passwords::Hash(password);
    if (hash.isEmpty())
        return Fail(QStringLiteral("there isn't the memory to hash a password"));
    std::printf("%s\n", qUtf8Printable(hash));
    return 0;
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
    if (!ReadOptions(application, options, error))
        return Fail(error);
    if (options.bHashes)
        return PrintHash();
    if ((!options.strData.isEmpty() && !LoadTables(options.strData, now, tables, error)) ||
        (!options.strAccounts.isEmpty() && !accounts.Load(options.strAccounts, error)))
        return Fail(error);
    CTokens tokens(options.strTokens);
    if (!tokens.Open())
        return Fail(QStringLiteral("%1 can't be opened as a database, or another program has locked it")
                        .arg(options.strTokens));
    AddMadeTables(static_cast<int>(options.uiTables), options.uiSeed, now, tables);

    CGameServer server(tables, accounts, tokens, options.uiSeed, static_cast<int>(options.uiIdle));
    if (options.uiTables > 0)
        server.MovePlayersEverywhere();
    server.SetTls(options.tls);
    server.SetWebServer(options.webServer, options.strWebKey, options.webTrust);
    if (!server.Listen(static_cast<quint16>(options.uiPort)))
        return Fail(QStringLiteral("port %1: %2").arg(options.uiPort).arg(server.GetError()));

    // The program that has started the server reads the port from this line. Nothing is stored that a signal could
    // lose, so the default action of SIGTERM and SIGINT is the right end.
    std::printf("listening on %d\n", int(server.GetPort()));
    std::fflush(stdout);
    return QCoreApplication::exec();
}
