#include "SyncJson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

constexpr qint64 TIME_LIMIT = 4102444800;
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

QString ToText(const QJsonObject &object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
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
    row.strKey = ToText(key);
    row.strContent = ToText(content);
    return good;
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

QJsonObject ToObject(const SSyncRow &row)
{
    QJsonObject object = QJsonDocument::fromJson(row.strContent.toUtf8()).object();
    const QJsonObject key = QJsonDocument::fromJson(row.strKey.toUtf8()).object();
    for (auto pair = key.begin(); pair != key.end(); ++pair)
        object.insert(pair.key(), pair.value());
    object.insert(TIME, row.iTime);
    return object;
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
    QJsonObject root;
    for (std::size_t i = 0; i < LISTS.size(); ++i) {
        const QString name = QString::fromLatin1(LISTS[i]);
        QJsonArray rows;
        for (const SSyncRow &row : lists[i].rows)
            rows.append(ToObject(row));
        if (!rows.isEmpty())
            root.insert(name, rows);
        root.insert(name + TIME, lists[i].iTime);
    }
    return ToText(root).toUtf8();
}
