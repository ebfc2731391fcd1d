#pragma once

#include <Export.h>

#include <QByteArray>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QUrl>

/// An HTTP transfer into memory: a GET, a POST or a HEAD. It follows redirects, has a timeout, and reports its
/// progress. It uses CNetworkAccessManager and belongs to the same thread.
///
/// A transfer ends with one signal_Finished(). Its status is false for a network error, an HTTP status of 400 or
/// above, a timeout, more than MaxRedirects redirects, a redirect to something other than http or https, or from
/// https to http if the host has called CNetworkAccessManager::SetServerTrust(), a body of more than MaxBytes bytes,
/// a body shorter than the server has announced, and if CNetworkAccessManager is destroyed meanwhile. Start()
/// replaces a transfer that waits or runs: a single signal_Finished() ends both.
///
/// The class requests an uncompressed body. If a server compresses it nevertheless (gzip, deflate, compress, br,
/// zstd), it isn't decompressed: the transfer fails, without data. Qt takes an unreadable chunk for the last one
/// without reporting it, and doesn't always report that a connection was closed between two chunks. So a chunked body
/// can be too short although the status is true. A caller that needs all of it must check what it received.
///
/// The object can be started again, and then begins where the last redirect has led. It doesn't delete itself. A slot
/// that is connected to any of the signals may delete, stop or start it again.
class PLUGININTERFACE_EXPORT CDownload : public QObject
{
    Q_OBJECT

public:
    static constexpr unsigned int DownloadTimeout = 20000;  ///< The timeout in milliseconds without progress.
    static constexpr unsigned int DownloadUpdateTime = 500; ///< The milliseconds between two progress signals.
    static constexpr unsigned int MaxRedirects = 3;         ///< The most redirects of a transfer.
    /// The longest body, in bytes. The class is meant for what easily fits into memory.
    static constexpr unsigned int MaxBytes = 64u << 20;

    /// Creates the object without starting it. The transfer is a HEAD if \a headOnly is true, else a POST of
    /// \a postData, or a GET if that is empty.
    CDownload(QObject *parent, const QString &url, const QByteArray &postData, bool headOnly);
    ~CDownload() override;

    /// Starts the transfer at the next turn of the event loop. A transfer that still runs then ends without a signal
    /// of its own, although the server may have received its request.
    void Start();
    /// Stops what runs or waits to start, with one signal_Finished(false, QByteArray()). The signal is emitted even
    /// if nothing was running, so a slot that is connected to it must not always call Stop().
    void Stop();

    /// Returns the original address.
    const QUrl &GetBaseUrl() const;
    /// Returns the address after the last redirect.
    const QUrl &GetCurUrl() const;
    /// Returns the path of the current address, decoded.
    QString GetName() const;
    /// Returns the length in bytes that the server announces, at most 4294967295. Returns 0 if it announces no valid
    /// length or nothing is running.
    unsigned int GetContentLength() const;

    /// Returns why the last transfer has failed, in English; empty if it hasn't. Known when signal_Finished() is
    /// emitted, until the next Start().
    QString GetError() const;

    /// Returns a text such as "1.5 kB": bytes, kB or MB with one decimal, not translated.
    static QString FormatBytes(qint64 bytes);

Q_SIGNALS:
    /// Emitted when the transfer begins, for each Start() that Stop() hasn't cancelled. A slot may stop the transfer.
    void signal_Started();
    /// Emitted when the transfer has ended. \a data is the body, or the part that was read; the rest of a long body
    /// may not have arrived yet. It is empty after a timeout, Stop(), the destruction of CNetworkAccessManager, and
    /// for a compressed body.
    void signal_Finished(bool status, QByteArray data);
    /// Emitted twice a second and at the end. \a bytesTotal is negative while it isn't known. \a speed is a text to
    /// display, such as "1.5 kB/s".
    void signal_Progress(qint64 bytesReceived, qint64 bytesTotal, QString speed);

private Q_SLOTS:
    void slot_DownloadProgress(qint64 bytesReceived, qint64 bytesTotal);
    void slot_DownloadFinished();
    void slot_DownloadReadyRead();
    void slot_Start();
    void slot_DownloadTimeout();
    void slot_DownloadUpdateTimer();

private:
    void Download();
    QNetworkReply *Send() const;
    void SetError(const QString &reason);
    void StopBecause(const QString &reason);
    bool UpdateDownload();
    bool FollowRedirect(const QUrl &target);
    void StopTimers();
    void ForgetReply();
    void Finish(bool status);

    qint64 m_iBytesReceived = 0;
    qint64 m_iBytesAtUpdate = 0;
    qint64 m_iBytesTotal = 0;
    QTimer m_TimeoutTimer;
    QTimer m_UpdateTimer;
    quint32 m_uiRedirects = 0;
    QUrl m_baseUrl;
    QUrl m_curUrl;
    QByteArray m_data;
    QPointer<QNetworkReply> m_pReply; // the running one, owned
    QByteArray m_postData;
    bool m_bHeadOnly;
    bool m_bStopped = false; // since the last signal_Started()
};
