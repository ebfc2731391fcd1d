#include "JsonRows.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

namespace {

bool ReadDocument(const QString &fileName, int most, QJsonDocument &document, QString &error)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("%1: %2").arg(fileName, file.errorString());
        return false;
    }
    QJsonParseError fault{};
    document = QJsonDocument::fromJson(file.readAll(), &fault);
    if (fault.error != QJsonParseError::NoError)
        error =
            QStringLiteral("%1: malformed at byte %2: %3").arg(fileName).arg(fault.offset).arg(fault.errorString());
    else if (!document.isArray())
        error = QStringLiteral("%1: not an array").arg(fileName);
    else if (document.array().size() > most)
        error = QStringLiteral("%1: more than %2 rows").arg(fileName).arg(most);
    return error.isEmpty();
}

QString ReadRow(const QJsonValue &value, const std::function<QString(CJsonRow &)> &read)
{
    if (!value.isObject())
        return QStringLiteral("not an object");
    CJsonRow row(value.toObject());
    return read(row);
}

} // namespace

void CJsonRow::Check(bool good, QLatin1String key, const QString &wanted)
{
    if (!good && m_strFault.isEmpty())
        m_strFault = QStringLiteral("\"%1\" has to be %2").arg(key, wanted);
}

quint32 CJsonRow::TakeNumber(QLatin1String key, quint32 least, quint32 most)
{
    const double number = m_row.take(key).toDouble(-1);
    const bool good = number >= least && number <= most;
    const auto whole = good ? static_cast<quint32>(number) : 0;
    Check(good && number - whole <= 0, key, QStringLiteral("a whole number from %1 to %2").arg(least).arg(most));
    return whole;
}

QString CJsonRow::TakeText(QLatin1String key, int least, int most)
{
    QString text = m_row.take(key).toString();
    Check(text.size() >= least && text.size() <= most, key,
          QStringLiteral("a text of %1 to %2 characters").arg(least).arg(most));
    return text;
}

QString CJsonRow::GetFault() const
{
    if (!m_strFault.isEmpty() || m_row.isEmpty())
        return m_strFault;
    return QStringLiteral("\"%1\" is not a known key").arg(m_row.begin().key());
}

bool ReadJsonRows(const QString &fileName, int most, const std::function<QString(CJsonRow &)> &read, QString &error)
{
    QJsonDocument document;
    if (!ReadDocument(fileName, most, document, error))
        return false;

    const QJsonArray rows = document.array();
    for (int i = 0; i < rows.size(); ++i) {
        const QString fault = ReadRow(rows.at(i), read);
        if (fault.isEmpty())
            continue;
        error = QStringLiteral("%1: row %2: %3").arg(fileName).arg(i + 1).arg(fault);
        return false;
    }
    return true;
}
