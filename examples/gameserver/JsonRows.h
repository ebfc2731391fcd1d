#pragma once

#include <QJsonObject>
#include <QString>

#include <functional>

/// A row of a data file, which keeps its first fault; values taken after a fault are meaningless.
class CJsonRow
{
public:
    explicit CJsonRow(const QJsonObject &row)
        : m_row(row)
    {
    }

    bool Has(QLatin1String key) const { return m_row.contains(key); }
    void Check(bool good, QLatin1String key, const QString &wanted);

    quint32 TakeNumber(QLatin1String key, quint32 least, quint32 most);
    QString TakeText(QLatin1String key, int least, int most);

    /// Takes an enumeration. The library decodes an unknown letter to a known value, so the letter is compared.
    template <typename Enum>
    Enum TakeLetter(QLatin1String key, Enum (*decode)(char))
    {
        const QString text = TakeText(key, 1, 1);
        const char letter = text.isEmpty() ? '\0' : text.at(0).toLatin1();
        const Enum value = decode(letter);
        Check(value == letter, key, QStringLiteral("a letter that is known"));
        return value;
    }

    /// Returns the fault, empty if there is none. Call it last: a key that hasn't been taken is a fault too.
    QString GetFault() const;

private:
    QJsonObject m_row;
    QString m_strFault;
};

/// Reads a JSON file: an array of at most \a most objects. Calls \a read for each, which returns its fault, empty if
/// there is none. Returns false, with \a error for the author of the file, if the file can't be read or a row has a
/// fault.
bool ReadJsonRows(const QString &fileName, int most, const std::function<QString(CJsonRow &)> &read, QString &error);
