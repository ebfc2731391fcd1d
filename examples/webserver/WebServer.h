#pragma once

#include "RequestLog.h"
#include "SyncStore.h"

#include <QObject>

#include <httplib.h>

#include <atomic>
#include <memory>
#include <thread>

/// Answers web requests on threads of its own: gives sessions, keeps lists in step, and serves pictures and files.
///
/// The store belongs to the thread of this object, whose event loop has to run meanwhile. A program has one, to its
/// end.
class CWebServer : public QObject
{
    Q_OBJECT

public:
    struct SOptions
    {
        QString strPictures;
        QString strFiles;
        QString strKey; ///< Who knows it may ask for a session for any user, and end it.
        QString strCertificate;
        QString strPrivateKey; ///< Plain HTTP without both.
        quint32 uiBodyLimit = 0;
        quint32 uiRate = 0;         ///< Bytes a second of a file; 0 for as many as it can.
        quint32 uiBodySeconds = 60; ///< In which a request body has to come.
    };

    CWebServer(CSyncStore &store, const SOptions &options);
    ~CWebServer() override;

    /// Listens on 127.0.0.1, with 0 on any port that is free; answers which, or 0 if it can't.
    int Listen(int port);
    /// Takes no more requests, and ends the program with exit code 0 once those that it has are answered; a download
    /// breaks off.
    void End();

private:
    using TReader = httplib::ContentReader;
    struct SRows
    {
        quint64 uiIn = 0;
        quint64 uiOut = 0;
    };

    void AddHandlers();
    void AddReports();
    // In the thread of this object; each answers the status.
    int GiveSession(const httplib::Request &request, std::string &text);
    int EndSessions(const httplib::Request &request, std::string &text);
    int ReadOwner(const httplib::Request &request, SOwner &owner) const;
    int Fetch(const httplib::Request &request, std::string &json);
    int Merge(const httplib::Request &request, std::string &json);
    int ReadPicture(const httplib::Request &request, std::string &picture);
    int TellReady(const httplib::Request &request, std::string &text);
    int TellMetrics(const httplib::Request &request, std::string &text);
    // In the thread of the request.
    void SendFile(const httplib::Request &request, httplib::Response &response) const;
    bool ReadBody(const TReader &reader, httplib::Response &response, std::string &body) const;

    CSyncStore &m_store;
    const SOptions m_options;
    CRequestLog m_log;
    quint64 m_uiFailures = 0; // of the store
    SRows m_rows;             // of the request that is being answered
    std::atomic<bool> m_bEnding = false;
    std::atomic<bool> m_bEnded = false;
    std::unique_ptr<httplib::Server> m_pServer;
    socket_t m_socket = INVALID_SOCKET; // that listens; the server's
    std::thread m_thread;
};
