#include "Download.h"

#include <network/NetworkAccessManager.h>
#include <network/WebRequest.h>

#include <QNetworkRequest>

#include <algorithm>
#include <limits>

namespace {

constexpr double KILO = 1024.0;
constexpr double MEGA = KILO * KILO;
// How many bytes Qt's thread may read ahead. Without a limit it posts data as long as it receives any, faster than it
// is read here, and timers never fire.
constexpr qint64 READ_AHEAD = 512 << 10;

constexpr int HTTP_NO_CONTENT = 204;
constexpr int HTTP_NOT_MODIFIED = 304;

// The reason of the last failure is a property, because plugins with derived classes know the layout of the class.
constexpr char ERROR_PROPERTY[] = "plugininterface_error";

// A pending Start(). It is a child of its download; deleting it cancels the call.
class CWaitingStart : public QObject
{
public:
    using QObject::QObject;
};

// Returns whether a server has compressed the body. Other names occur as well and mean no compression.
bool IsCompressed(const QNetworkReply &reply)
{
    static const QList<QByteArray> compressions{"gzip", "x-gzip", "deflate", "compress", "x-compress", "br", "zstd"};
    const QList<QByteArray> codings = reply.rawHeader("Content-Encoding").toLower().split(',');
    return std::any_of(codings.cbegin(), codings.cend(),
                       [](const QByteArray &coding) { return compressions.contains(coding.trimmed()); });
}

// Returns whether the server has announced more bytes. Qt itself sometimes takes the end of a connection for the end
// of the body.
bool IsCutOff(const QNetworkReply &reply, qint64 bytes)
{
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply.operation() == QNetworkAccessManager::HeadOperation || status == HTTP_NO_CONTENT ||
        status == HTTP_NOT_MODIFIED || reply.hasRawHeader("Transfer-Encoding"))
        return false; // the length isn't that of a body
    return reply.header(QNetworkRequest::ContentLengthHeader).toLongLong() > bytes;
}

} // namespace

CDownload::CDownload(QObject *parent, const QString &url, const QByteArray &postData, bool headOnly)
    : QObject(parent)
    , m_baseUrl(url, QUrl::TolerantMode)
    , m_curUrl(m_baseUrl)
    , m_postData(postData)
    , m_bHeadOnly(headOnly)
{
    m_TimeoutTimer.setSingleShot(true);
    m_TimeoutTimer.setInterval(static_cast<int>(DownloadTimeout));
    connect(&m_TimeoutTimer, &QTimer::timeout, this, &CDownload::slot_DownloadTimeout);
    m_UpdateTimer.setInterval(static_cast<int>(DownloadUpdateTime));
    connect(&m_UpdateTimer, &QTimer::timeout, this, &CDownload::slot_DownloadUpdateTimer);
}

CDownload::~CDownload()
{
    ForgetReply();
}

void CDownload::Start()
{
    auto *waiting = new CWaitingStart(this);
    QTimer::singleShot(0, waiting, [this, waiting] {
        delete waiting;
        slot_Start();
    });
}

void CDownload::Stop()
{
    StopBecause(QStringLiteral("The transfer was stopped"));
}

void CDownload::StopBecause(const QString &reason)
{
    SetError(reason);
    m_bStopped = true;
    const QObjectList owned = children();
    for (QObject *child : owned)
        delete dynamic_cast<CWaitingStart *>(child);
    StopTimers();
    ForgetReply();
    m_iBytesReceived = 0;
    m_iBytesAtUpdate = 0;
    m_iBytesTotal = 0;
    Q_EMIT signal_Finished(false, QByteArray());
}

const QUrl &CDownload::GetBaseUrl() const
{
    return m_baseUrl;
}

const QUrl &CDownload::GetCurUrl() const
{
    return m_curUrl;
}

QString CDownload::GetName() const
{
    return m_curUrl.path(QUrl::FullyDecoded);
}

unsigned int CDownload::GetContentLength() const
{
    const qint64 length = m_pReply ? m_pReply->header(QNetworkRequest::ContentLengthHeader).toLongLong() : 0;
    return static_cast<unsigned int>(qBound(Q_INT64_C(0), length, qint64(std::numeric_limits<unsigned int>::max())));
}

QString CDownload::GetError() const
{
    return property(ERROR_PROPERTY).toString();
}

void CDownload::SetError(const QString &reason)
{
    setProperty(ERROR_PROPERTY, reason);
}

QString CDownload::FormatBytes(qint64 bytes)
{
    const double value = static_cast<double>(bytes);
    const auto format = [](double number, const char *unit) {
        return QStringLiteral("%1 %2").arg(number, 3, 'f', 1).arg(QLatin1String(unit));
    };
    if (value < KILO)
        return format(value, "bytes");
    return value < MEGA ? format(value / KILO, "kB") : format(value / MEGA, "MB");
}

void CDownload::slot_DownloadProgress(qint64 bytesReceived, qint64 bytesTotal)
{
    m_iBytesReceived = bytesReceived;
    m_iBytesTotal = bytesTotal;
    m_TimeoutTimer.start();
}

void CDownload::slot_DownloadFinished()
{
    // A replaced or abandoned reply may still finish.
    if (sender() != m_pReply)
        return;
    if (!UpdateDownload())
        return;
    StopTimers();
    const QVariant target = m_pReply->attribute(QNetworkRequest::RedirectionTargetAttribute);
    const bool answered = m_pReply->error() == QNetworkReply::NoError;
    const bool isCutOff = IsCutOff(*m_pReply, m_data.size());
    if (!answered)
        SetError(CNetworkAccessManager::GetError(*m_pReply));
    else if (target.isNull() && isCutOff)
        SetError(QStringLiteral("The server has sent less than it announced"));
    if (answered && target.isNull())
        Finish(!isCutOff);
    else if (!answered || !FollowRedirect(target.toUrl()))
        Finish(false);
}

void CDownload::slot_DownloadReadyRead()
{
    if (!m_pReply)
        return;
    const qint64 available = m_pReply->bytesAvailable();
    const auto size = m_data.size();
    if (available > qint64(MaxBytes) - size) {
        if (!UpdateDownload())
            return;
        StopTimers();
        SetError(QStringLiteral("The body is longer than %1 bytes").arg(MaxBytes));
        Finish(false);
        return;
    }
    if (m_data.isEmpty())
        m_data.reserve(static_cast<int>(qMin(GetContentLength(), MaxBytes)));
    // Read in place, without a temporary array.
    m_data.resize(size + static_cast<int>(available));
    m_data.resize(size + static_cast<int>(qMax(Q_INT64_C(0), m_pReply->read(m_data.data() + size, available))));
}

void CDownload::slot_Start()
{
    const QPointer<CDownload> self(this);
    m_bStopped = false;
    SetError(QString());
    Q_EMIT signal_Started();
    if (!self || m_bStopped)
        return;
    m_uiRedirects = 0;
    Download();
}

void CDownload::slot_DownloadTimeout()
{
    StopBecause(QStringLiteral("Nothing was received for %1 s").arg(DownloadTimeout / 1000));
}

void CDownload::slot_DownloadUpdateTimer()
{
    UpdateDownload();
}

void CDownload::Download()
{
    m_iBytesReceived = 0;
    m_iBytesAtUpdate = 0;
    m_iBytesTotal = 0;
    ForgetReply();
    StopTimers();
    m_data.clear();
    m_pReply = Send();
    m_pReply->setReadBufferSize(READ_AHEAD);
    connect(m_pReply, &QNetworkReply::downloadProgress, this, &CDownload::slot_DownloadProgress);
    connect(m_pReply, &QNetworkReply::finished, this, &CDownload::slot_DownloadFinished);
    connect(m_pReply, &QNetworkReply::readyRead, this, &CDownload::slot_DownloadReadyRead);
    // Deleting the manager deletes the reply. The connection is queued: when the slot runs, the manager is completely
    // destroyed, and Start() or Stop() may have been called before.
    const auto end = [this] {
        if (m_pReply || !m_TimeoutTimer.isActive())
            return;
        StopTimers();
        m_data.clear();
        SetError(QStringLiteral("The network access manager was destroyed"));
        Finish(false);
    };
    connect(m_pReply, &QObject::destroyed, this, end, Qt::QueuedConnection);
    m_TimeoutTimer.start();
    m_UpdateTimer.start();
}

QNetworkReply *CDownload::Send() const
{
    QNetworkRequest request(m_curUrl);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/x-www-form-urlencoded"));
    request.setHeader(QNetworkRequest::ContentLengthHeader, m_postData.size());
    // A few compressed bytes may expand to any number of bytes in memory, and Qt decompresses them before they are
    // counted here. With this header Qt neither requests compressed data nor decompresses it.
    request.setRawHeader("Accept-Encoding", "identity");
    // Redirects are followed and counted here, whatever the policy of the manager is.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    WebRequest::SetUserAgent(&request);
    CNetworkAccessManager *manager = CNetworkAccessManager::GetInstance();
    if (m_bHeadOnly)
        return manager->head(request);
    return m_postData.isEmpty() ? manager->get(request) : manager->post(request, m_postData);
}

// Returns whether the reply is still the current one: a slot may stop or delete the download, or start another
// transfer.
bool CDownload::UpdateDownload()
{
    const QPointer<CDownload> self(this);
    const QPointer<QNetworkReply> reply = m_pReply;
    double speed = static_cast<double>(m_iBytesReceived - m_iBytesAtUpdate);
    m_iBytesAtUpdate = m_iBytesReceived;
    if (speed > 0)
        speed = speed * 1000 / DownloadUpdateTime;
    Q_EMIT signal_Progress(m_iBytesReceived, m_iBytesTotal,
                           FormatBytes(static_cast<qint64>(speed)) + QLatin1String("/s"));
    return self && reply && m_pReply == reply;
}

// Returns false if there are too many redirects, or if the target isn't http or https: a server must not access the
// files of this machine. A host that recognises its servers doesn't leave TLS, either.
bool CDownload::FollowRedirect(const QUrl &target)
{
    const QUrl resolved = m_curUrl.resolved(target);
    const bool leavesTls = m_curUrl.scheme() == QLatin1String("https") && resolved.scheme() != m_curUrl.scheme() &&
                           !CNetworkAccessManager::GetInstance()->GetServerTrust().IsEmpty();
    if (m_uiRedirects >= MaxRedirects || !resolved.scheme().startsWith(QLatin1String("http")) || leavesTls) {
        SetError(QStringLiteral("A redirect to %1 isn't followed").arg(resolved.toDisplayString()));
        return false;
    }
    ++m_uiRedirects;
    m_curUrl = resolved;
    Download();
    return true;
}

void CDownload::StopTimers()
{
    m_TimeoutTimer.stop();
    m_UpdateTimer.stop();
}

// Disconnects the reply, so that its remaining signals are ignored.
void CDownload::ForgetReply()
{
    if (m_pReply) {
        m_pReply->disconnect(this);
        m_pReply->deleteLater();
    }
    m_pReply.clear();
}

void CDownload::Finish(bool status)
{
    if (m_pReply && !m_data.isEmpty() && IsCompressed(*m_pReply)) {
        status = false;
        m_data.clear();
        SetError(QStringLiteral("The server has compressed the body"));
    }
    ForgetReply();
    Q_EMIT signal_Finished(status, m_data);
}
