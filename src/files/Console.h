#pragma once

#include <Export.h>

#include <QDateTime>
#include <QList>
#include <QMetaType>
#include <QObject>
#include <QSharedPointer>
#include <QString>

/// The client's in-memory log: the latest 1000 messages of host and plugins, and a signal for each new one, so that a
/// console window can show them. Nothing goes to disk, and the library itself writes nothing here.
///
/// The messages outlive the object: they are still there when the singleton was destroyed and created again. Belongs
/// to the thread of the user interface.
class PLUGININTERFACE_EXPORT CConsole : public QObject
{
    Q_OBJECT

public:
    /// Where a message comes from. Hosts and plugins may use further values; the console compares none.
    enum EMessageCategory : qint32 {
        MC_General = 0,
        MC_Plugin = 1,
        MC_Network = 2,
        MC_Database = 3,
        MC_UserInterface = 4,
    };

    /// How bad it is. Hosts and plugins may use further values here too.
    enum EMessageLevel : qint32 {
        ML_Debug = 0,
        ML_Info = 1,
        ML_Warning = 2,
        ML_Error = 3,
    };

    /// A message as it is kept.
    struct SConsoleMessage
    {
        QDateTime dtTimestamp;                   ///< Local time at which the message was added.
        QString strMessage;                      ///< For people to read.
        QString strDetail;                       ///< The caller's, opaque to the console.
        EMessageCategory eCategory = MC_General; ///< Where it comes from.
        EMessageLevel eLevel = ML_Debug;         ///< How bad it is.
        int iDetail = -1;                        ///< The caller's, opaque to the console.
    };

    /// Creates the singleton on first use; the library owns it.
    static CConsole *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// The object ends at the next turn of the event loop; its messages stay.
    static void DestroyInstance();

    /// Appends a message with the present time, at the cost of the oldest when there are more than 1000, and emits
    /// signal_MessageAdded(). While there is no singleton the message is kept, but nothing is emitted.
    static void AddMessage(const QString &message, EMessageCategory category, EMessageLevel level,
                           const QString &detail, int number);
    /// All messages, the oldest first.
    static QList<SConsoleMessage> GetMessages();
    /// Forgets all messages, without a signal.
    static void Clear();

Q_SIGNALS:
    /// A message was added; it is the last of GetMessages().
    void signal_MessageAdded(const SConsoleMessage &message); // clazy:exclude=fully-qualified-moc-types (known so)

private:
    CConsole();

    static QSharedPointer<CConsole> m_Instance;
    static QList<SConsoleMessage> m_listMessages;
};

Q_DECLARE_METATYPE(CConsole::SConsoleMessage)
