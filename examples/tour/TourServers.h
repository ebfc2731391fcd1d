#pragma once

#include <QProcess>
#include <QStringList>

/// A real server, as a process of its own.
class CServerProcess
{
public:
    ~CServerProcess();

    /// Returns the line by which the server says that it listens, empty if it doesn't start.
    QString Start(const QString &program, const QStringList &arguments);
    /// Ends it at once, wherever it is.
    void Kill();
    /// Stops it where it is, or lets it go on.
    void Pause(bool on);

private:
    QProcess m_process;
};

/// A second client, as a process of its own, which takes the steps that it is told, a line each, and prints what it
/// sees.
class CSecondMachine
{
public:
    void Start(const QString &installation, quint16 gameServerPort);
    /// Has it take a step and prints what it says meanwhile. False unless the step has happened.
    bool Do(const QString &step);
    /// Lets it end as if its user had closed it. False unless all its steps have happened.
    bool End();

    /// The line by which it asks for the next one.
    static constexpr char NEXT_STEP[] = "next step";

private:
    QProcess m_process;
};
