#include "WebServer.h"

#include <protocol/Options.h>

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <cstdio>
#include <limits>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int Fail(const QString &error)
{
    std::fprintf(stderr, "webserver: %s\n", qUtf8Printable(error));
    return 1;
}

// A file or an address, which is in no message: it may have a password.
QString ReadPlace(const QString &file, const QString &address, QString &error)
{
    const QString store = !address.isEmpty() || !file.isEmpty() ? address : qEnvironmentVariable("WEBSERVER_STORE");
    if (!file.isEmpty() && !store.isEmpty())
        error = QStringLiteral("--database and --store exclude each other");
    else if (!store.isEmpty() && !CStoreDatabase::IsAddress(store))
        error = QStringLiteral("--store begins with postgres:// or postgresql://; for a file there is --database");
    return store.isEmpty() ? file : store;
}

bool ReadOptions(const QCoreApplication &application, CWebServer::SOptions &options, QString &database, quint32 &port,
                 QString &error)
{
    const auto file = Options::Make("database", "SQLite file with sessions, settings and notes.", "file");
    const auto address =
        Options::Make("store",
                      "Instead of it, postgres://USER@HOST:PORT/DATABASE, which servers can share; by default"
                      " what is in the environment variable WEBSERVER_STORE.",
                      "address");
    const auto pictures = Options::Make("pictures", "Folder with the players' pictures.", "folder");
    const auto files = Options::Make("files", "Folder with the files to download.", "folder");
    const auto rate =
        Options::Make("rate", "Bytes a second of such a file; 0, the default, is no limit.", "number", "0");
    const auto number = Options::Make("port", "Port on 127.0.0.1; 0, the default, is any.", "number", "0");
    const auto key = Options::Make("key", "Secret that it shares with the game server; required.", "text");
    const auto limit =
        Options::Make("body-limit", "The longest request body; default 33554432.", "bytes", "33554432");
    const auto seconds =
        Options::Make("body-seconds", "In which a request body has to come; default 60.", "number", "60");
    const auto certificate = Options::Make("certificate", "PEM file; with it and its key it serves https.", "file");
    const auto privateKey = Options::Make("private-key", "PEM file.", "file");
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Gives the game server web sessions for its users, keeps their settings and notes in step over their\n"
        "machines, and serves pictures and files, until SIGTERM or SIGINT ends it; it answers what has been asked "
        "before.\n"
        "Prints \"listening on PORT\" once clients can connect. Each request is a line of JSON on standard error.\n"
        "GET /healthz tells that it lives, /readyz whether it can reach its store, /metrics its counters.\n"
        "The exit code is 1 if the server cannot start."));
    parser.addHelpOption();
    parser.addOptions({file, address, pictures, files, rate, number, key, limit, seconds, certificate, privateKey});
    parser.process(application);
    database = ReadPlace(parser.value(file), parser.value(address), error);
    options = {parser.value(pictures),
               parser.value(files),
               parser.value(key),
               parser.value(certificate),
               parser.value(privateKey),
               0,
               0};
    if (error.isEmpty() && (database.isEmpty() || options.strKey.isEmpty()))
        error = QStringLiteral("--database, --store or --key is missing; see --help");
    else if (options.strCertificate.isEmpty() != options.strPrivateKey.isEmpty())
        error = QStringLiteral("--certificate and --private-key go together");
    else if (!parser.positionalArguments().isEmpty())
        error = QStringLiteral("unknown argument \"%1\"; see --help").arg(parser.positionalArguments().constFirst());
    return error.isEmpty() &&
           Options::ReadNumber(parser, number, 0, std::numeric_limits<quint16>::max(), port, error) &&
           Options::ReadNumber(parser, rate, 0, std::numeric_limits<qint32>::max(), options.uiRate, error) &&
           Options::ReadNumber(parser, limit, 1, std::numeric_limits<qint32>::max(), options.uiBodyLimit, error) &&
           Options::ReadNumber(parser, seconds, 1, 3600, options.uiBodySeconds, error);
}

int signalSocket = -1; // to which a handler writes

// The first SIGTERM or SIGINT lets the server end what it has begun, the second one ends it.
void EndOnSignals(CWebServer &server)
{
    int sockets[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0)
        return; // the default action loses no more than answers
    signalSocket = sockets[1];
    auto *notifier = new QSocketNotifier(sockets[0], QSocketNotifier::Read, &server);
    QObject::connect(notifier, &QSocketNotifier::activated, &server, [notifier, &server] {
        notifier->setEnabled(false);
        server.End();
    });
    struct sigaction action = {};
    action.sa_handler = [](int) { [[maybe_unused]] const auto written = write(signalSocket, "", 1); };
    action.sa_flags = int(SA_RESETHAND | SA_RESTART);
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    CWebServer::SOptions options;
    QString database;
    quint32 port = 0;
    QString error;
    if (!ReadOptions(application, options, database, port, error))
        return Fail(error);
    CSyncStore store(CStoreDatabase::Make(database));
    if (!store.Init())
        return Fail(store.GetError());
    CWebServer server(store, options);
    const int listening = server.Listen(static_cast<int>(port));
    if (listening == 0)
        return Fail(QStringLiteral("port %1 is taken, or the certificate and its key are no good").arg(port));

    EndOnSignals(server);
    std::printf("listening on %d\n", listening);
    std::fflush(stdout);
    return QCoreApplication::exec();
}
