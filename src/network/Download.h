#pragma once

#include <Export.h>

#include <QByteArray>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QUrl>

/// One transfer over HTTP, held in memory: a GET, a POST or a HEAD that follows redirects, watches for a stall, and
/// tells its progress. It goes through CNetworkAccessManager and shares its thread.
///
/// A transfer ends in one signal_Finished(), with false for a network error, an HTTP status of 400 and above, a
/// stall, a chain of more than MaxRedirects redirects or one that leaves the web, a body of more than MaxBytes or of
/// less than the server has announced, and if CNetworkAccessManager ends meanwhile. A Start() takes the place of one
/// that still waits or runs: a single signal_Finished() ends both.
///
/// It asks for an uncompressed body. One that a server compresses all the same (gzip, deflate, compress, br, zstd)
/// isn't unpacked: the transfer fails, without data. Qt takes a chunk that can't be read for the last one and doesn't
/// tell, nor always that a connection has ended between two chunks. So a chunked body can be too short with true; a
/// caller that needs all of it checks what it holds.
///
/// The object can be started again, then from where the last redirect has led, and doesn't delete itself. A listener
/// may delete it, stop it or start it again in each of its signals.
class PLUGININTERFACE_EXPORT CDownload : public QObject
{
    Q_OBJECT

public:
    static constexpr unsigned int DownloadTimeout = 20000;  ///< Milliseconds without a sign of life.
    static constexpr unsigned int DownloadUpdateTime = 500; ///< Milliseconds between two reports of progress.
    static constexpr unsigned int MaxRedirects = 3;         ///< Of one transfer.
    /// The longest body, in bytes; meant for what fits in memory with ease.
    static constexpr unsigned int MaxBytes = 64u << 20;

    /// Starts nothing. With \a headOnly it is a HEAD, else a POST of \a postData, or a GET if that is empty.
    CDownload(QObject *parent, const QString &url, const QByteArray &postData, bool headOnly);
    ~CDownload() override;

    /// The transfer begins at the next turn of the event loop. One that still runs by then ends without a signal of
    /// its own, though the server may have got its request.
    void Start();
    /// Gives up all that runs or waits for its begin, with one signal_Finished(false, QByteArray()); that comes also
    /// when nothing was running, so a listener to that signal doesn't call it every time.
    void Stop();

    /// The address given at first.
    const QUrl &GetBaseUrl() const;
    /// The address that the last redirect has led to.
    const QUrl &GetCurUrl() const;
    /// The path of the current address, decoded.
    QString GetName() const;
    /// What the server announces, in bytes, and 4294967295 for more than that; 0 if it announces nothing or nothing
    /// that can be a length, or if nothing is running.
    unsigned int GetContentLength() const;

    /// "1.5 kB": bytes, kB or MB with one decimal, not translated.
    static QString FormatBytes(qint64 bytes);

Q_SIGNALS:
    /// The transfer begins. A listener may stop it. Each Start() that Stop() hasn't overtaken is told.
    void signal_Started();
    /// \a data is the body, or what of it had been read: of a long one the rest may have been under way still. It is
    /// empty for a stall, a stop, the end of CNetworkAccessManager and a compressed body.
    void signal_Finished(bool status, QByteArray data);
    /// Twice a second and at the end; \a bytesTotal is below 0 while it isn't known, and \a speed is for people to
    /// read, such as "1.5 kB/s".
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
