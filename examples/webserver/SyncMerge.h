#pragma once

#include "SyncStore.h"

#include <QHash>
#include <QPair>
#include <QSet>

class QJsonArray;

/// Takes in the rows that a machine sends of one list, in a transaction of the store's.
///
/// A row that is no echo wins against what is here if it has been changed later. What wins gets a stamp beyond all
/// that any machine has had. A new machine, see SMachine, adds what isn't here but overwrites nothing. Of what is
/// here only the rows are read that the machine sends or lacks, so the work grows with them and not with the list.
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
        bool bLacked = false; // the machine has another, whatever it has been offered
    };

    struct SSent
    {
        QString strContent;
        qint64 iTime = 0; // at least 1
    };

    bool ReadNewest();
    bool ReadSentRows();
    bool ReadOtherRows(qint64 after, qint64 last);
    bool IsOverwritten(const SSyncRow &sent);
    bool IsEcho(const SSyncRow &sent, const SRow &row);
    bool ReadSentBefore();
    bool ReadArrival();
    bool ReadHeld();
    bool ReadMissing();
    bool IsHeld(const SSyncRow &sent) const;
    void Hold(const SSyncRow &sent, qint64 stamp);
    bool IsOwn(const SSyncRow &sent, const SRow &row) const;
    void Take(const SSyncRow &sent);
    bool SendAgain();
    bool Forget();
    void Remember(const QString &key, const SRow &row, qint64 until);
    bool Store();
    bool StoreHeld();
    bool StoreAll(const QJsonArray &rows, const QString &sql, QVariantList values);

    CSyncStore &m_store;
    const CSyncStore::SPlace m_place;
    const QString m_strID;
    SSyncList &m_list;
    SMachine &m_machine;
    CSyncStore::TQuery m_findPast;
    QString m_strKeys;                    // that the machine sends, as a JSON array
    QHash<QString, SRow> m_rows;          // of those that the machine sends or lacks, by key
    QHash<QString, QSet<QString>> m_held; // contents by key
    QHash<QString, SSent> m_sentBefore;   // what the machine has sent last, by key
    // To be stored, by key.
    QSet<QString> m_changed;                                       // of the rows
    QHash<QString, QHash<QPair<QString, qint64>, qint64>> m_past;  // until when, by content and time
    QSet<QString> m_dropped;                                       // of what was held
    QHash<QString, QHash<QString, QPair<qint64, qint64>>> m_holds; // offer and time of sending, by content
    qint64 m_iNewest = 0;                                          // that any machine may have had
    bool m_bArrived = false;                                       // the offer has, as what is sent shows
    bool m_bMissing = false;                                       // a row of the offer there
    bool m_bEmpty = false;                                         // nothing was here
    bool m_bAddsOnly = false;
};
