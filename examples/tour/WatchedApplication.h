#pragma once

#include <QApplication>
#include <QUrl>

/// An application that measures how long it keeps the event loop from going on: the longest that any one event has
/// taken, with all that happened on its way. It doesn't count for how long the thread was ready to run and the
/// machine had no processor for it, nor for how long what is painted waited for the display server.
class CWatchedApplication : public QApplication
{
    Q_OBJECT

public:
    using QApplication::QApplication;

    /// The one of the process.
    static CWatchedApplication *Get() { return static_cast<CWatchedApplication *>(qApp); }

    /// For QDesktopServices, in the place of a browser.
    Q_INVOKABLE void OpenPage(const QUrl &page) { m_page = page; }
    QUrl GetPage() const { return m_page; }

    bool notify(QObject *receiver, QEvent *event) override;

    /// The longest event so far, in milliseconds, and who got it.
    double GetLongestMs() const { return m_longestMs; }
    QString GetLongestName() const { return m_strLongest; }
    void Forget() { m_longestMs = 0; }

private:
    double m_longestMs = 0;
    QString m_strLongest;
    QUrl m_page;      // opened last
    int m_iDepth = 0; // of events within events
};
