#pragma once

#include <Export.h>

#include <QDateTime>
#include <QList>
#include <QMetaType>
#include <QObject>
#include <QSharedPointer>
#include <QString>

/// The client's log in memory: the latest 1000 messages of the host and the plugins. A signal is emitted for each new
/// message, so that a console window can show it. Nothing is written to disk, and the library itself adds no
/// messages.
///
/// The messages outlive the object: they are still there when it is destroyed and created again. Main thread.
class PLUGININTERFACE_EXPORT CConsole : public QObject
{
    Q_OBJECT

public:
    /// The sources of messages. Hosts and plugins may use other values; the console doesn't check them.
    enum EMessageCategory : qint32 {
        MC_General = 0,
        MC_Plugin = 1,
        MC_Network = 2,
        MC_Database = 3,
        MC_UserInterface = 4,
    };

    /// The severities of messages. Hosts and plugins may use other values; the console doesn't check them.
    enum EMessageLevel : qint32 {
        ML_Debug = 0,
        ML_Info = 1,
        ML_Warning = 2,
        ML_Error = 3,
    };

    /// A message in the log.
    struct SConsoleMessage
    {
        QDateTime dtTimestamp;                   ///< The local time at which the message was added.
        QString strMessage;                      ///< The text to display.
        QString strDetail;                       ///< Defined by the caller.
        EMessageCategory eCategory = MC_General; ///< The source of the message.
        EMessageLevel eLevel = ML_Debug;         ///< The severity of the message.
        int iDetail = -1;                        ///< Defined by the caller.
    };

    /// Returns the object, creating it on first use; the library owns it.
    static CConsole *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Destroys the object at the next turn of the event loop. Its messages are kept.
    static void DestroyInstance();

    /// Appends a message with the current time and emits signal_MessageAdded(). If there are more than 1000 messages,
    /// the oldest is removed. While the object doesn't exist, the message is kept but no signal is emitted.
    static void AddMessage(const QString &message, EMessageCategory category, EMessageLevel level,
                           const QString &detail, int number);
    /// Returns all messages, oldest first.
    static QList<SConsoleMessage> GetMessages();
    /// Removes all messages without emitting a signal.
    static void Clear();

Q_SIGNALS:
    /// Emitted when \a message has been added; it is the last of GetMessages().
    void signal_MessageAdded(const SConsoleMessage &message); // clazy:exclude=fully-qualified-moc-types (known so)

private:
    CConsole();

    static QSharedPointer<CConsole> m_Instance;
    static QList<SConsoleMessage> m_listMessages;
};

Q_DECLARE_METATYPE(CConsole::SConsoleMessage)
