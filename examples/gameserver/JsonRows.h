#pragma once

#include <QJsonObject>
#include <QString>

#include <functional>

/// One row of a data file. The first thing found wrong with it stays; what is taken after it means nothing.
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

    /// The library reads an unknown letter as a known one, which a file is not to rest on.
    template <typename Enum>
    Enum TakeLetter(QLatin1String key, Enum (*decode)(char))
    {
        const QString text = TakeText(key, 1, 1);
        const char letter = text.isEmpty() ? '\0' : text.at(0).toLatin1();
        const Enum value = decode(letter);
        Check(value == letter, key, QStringLiteral("a letter that is known"));
        return value;
    }

    /// Empty if all is well. To be asked last: what wasn't taken by then is a fault too.
    QString GetFault() const;

private:
    QJsonObject m_row;
    QString m_strFault;
};

/// Reads a JSON file: an array of at most \a most objects, each of which goes to \a read. That answers what is wrong
/// with it, empty if nothing. False, with \a error for whoever wrote the file, if it can't be read or one row isn't
/// right.
bool ReadJsonRows(const QString &fileName, int most, const std::function<QString(CJsonRow &)> &read, QString &error);
