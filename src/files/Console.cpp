#include "Console.h"

#include <Singleton_p.h>

namespace {

constexpr int MAX_MESSAGES = 1000;

} // namespace

PLUGININTERFACE_DEFINE_SINGLETON(CConsole);

QList<CConsole::SConsoleMessage> CConsole::m_listMessages;

CConsole::CConsole()
{
    // Queued connections look up the type by the name in the signal's signature.
    qRegisterMetaType<SConsoleMessage>("SConsoleMessage");
}

void CConsole::AddMessage(const QString &message, EMessageCategory category, EMessageLevel level,
                          const QString &detail, int number)
{
    SConsoleMessage record;
    record.dtTimestamp = QDateTime::currentDateTime();
    // Deep copies: the characters of a literal would disappear with the plugin that contains it.
    record.strMessage = QString(message.constData(), message.size());
    record.strDetail = QString(detail.constData(), detail.size());
    record.eCategory = category;
    record.eLevel = level;
    record.iDetail = number;

    m_listMessages.append(record);
    if (m_listMessages.size() > MAX_MESSAGES)
        m_listMessages.removeFirst();

    if (IsExisting())
        Q_EMIT m_Instance->signal_MessageAdded(record);
}

QList<CConsole::SConsoleMessage> CConsole::GetMessages()
{
    return m_listMessages;
}

void CConsole::Clear()
{
    m_listMessages.clear();
}
