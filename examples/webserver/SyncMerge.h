#pragma once

#include "SyncStore.h"

#include <QHash>

/// Takes in the rows that a machine sends of one list, in a transaction of the store's.
class CSyncMerge
{
public:
    CSyncMerge(CSyncStore &store, const QString &id, SSyncList &list, SMachine &machine);

    /// False if the file fails it. The list's rows go.
    bool Run();

private:
    struct SRow
    {
        QString strContent;
        qint64 iChanged = 0;
        qint64 iStamp = 0;
        bool bSent = false; // with this content
    };

    bool ReadRows();
    bool IsOverwritten(const SSyncRow &sent);
    bool IsEcho(const SSyncRow &sent, const SRow &row);
    bool Take(const SSyncRow &sent);
    bool SendAgain();
    bool Forget();
    bool Write(const QString &key, const SRow &row);
    bool Remember(const QString &key, const SRow &row, qint64 until);

    CSyncStore &m_store;
    const QString m_strID;
    SSyncList &m_list;
    SMachine &m_machine;
    QSqlQuery m_write;
    QSqlQuery m_remember;
    QSqlQuery m_findPast;
    QHash<QString, SRow> m_rows;
    qint64 m_iNewest = 0; // that any machine may have had
    bool m_bAddsOnly = false;
};
