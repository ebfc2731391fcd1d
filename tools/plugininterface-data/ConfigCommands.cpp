#include "ConfigCommands.h"

#include "ConfigForms.h"
#include "ConfigKeys.h"
#include "DataFile.h"
#include "JsonLines.h"
#include "Nearest.h"
#include "Quoting.h"
#include "Report.h"

#include <database/ConfigDB.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>

#include <cmath>
#include <limits>
#include <optional>

namespace {

// Values as the library reads them, by key in lower case.
using TConfig = QMap<QString, QString>;

std::optional<QJsonObject> ReadObject(const QByteArray &json, const QString &path, CReport &report)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError) {
        report.Error(path, JsonLines::LineAt(json, error.offset), error.errorString());
        return std::nullopt;
    }
    if (!document.isObject()) {
        report.Error(path, 1, QStringLiteral("has to be one object of keys and values"));
        return std::nullopt;
    }
    return document.object();
}

std::optional<QString> IntText(const QJsonValue &value)
{
    using TLimits = std::numeric_limits<int>;
    const double number = value.toDouble();
    if (!value.isDouble() || number < TLimits::min() || number > TLimits::max() || number != std::floor(number))
        return std::nullopt;
    return QString::number(static_cast<int>(number));
}

std::optional<QString> BoolText(const QJsonValue &value)
{
    if (!value.isBool())
        return std::nullopt;
    return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
}

// Returns an object, which the value may be or be the text of, as its compact text, so that the same object makes the
// same file. Returns another text unchanged.
std::optional<QString> ObjectText(const QJsonValue &value)
{
    const QJsonObject object =
        value.isObject() ? value.toObject() : QJsonDocument::fromJson(value.toString().toUtf8()).object();
    if (value.isObject() || !object.isEmpty())
        return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
    return value.isString() ? std::make_optional(value.toString()) : std::nullopt;
}

// Returns the value as it is stored; nothing if its type isn't the key's.
std::optional<QString> StoredText(const SConfigKey &key, const QJsonValue &value)
{
    if (ConfigForms::IsObject(key.strKey))
        return ObjectText(value);
    switch (key.vDefault.userType()) {
    case QMetaType::Int:
        return IntText(value);
    case QMetaType::Bool:
        return BoolText(value);
    default:
        return value.isString() ? std::make_optional(value.toString()) : std::nullopt;
    }
}

QString Wanted(const SConfigKey &key)
{
    switch (key.vDefault.userType()) {
    case QMetaType::Int:
        return QStringLiteral("a whole number from -2147483648 to 2147483647");
    case QMetaType::Bool:
        return QStringLiteral("true or false");
    default:
        return ConfigForms::IsObject(key.strKey) ? QStringLiteral("an object in braces, or its text in double quotes")
                                                 : QStringLiteral("a text in double quotes");
    }
}

// Reports what is wrong with the form of a text.
void CheckForm(const SConfigKey &key, const QString &text, const QString &path, int line, CReport &report)
{
    const ConfigForms::SFindings findings = ConfigForms::Check(key.strKey, text);
    for (const QString &finding : findings.errors)
        report.Error(path, line, Quoted(key.strKey) + QLatin1Char(' ') + finding);
    for (const QString &finding : findings.notes)
        report.Note(path, line, Quoted(key.strKey) + QLatin1Char(' ') + finding);
}

class CConfigReader
{
public:
    CConfigReader(const QString &path, CReport &report)
        : m_strPath(path)
        , m_report(report)
    {
    }

    TConfig Read(const QByteArray &json)
    {
        const auto object = ReadObject(json, m_strPath, m_report);
        if (!object)
            return {};
        const auto members = JsonLines::FindMembers(json);
        for (const JsonLines::SMember &member : members)
            AddMember(member, object->value(member.strName));
        return m_config;
    }

private:
    void AddMember(const JsonLines::SMember &member, const QJsonValue &value)
    {
        const QString name = Quoted(member.strName);
        const SConfigKey *key = ConfigKeys::Find(member.strName);
        if (!key) {
            Error(member,
                  QLatin1String("unknown key ") + name + Nearest::Suggest(member.strName, ConfigKeys::GetNames()));
        } else if (const int first = m_lines.value(key->strKey)) {
            Error(member, name + QLatin1String(" is in line ") + QString::number(first) + QLatin1String(" already"));
        } else {
            m_lines.insert(key->strKey, member.iLine);
            AddValue(member, *key, value);
        }
    }

    void AddValue(const JsonLines::SMember &member, const SConfigKey &key, const QJsonValue &value)
    {
        const auto text = StoredText(key, value);
        if (!text) {
            Error(member, Quoted(member.strName) + QLatin1String(" wants ") + Wanted(key));
        } else if (*text == key.vDefault.toString()) {
            m_report.Note(m_strPath, member.iLine,
                          Quoted(member.strName) + QLatin1String(" is left out of the file, since this is its "
                                                                 "built-in value"));
        } else {
            CheckForm(key, *text, m_strPath, member.iLine, m_report);
            m_config.insert(key.strKey, *text);
        }
    }

    void Error(const JsonLines::SMember &member, const QString &text)
    {
        m_report.Error(m_strPath, member.iLine, text);
    }

    QString m_strPath;
    CReport &m_report;
    TConfig m_config;
    QHash<QString, int> m_lines;
};

bool Write(CDataFile &file, const TConfig &config)
{
    const QString table = CConfigDB::strTableName;
    QVector<QVariantList> rows;
    for (auto value = config.cbegin(); value != config.cend(); ++value)
        rows.append({value.key(), value.value()});
    return file.Open() &&
           file.Exec(QLatin1String("CREATE TABLE ") + table +
                     QLatin1String(" (COV_cKey TEXT PRIMARY KEY NOT NULL, COV_cValue TEXT NOT NULL)")) &&
           file.Insert(QLatin1String("INSERT INTO ") + table + QLatin1String(" VALUES (?, ?)"), rows) &&
           file.Commit();
}

// Returns the value that the library reads; reports it if the author of the file meant another.
QJsonValue ReadValue(const SConfigKey &key, const QVariant &value, const QString &path, CReport &report)
{
    const QString text = value.toString();
    bool good = true;
    QJsonValue result(text.isNull() ? QLatin1String("") : text);
    if (key.vDefault.userType() == QMetaType::Int)
        result = value.toInt(&good);
    if (key.vDefault.userType() == QMetaType::Bool) {
        result = text == QLatin1String("true");
        good = result.toBool() || text == QLatin1String("false");
    }
    if (!good)
        report.Error(path, 0,
                     Quoted(key.strKey) + QLatin1String(" is ") + Quoted(text) + QLatin1String(", but wants ") +
                         Wanted(key));
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
    if (ConfigForms::IsObject(key.strKey) && document.isObject())
        result = document.object();
    CheckForm(key, text, path, 0, report);
    return result;
}

QString MarkdownDefault(const SConfigKey &key)
{
    const QString text = key.vDefault.toString();
    return text.isEmpty() ? QStringLiteral("empty") : QLatin1Char('`') + text + QLatin1Char('`');
}

QString MarkdownKeys()
{
    QString page = QStringLiteral("# Configuration keys\n\n"
                                  "The keys of `tbl_config` in `config.sqlite`, in the order of the properties of "
                                  "`CConfigBase`. Readers are those\nwithin the library; hosts and plugins may read "
                                  "every key. This page is made by `plugininterface-data config keys`.\n\n"
                                  "| Key | Type | Default | Property | Readers |\n"
                                  "|---|---|---|---|---|");
    for (const SConfigKey &key : ConfigKeys::GetAll())
        page += QStringLiteral("\n| `%1` | %2 | %3 | `%4` | %5 |")
                    .arg(key.strKey, key.GetTypeName(), MarkdownDefault(key), key.strProperty, key.strReaders);
    return page;
}

QString JsonKeys()
{
    QJsonArray keys;
    for (const SConfigKey &key : ConfigKeys::GetAll()) {
        const QStringList readers = key.strReaders.split(QStringLiteral(", "), Qt::SkipEmptyParts);
        keys.append(QJsonObject{{QStringLiteral("key"), key.strKey},
                                {QStringLiteral("type"), key.GetTypeName()},
                                {QStringLiteral("default"), QJsonValue::fromVariant(key.vDefault)},
                                {QStringLiteral("property"), key.strProperty},
                                {QStringLiteral("readers"), QJsonArray::fromStringList(readers)}});
    }
    return QString::fromUtf8(QJsonDocument(keys).toJson().trimmed());
}

} // namespace

int ConfigCommands::Build(const QString &json, const QString &out)
{
    CReport report;
    QFile source(json);
    if (!source.open(QIODevice::ReadOnly)) {
        report.Error(json, 0, source.errorString());
        return report.GetExitCode();
    }
    if (CReplacementFile::IsSame(json, out)) {
        report.Error(out, 0, QStringLiteral("is the source itself; name another file to make"));
        return report.GetExitCode();
    }
    const TConfig config = CConfigReader(json, report).Read(source.readAll());
    if (report.HasErrors())
        return report.GetExitCode();
    CDataFile file(out);
    if (!Write(file, config))
        report.Error(out, 0, file.GetError());
    else
        report.Print(out + QLatin1String(": ") + QString::number(config.size()) + QLatin1String(" values"));
    return report.GetExitCode();
}

int ConfigCommands::Dump(const QString &path)
{
    CReport report;
    CDataReader file(path);
    QVector<QVariantList> rows;
    if (file.Open({CConfigDB::strTableName}))
        rows = file.Select(QLatin1String("SELECT COV_cKey, COV_cValue FROM ") + CConfigDB::strTableName);
    if (!file.GetError().isEmpty()) {
        report.Error(path, 0, file.GetError());
        return report.GetExitCode();
    }
    QJsonObject object;
    for (const QVariantList &row : qAsConst(rows)) {
        const QString name = row.at(0).toString();
        const SConfigKey *key = ConfigKeys::Find(name);
        if (!key)
            report.Error(path, 0, QLatin1String("unknown key ") + Quoted(name));
        else if (object.contains(key->strKey))
            report.Error(path, 0, QLatin1String("has more than one ") + Quoted(key->strKey));
        else
            object.insert(key->strKey, ReadValue(*key, row.at(1), path, report));
    }
    report.Print(QString::fromUtf8(QJsonDocument(object).toJson().trimmed()));
    return report.GetExitCode();
}

int ConfigCommands::Keys(bool json)
{
    CReport report;
    report.Print(json ? JsonKeys() : MarkdownKeys());
    return report.GetExitCode();
}
