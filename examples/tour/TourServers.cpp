#include "TourServers.h"

#include <QCoreApplication>
#include <QTextStream>
#include <QtTest>

#include <csignal>

namespace {

constexpr int START_LIMIT_MS = 10000;
constexpr int STEP_LIMIT_MS = 60000; // beyond that of a client, which ends by itself when a step doesn't happen

} // namespace

CServerProcess::~CServerProcess()
{
    Kill();
}

QString CServerProcess::Start(const QString &program, const QStringList &arguments)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(program, arguments);
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead(START_LIMIT_MS))
            return QString();
    }
    return QString::fromUtf8(m_process.readLine()).trimmed();
}

void CServerProcess::Pause(bool on)
{
    ::kill(static_cast<pid_t>(m_process.processId()), on ? SIGSTOP : SIGCONT);
}

void CServerProcess::Kill()
{
    m_process.kill();
    m_process.waitForFinished();
}

void CSecondMachine::Start(const QString &installation, quint16 gameServerPort)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QCoreApplication::applicationFilePath(),
                    {installation, QStringLiteral("--second-machine"), QString::number(gameServerPort)});
}

bool CSecondMachine::Do(const QString &step)
{
    m_process.write(step.toUtf8() + '\n');
    bool isDone = false;
    const auto look = [&] {
        while (!isDone && m_process.canReadLine()) {
            const QByteArray line = m_process.readLine();
            isDone = line.trimmed() == NEXT_STEP;
            if (!isDone)
                QTextStream(stdout) << "         " << line << Qt::flush;
        }
        return isDone || m_process.state() == QProcess::NotRunning;
    };
    return QTest::qWaitFor(look, STEP_LIMIT_MS) && isDone;
}

bool CSecondMachine::End()
{
    m_process.closeWriteChannel();
    return m_process.waitForFinished() && m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
}
