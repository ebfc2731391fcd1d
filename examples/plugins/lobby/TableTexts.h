#pragma once

#include <common/LobbyProtocol.h>

#include <QHash>

/// What the cells of a table say, in the user's language and time zone. Each text of the catalogue, amount and date
/// is made once, when it is first asked for, and kept until Forget().
class CTableTexts
{
public:
    /// To be called when the language or the time zone has changed.
    void Forget();

    /// Of the example's area or of the core.
    QString GetText(const QString &key);
    QString GetType(GlobalDefines::TableType type);
    QString GetGame(const LobbyProtocol::STable &table);
    /// Stakes of a game, or buy-in and fee of a tournament.
    QString GetStakes(const LobbyProtocol::STable &table);
    /// A countdown, or the date and time of a start that is further away or has passed.
    QString GetStart(const LobbyProtocol::STable &table);
    QString GetDate(quint32 time);
    /// Whether the start is within the next 24 hours, by the clock of the client.
    static bool IsCountingDown(const LobbyProtocol::STable &table);

private:
    QString GetAmount(GlobalDefines::MoneyType money, GlobalDefines::MoneyValue amount);

    QHash<QString, QString> m_texts; // by key
    QHash<quint64, QString> m_amounts;
    QHash<quint32, QString> m_dates;
};
