#pragma once

#include <QApplication>
#include <QUrl>

/// An application that measures how long it keeps its event loop from going on: the longest that any one event has
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

    struct SEvent
    {
        double ms = 0;
        double busyMs = 0; ///< How long of that the thread kept a processor busy.
        QString strName;   ///< What it was and who got it.
    };

    /// The longest event so far.
    const SEvent &GetLongest() const { return m_longest; }
    /// The busiest event since the last call of StartLap().
    const SEvent &GetBusiestOfLap() const { return m_busiest; }
    void StartLap() { m_busiest = SEvent(); }
    void Forget() { m_longest = SEvent(); }

private:
    SEvent m_longest;
    SEvent m_busiest;
    QUrl m_page;      // opened last
    int m_iDepth = 0; // of events within events
};
