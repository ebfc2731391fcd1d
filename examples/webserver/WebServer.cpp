#include "WebServer.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>

#include <chrono>
#include <utility>

namespace {

constexpr int MAX_TEXT = 64;
constexpr int THREADS = 16; // a slow download keeps one
constexpr uint PICTURES_A_FOLDER = 1000;
constexpr std::chrono::milliseconds PIECE_TIME(50);
constexpr quint32 PIECES_A_SECOND = 20;
constexpr std::size_t PIECE = 64 << 10; // of a file, without a bound of its rate
const char JSON_TYPE[] = "application/json";
const QByteArray SESSION("session=");
const QByteArray JSON("&json=");

QString GetParameter(const httplib::Request &request, const char *name)
{
    return QString::fromStdString(request.get_param_value(name));
}

std::unique_ptr<httplib::Server> MakeTlsServer(const CWebServer::SOptions &options)
{
    auto server = std::make_unique<httplib::SSLServer>(QFile::encodeName(options.strCertificate).constData(),
                                                       QFile::encodeName(options.strPrivateKey).constData());
    if (server->is_valid())
        SSL_CTX_set_min_proto_version(server->ssl_context(), TLS1_2_VERSION);
    return server;
}

// Returns the status that refuses what no client sends, 0 for anything else. The library would read such a body
// before it looks for whom it is, and unpack it, however large it becomes.
int FindFault(const httplib::Request &request)
{
    const bool isForm = request.path == "/sessions" || request.path == "/sessions/end";
    if (request.method != "GET" && request.method != "HEAD" && request.method != "POST")
        return 405;
    if (request.method == "POST" && !isForm && request.path != "/sync")
        return 404;
    if (request.has_header("Content-Encoding") ||
        request.get_header_value("Content-Type").compare(0, 10, "multipart/") == 0)
        return 415;
    return isForm && request.has_header("Transfer-Encoding") ? 411 : 0; // whose length nobody knows
}

bool IsName(const QString &text)
{
    return !text.isEmpty() && text.size() <= MAX_TEXT && !text.contains(QChar::Null); // which not all databases keep
}

} // namespace

CWebServer::CWebServer(CSyncStore &store, const SOptions &options)
    : m_store(store)
    , m_options(options)
{
    if (options.strCertificate.isEmpty())
        m_pServer = std::make_unique<httplib::Server>();
    else
        m_pServer = MakeTlsServer(options);
    m_pServer->new_task_queue = [] { return new httplib::ThreadPool(THREADS); };
    m_pServer->set_keep_alive_max_count(1); // else who keeps a connection keeps a thread
    m_pServer->set_payload_max_length(options.uiBodyLimit);
    m_pServer->set_socket_options([this](socket_t socket) { // not the library's, which share a port that is taken
        const int on = 1;
        m_socket = socket;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    });
    AddHandlers();
    AddReports();
}

CWebServer::~CWebServer()
{
    m_pServer->stop();
    if (m_thread.joinable())
        m_thread.join();
}

int CWebServer::Listen(int port)
{
    const char host[] = "127.0.0.1";
    if (!m_pServer->is_valid())
        return 0;
    if (port == 0)
        port = std::max(m_pServer->bind_to_any_port(host), 0);
    else if (!m_pServer->bind_to_port(host, port))
        port = 0;
    // The library lets 5 connections wait, and the kernel resets some of a few more that come at once.
    if (port != 0 && ::listen(m_socket, SOMAXCONN) != 0)
        port = 0;
    if (port != 0)
        m_thread = std::thread([this] {
            m_pServer->listen_after_bind();
            m_bEnded = true;
            const int code = m_bEnding ? 0 : 1; // it can't accept any more
            QMetaObject::invokeMethod(QCoreApplication::instance(), [code] { QCoreApplication::exit(code); });
        });
    while (port != 0 && !m_pServer->is_running() && !m_bEnded) // else the library doesn't notice that it is to end
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return port;
}

// The event loop runs on meanwhile, for the requests need it.
void CWebServer::End()
{
    m_bEnding = true;
    m_pServer->stop();
}

void CWebServer::AddHandlers()
{
    using TWork = int (CWebServer::*)(const httplib::Request &, std::string &);
    const auto with = [this](TWork work, const char *type) {
        return [this, work, type](const httplib::Request &request, httplib::Response &response) {
            std::string text;
            SRows rows;
            const auto answer = [&] {
                m_store.ResetFailure();
                response.status = (this->*work)(request, text);
                if (m_store.HasFailed()) {
                    ++m_uiFailures;
                    response.status = 503; // whatever it looks like without an answer of the store's
                }
                rows = std::exchange(m_rows, {});
            };
            QMetaObject::invokeMethod(this, answer, Qt::BlockingQueuedConnection);
            CRequestLog::CountRows(rows.uiIn, rows.uiOut);
            response.set_content(text, type);
        };
    };
    m_pServer->Post("/sessions", with(&CWebServer::GiveSession, "text/plain"));
    m_pServer->Post("/sessions/end", with(&CWebServer::EndSessions, "text/plain"));
    m_pServer->Get("/readyz", with(&CWebServer::TellReady, "text/plain"));
    m_pServer->Get("/metrics", with(&CWebServer::TellMetrics, "text/plain; version=0.0.4"));
    m_pServer->Get("/sync", with(&CWebServer::Fetch, JSON_TYPE));
    m_pServer->Get(R"(/pictures/(\d{1,9})/(\d{1,9})\.png)", with(&CWebServer::ReadPicture, "image/png"));
    m_pServer->Get(R"(/files/(\w[\w.-]*))",
                   [this](const auto &request, auto &response) { SendFile(request, response); });
    // Not as the form that it claims to be: the library would decode it, and takes no long ones.
    const auto merge = with(&CWebServer::Merge, JSON_TYPE);
    m_pServer->Post(
        "/sync", [this, merge](const httplib::Request &request, httplib::Response &response, const TReader &reader) {
            httplib::Request whole = request;
            if (ReadBody(reader, response, whole.body))
                merge(whole, response);
        });
}

// Of the server itself, for a balancer and a monitor; none of them is a secret of a user's.
void CWebServer::AddReports()
{
    m_pServer->Get("/healthz", [](const httplib::Request &, httplib::Response &response) {
        response.set_content("alive\n", "text/plain");
    });
    m_pServer->set_pre_routing_handler([](const httplib::Request &request, httplib::Response &response) {
        using EResponse = httplib::Server::HandlerResponse;
        CRequestLog::Begin();
        const int status = FindFault(request);
        if (status != 0)
            response.status = status;
        return status == 0 ? EResponse::Unhandled : EResponse::Handled;
    });
    m_pServer->set_logger([this](const httplib::Request &request, const httplib::Response &response) {
        const std::size_t size = response.body.empty() ? response.content_length_ : response.body.size();
        m_log.End(request.method, request.path, response.status, request.body.size(), size);
    });
}

bool CWebServer::ReadBody(const TReader &reader, httplib::Response &response, std::string &body) const
{
    const QDeadlineTimer limit(std::chrono::seconds(m_options.uiBodySeconds)); // else a slow one keeps a thread
    const bool whole = reader([&](const char *data, std::size_t size) {
        body.append(data, size);
        // The library asks this of an announced length only.
        return body.size() <= m_options.uiBodyLimit && !limit.hasExpired();
    });
    CRequestLog::CountBytes(body.size());
    if (!whole)
        response.status = body.size() > m_options.uiBodyLimit ? 413 : response.status > 400 ? response.status : 408;
    return whole;
}

int CWebServer::ReadOwner(const httplib::Request &request, SOwner &owner) const
{
    owner = {GetParameter(request, "nickname"), GetParameter(request, "machine")};
    if (GetParameter(request, "key") != m_options.strKey)
        return 403;
    return IsName(owner.strUser) && (owner.strMachine.isEmpty() || IsName(owner.strMachine)) ? 200 : 400;
}

int CWebServer::GiveSession(const httplib::Request &request, std::string &text)
{
    SOwner owner;
    QString session;
    int status = ReadOwner(request, owner);
    if (status == 200 && owner.strMachine.isEmpty())
        status = 400;
    if (status == 200 && !m_store.AddSession(owner, session))
        status = 500;
    text = session.toStdString();
    return status;
}

int CWebServer::EndSessions(const httplib::Request &request, std::string &)
{
    SOwner owner;
    const int status = ReadOwner(request, owner);
    return status == 200 && !m_store.EndSessions(owner) ? 500 : status;
}

int CWebServer::Fetch(const httplib::Request &request, std::string &json)
{
    SOwner owner;
    SyncJson::TLists lists;
    if (!m_store.FindSession(GetParameter(request, "session").left(32), owner))
        return 403;
    for (std::size_t i = 0; i < lists.size(); ++i) {
        if (!SyncJson::ReadTime(GetParameter(request, SyncJson::LISTS[i]), lists[i].iTime))
            return 400;
    }
    if (!m_store.Fetch(owner, lists))
        return 500;
    for (const SSyncList &list : lists)
        m_rows.uiOut += quint64(list.rows.size());
    json = SyncJson::WriteLists(lists).toStdString();
    return 200;
}

int CWebServer::Merge(const httplib::Request &request, std::string &json)
{
    const QByteArray body = QByteArray::fromStdString(request.body);
    const int end = int(body.indexOf(JSON));
    const QString session = QString::fromUtf8(body.left(std::max(end, 0)).mid(SESSION.size()));
    SOwner owner;
    SyncJson::TLists lists;
    if (!body.startsWith(SESSION) || session.size() != 64 || !m_store.FindSession(session, owner))
        return 403;
    if (!SyncJson::ReadLists(body.mid(end + JSON.size()), lists))
        return 400;
    quint64 rows = 0;
    for (const SSyncList &list : lists)
        rows += quint64(list.rows.size());
    if (!m_store.Merge(owner, lists))
        return 500;
    m_rows.uiIn += rows;
    json = SyncJson::WriteLists(lists).toStdString();
    return 200;
}

int CWebServer::TellReady(const httplib::Request &, std::string &text)
{
    const bool ready = !m_bEnding && m_store.IsReady();
    text = ready ? "ready\n" : "not ready\n";
    return ready ? 200 : 503;
}

int CWebServer::TellMetrics(const httplib::Request &, std::string &text)
{
    text = m_log.GetMetrics(m_store.GetConflicts(), m_uiFailures).toStdString();
    return 200;
}

int CWebServer::ReadPicture(const httplib::Request &request, std::string &picture)
{
    const uint folder = QString::fromStdString(request.matches[1]).toUInt();
    const uint id = QString::fromStdString(request.matches[2]).toUInt();
    QFile file(QStringLiteral("%1/%2/%3.png").arg(m_options.strPictures).arg(folder).arg(id));
    if (folder != id / PICTURES_A_FOLDER || !file.open(QIODevice::ReadOnly))
        return 404;
    picture = file.readAll().toStdString();
    return 200;
}

void CWebServer::SendFile(const httplib::Request &request, httplib::Response &response) const
{
    const auto file =
        std::make_shared<QFile>(m_options.strFiles + QLatin1Char('/') + QString::fromStdString(request.matches[1]));
    if (m_options.strFiles.isEmpty() || !file->open(QIODevice::ReadOnly)) {
        response.status = 404;
        return;
    }
    const std::size_t piece = m_options.uiRate == 0 ? PIECE : 1 + m_options.uiRate / PIECES_A_SECOND;
    const auto pause = m_options.uiRate == 0 ? PIECE_TIME.zero() : PIECE_TIME;
    const auto give = [this, file, piece, pause](std::size_t offset, std::size_t length, httplib::DataSink &sink) {
        std::this_thread::sleep_for(pause);
        if (m_bEnding || !file->seek(qint64(offset)))
            return false;
        const QByteArray bytes = file->read(qint64(std::min(length, piece)));
        return !bytes.isEmpty() && sink.write(bytes.constData(), std::size_t(bytes.size()));
    };
    response.set_content_provider(std::size_t(file->size()), "application/octet-stream", give);
}
