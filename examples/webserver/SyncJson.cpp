#include "SyncJson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

constexpr qint64 TIME_LIMIT = 4102444800;
constexpr int MAX_KEY = 2000; // bytes, which an index of any database can hold
const QString TIME = QStringLiteral("time");

// The fields of each list's rows.
struct SShape
{
    QStringList keys;
    QStringList texts;
    QStringList numbers;
};
const std::array<SShape, SyncJson::LISTS.size()> SHAPES{
    {{{QStringLiteral("area"), QStringLiteral("key")}, {QStringLiteral("value")}, {}},
     {{QStringLiteral("nick")}, {QStringLiteral("note")}, {QStringLiteral("tag"), QStringLiteral("flags")}}}};

QByteArray ToText(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

bool Copy(const QJsonObject &from, const QStringList &names, QJsonObject &to)
{
    for (const QString &name : names)
        to.insert(name, from.value(name));
    return std::all_of(names.begin(), names.end(), [&](const QString &name) { return from.value(name).isString(); });
}

bool ReadRow(const QJsonObject &object, const SShape &shape, SSyncRow &row)
{
    QJsonObject key;
    QJsonObject content;
    bool good = Copy(object, shape.keys, key) && Copy(object, shape.texts, content) &&
                SyncJson::ReadTime(object.value(TIME).toString(), row.iTime);
    for (auto name = shape.numbers.begin(); good && name != shape.numbers.end(); ++name)
        content.insert(*name, static_cast<qint64>(object.value(*name).toString().toUInt(&good)));
    const QByteArray text = ToText(key);
    row.strKey = QString::fromUtf8(text);
    row.strContent = QString::fromUtf8(ToText(content));
    return good && text.size() <= MAX_KEY;
}

bool ReadList(const QJsonValue &rows, const SShape &shape, QVector<SSyncRow> &list)
{
    bool good = rows.isArray() || rows.isUndefined();
    const QJsonArray array = rows.toArray();
    list.resize(array.size());
    for (int i = 0; good && i < array.size(); ++i)
        good = ReadRow(array.at(i).toObject(), shape, list[i]);
    return good;
}

// Key and content are objects already, so their texts are joined as they are.
void AppendRow(const SSyncRow &row, QByteArray &json)
{
    const QByteArray key = row.strKey.toUtf8();
    const QByteArray content = row.strContent.toUtf8();
    json.append(key.constData(), key.size() - 1).append(',');
    json.append(content.constData() + 1, content.size() - 2).append(",\"time\":");
    json.append(QByteArray::number(row.iTime)).append('}');
}

} // namespace

const QString SyncJson::NO_NOTE = QStringLiteral("{\"flags\":0,\"note\":\"\",\"tag\":0}");

bool SyncJson::ReadTime(const QString &text, qint64 &time)
{
    bool good = false;
    time = text.toLongLong(&good);
    return good && time >= 0 && time < TIME_LIMIT;
}

bool SyncJson::ReadLists(const QByteArray &json, TLists &lists)
{
    const QJsonObject root = QJsonDocument::fromJson(json).object();
    bool good = true;
    for (std::size_t i = 0; good && i < LISTS.size(); ++i) {
        const QString name = QString::fromLatin1(LISTS[i]);
        good = ReadTime(root.value(name + TIME).toString(), lists[i].iTime) &&
               ReadList(root.value(name), SHAPES[i], lists[i].rows);
    }
    return good;
}

QByteArray SyncJson::WriteLists(const TLists &lists)
{
    QByteArray json("{");
    for (std::size_t i = 0; i < LISTS.size(); ++i) {
        const QByteArray name = QByteArray("\"") + LISTS[i];
        const QVector<SSyncRow> &rows = lists[i].rows;
        if (!rows.isEmpty())
            json.append(name).append("\":[");
        for (int row = 0; row < rows.size(); ++row) {
            AppendRow(rows.at(row), json);
            json.append(row + 1 < rows.size() ? "," : "],");
        }
        json.append(name).append("time\":").append(QByteArray::number(lists[i].iTime)).append(',');
    }
    json.chop(1);
    return json + '}';
}
