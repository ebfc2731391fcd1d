#pragma once

#include "SyncStore.h"

#include <QHash>
#include <QSet>

/// Takes in the rows that a machine sends of one list, in a transaction of the store's.
class CSyncMerge
{
public:
    CSyncMerge(CSyncStore &store, const CSyncStore::SPlace &place, SSyncList &list, SMachine &machine);

    /// False if the file fails it. The list's rows go.
    bool Run();

private:
    struct SRow
    {
        QString strContent;
        qint64 iChanged = 0;
        qint64 iStamp = 0;
        bool bSent = false;   // with this content
        bool bLacked = false; // the machine has another, whatever it has been given
    };

    bool ReadRows();
    bool IsOverwritten(const SSyncRow &sent);
    bool IsEcho(const SSyncRow &sent, const SRow &row);
    bool ReadHeld();
    bool IsHeld(const SSyncRow &sent) const;
    bool Hold(const SSyncRow &sent, qint64 stamp);
    bool Take(const SSyncRow &sent);
    bool SendAgain();
    bool Forget();
    bool Write(const QString &key, const SRow &row);
    bool Remember(const QString &key, const SRow &row, qint64 until);

    CSyncStore &m_store;
    const CSyncStore::SPlace m_place;
    const QString m_strID;
    SSyncList &m_list;
    SMachine &m_machine;
    QSqlQuery m_write;
    QSqlQuery m_remember;
    QSqlQuery m_drop;
    QSqlQuery m_hold;
    QSqlQuery m_findPast;
    QHash<QString, SRow> m_rows;
    QHash<QString, QSet<QString>> m_held; // contents by key
    qint64 m_iNewest = 0;                 // that any machine may have had
    bool m_bAddsOnly = false;
};
