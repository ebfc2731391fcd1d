#pragma once

#include "UserRows.h"

#include <QHash>
#include <QString>
#include <QVector>

#include <algorithm>

/// What users have chosen, and what each machine had heard of by then. A row is a user's setting, or note, tag and
/// flags of a player; its content is a text. Choices count from 1, for 0 stands for what a row is without one.
class CLedger
{
public:
    static constexpr int MOST_CHOICES = 60; ///< Of a row: sets of them are bits.

    const QString &GetFault() const { return m_strFault; }
    void Fail(const QString &what)
    {
        if (m_strFault.isEmpty())
            m_strFault = what;
    }

    /// A machine's user sees it.
    void See(int machine, const QString &row, const QString &content)
    {
        quint64 &heard = m_rows[row].heard[machine];
        const quint64 found = Find(row, content);
        if ((found & (heard | 1)) == 0)
            heard |= GetOldest(found) | GetChoice(row, GetOldest(found)).heard;
    }

    void Choose(int machine, const QString &row, const QString &before, const QString &after, qint64 time)
    {
        if (before == after)
            return;
        See(machine, row, before);
        SRow &to = m_rows[row];
        to.heard[machine] |= 1;
        to.choices.append({machine, time, after, to.heard[machine]});
        to.heard[machine] |= Bit(int(to.choices.size()));
    }

    /// A machine has stored it for a user who hasn't chosen anything there. It counts as a choice that makes no other
    /// one old: by its time nobody can tell it from one.
    void Give(int machine, const QString &row, const QString &content, qint64 time)
    {
        SRow &to = m_rows[row];
        if (to.choices.size() >= MOST_CHOICES)
            return;
        to.choices.append({machine, time, content, 0, true});
        to.heard[machine] |= Bit(int(to.choices.size()));
    }

    /// A machine's file holds it.
    void Store(int machine, const QString &row, const QString &content)
    {
        SRow &in = m_rows[row];
        const quint64 found = Find(row, content);
        quint64 &stored = in.stored[machine];
        if (!IsNewest(in, found, stored))
            Fail("machine %1 has stored something later than %2 = %3"_s.arg(machine).arg(row, content) + Tell(row));
        if ((found & stored) == 0)
            stored |= GetOldest(found);
        Keep(machine, row, content);
    }

    /// The content has left the memory of the machine, which may be the one that chose it.
    void Keep(int machine, const QString &row, const QString &content)
    {
        const quint64 found = Find(row, content);
        SRow &in = m_rows[row];
        for (int i = 0; i < in.choices.size(); ++i) {
            if ((found & Bit(i + 1)) != 0 && in.choices.at(i).machine == machine)
                in.choices[i].bSafe = true;
        }
    }

    /// A machine has been killed, and its file holds the content. \a due: there was time to store what it chose.
    void Kill(int machine, const QString &row, const QString &content, bool due)
    {
        SRow &in = m_rows[row];
        const quint64 found = Find(row, content);
        for (int i = 0; i < in.choices.size(); ++i) {
            SChoice &choice = in.choices[i];
            if (choice.machine != machine || choice.bDead)
                continue;
            if (due && found != 0 && (found & ~choice.heard) == 0)
                Fail("machine %1 hasn't stored %2 = %3, but %4"_s.arg(machine).arg(row, choice.strContent, content));
            if (!choice.bSafe) {
                choice.bDead = true;
                in.heard[machine] &= ~Bit(i + 1);
            }
        }
    }

    /// Everybody has it at last.
    void End(const QString &row, const QString &content)
    {
        const quint64 found = Find(row, content);
        if (!IsNewest(m_rows[row], found, ~quint64(0)))
            Fail("%1 = %2 is back from the dead"_s.arg(row, content) + Tell(row));
    }

    QString Tell(const QString &row)
    {
        QString text;
        const QVector<SChoice> &choices = m_rows[row].choices;
        for (int i = 0; i < choices.size(); ++i)
            text +=
                "\n    %1: %2 at %3 on %4, heard %5%6%7"_s.arg(i + 1)
                    .arg(choices.at(i).strContent)
                    .arg(choices.at(i).iTime)
                    .arg(choices.at(i).machine)
                    .arg(choices.at(i).heard, 0, 2)
                    .arg(choices.at(i).bSafe ? " safe"_s : QString(), choices.at(i).bDead ? " dead"_s : QString());
        return text;
    }

private:
    struct SChoice
    {
        int machine = 0;
        qint64 iTime = 0;
        QString strContent;
        quint64 heard = 0;
        bool bSafe = false; // stored, or sent
        bool bDead = false; // with its machine
    };
    struct SRow
    {
        QVector<SChoice> choices;
        QHash<int, quint64> heard; // by machine
        QHash<int, quint64> stored;
    };

    // Of those that have the same content; no machine need have heard of the others.
    static quint64 GetOldest(quint64 found) { return found & (~found + 1); }

    static quint64 Bit(int number) { return quint64(1) << number; }

    SChoice GetChoice(const QString &row, quint64 bit)
    {
        const int number = bit <= 1 ? 0 : int(qCountTrailingZeroBits(bit));
        return number == 0 ? SChoice() : m_rows[row].choices.at(number - 1);
    }

    // Who has no choice of a setting has that of the installation.
    quint64 Find(const QString &row, const QString &content)
    {
        SRow &in = m_rows[row];
        quint64 found = 0;
        for (int i = 0; i < in.choices.size(); ++i) {
            if (in.choices.at(i).strContent == content)
                found |= Bit(i + 1);
        }
        if (content == GetUnchanged(row) || (found == 0 && row.contains(" s/"_s)))
            found |= 1;
        if (found == 0)
            Fail("nobody has chosen %1 = %2"_s.arg(row, content));
        return found;
    }

    // Whether one of the found has been heard of by none of the others.
    static bool IsNewest(const SRow &in, quint64 found, quint64 others)
    {
        for (int i = 0; i < in.choices.size(); ++i) {
            if ((others & Bit(i + 1)) != 0 && !in.choices.at(i).bDead)
                found &= ~in.choices.at(i).heard;
        }
        return found != 0;
    }

    QHash<QString, SRow> m_rows;
    QString m_strFault;
};
