#include "ConfigForms.h"

#include "Nearest.h"
#include "Quoting.h"

#include <QColor>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>

namespace {

using ConfigForms::SFindings;

bool IsColor(const QString &name)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 4, 0)
    return QColor::isValidColor(name);
#else
    return QColor::isValidColorName(name);
#endif
}

// Finds members that nobody reads; \a place is empty or says where the object is.
QStringList FindUnknown(const QJsonObject &object, const QStringList &known, const QString &place = {})
{
    QStringList errors;
    const QStringList names = object.keys();
    for (const QString &name : names) {
        if (!known.contains(name))
            errors.append(L("has an unknown member ") + Quoted(name) + place + Nearest::Suggest(name, known));
    }
    return errors;
}

void CheckProxyType(const QJsonValue &type, SFindings &findings)
{
    static const QStringList types{L("default"), L("socks5"), L("http"), L("httpcaching"), L("ftpcaching")};
    if (!type.isUndefined() && !types.contains(type.toString().toLower()))
        findings.errors.append(L("wants a \"type\" of ") + types.join(L(", ")));
}

// The client has a proxy's fields of its own for what is missing, which are empty in most clients.
void CheckProxy(const QJsonObject &proxy, SFindings &findings)
{
    findings.errors = FindUnknown(proxy, {L("host"), L("port"), L("type"), L("user"), L("password")});
    for (const QString &name : {L("host"), L("user"), L("password")}) {
        if (!proxy.value(name).isUndefined() && !proxy.value(name).isString())
            findings.errors.append(L("wants a text for ") + Quoted(name));
    }
    const QJsonValue host = proxy.value(L("host"));
    if (host.isString() && host.toString().isEmpty())
        findings.errors.append(L("has an empty \"host\""));
    const QJsonValue port = proxy.value(L("port"));
    const int number = port.toInt();
    if (!port.isUndefined() && (number < 1 || number > 65535))
        findings.errors.append(L("wants a whole number from 1 to 65535 for \"port\""));
    CheckProxyType(proxy.value(L("type")), findings);
    for (const QString &name : {L("host"), L("port")}) {
        if (!proxy.contains(name))
            findings.notes.append(L("is ignored unless the client brings a \"") + name + L("\" along"));
    }
}

void CheckTag(const QString &name, const QJsonValue &tag, SFindings &findings)
{
    static const QRegularExpression number(L("^([1-9]|10)$"));
    const QString place = L(" of tag ") + Quoted(name);
    if (!number.match(name).hasMatch()) {
        findings.errors.append(L("has a tag ") + Quoted(name) + L(", but the tags are \"1\" to \"10\""));
    } else if (!tag.isObject()) {
        findings.errors.append(L("wants an object with \"c\" and \"n\" for tag ") + Quoted(name));
    } else {
        const QJsonValue color = tag.toObject().value(L("c"));
        const QJsonValue text = tag.toObject().value(L("n"));
        findings.errors += FindUnknown(tag.toObject(), {L("c"), L("n")}, place);
        if (!color.isUndefined() && !IsColor(color.toString()))
            findings.errors.append(L("wants a colour such as \"#c0c0c0\" for \"c\"") + place);
        if (!text.isUndefined() && !text.isString())
            findings.errors.append(L("wants a text for \"n\"") + place);
    }
}

void CheckTags(const QJsonObject &tags, SFindings &findings)
{
    for (auto tag = tags.begin(); tag != tags.end(); ++tag)
        CheckTag(tag.key(), tag.value(), findings);
}

void CheckRatings(const QString &text, SFindings &findings)
{
    static const QString item = L("\\s*(\\d+)\\s*,\\s*\\(\\s*(\\d+)\\s*,\\s*(\\d+)\\s*\\)\\s*");
    static const QRegularExpression whole(L("^%1(,%1)*$").arg(item));
    static const QRegularExpression one(item);
    if (!whole.match(text).hasMatch()) {
        findings.errors.append(L("wants ratings with two numbers each, such as \"0,(0,5),1,(1,4)\""));
        return;
    }
    QSet<int> ratings;
    auto match = one.globalMatch(text);
    while (match.hasNext()) {
        const auto found = match.next();
        bool good = false;
        const int rating = found.captured(1).toInt(&good);
        if (!good || rating > 5)
            findings.errors.append(L("has a rating ") + found.captured(1) + L(", but ratings are 0 to 5"));
        else if (ratings.contains(rating))
            findings.errors.append(L("has more than one rating ") + QString::number(rating));
        ratings.insert(rating);
        for (int column = 2; column <= 3; ++column) {
            const int value = found.captured(column).toInt(&good);
            if (!good || value > 255)
                findings.errors.append(L("has a number ") + found.captured(column) + L(", but the largest is 255"));
        }
    }
}

void CheckAvatarModes(const QString &text, SFindings &findings)
{
    static const QStringList known{L("cartoon"), L("custom"), L("noavatar")};
    static const QRegularExpression separator(L("[^a-z]+"));
    const QStringList words = text.toLower().split(separator, Qt::SkipEmptyParts);
    if (words.isEmpty())
        findings.errors.append(L("names none of ") + known.join(L(", ")));
    QSet<QString> found;
    for (const QString &word : words) {
        if (!known.contains(word))
            findings.errors.append(L("has an unknown word ") + Quoted(word) + L(", but wants ") +
                                   known.join(L(", ")) + L(", with a comma between them"));
        else if (found.contains(word))
            findings.errors.append(L("names ") + word + L(" more than once"));
        found.insert(word);
    }
}

using TObjectCheck = void (*)(const QJsonObject &object, SFindings &findings);
using TTextCheck = void (*)(const QString &text, SFindings &findings);

const QHash<QString, TObjectCheck> &ObjectChecks()
{
    static const QHash<QString, TObjectCheck> checks{{L("playertags"), &CheckTags},
                                                     {L("proxysettings"), &CheckProxy}};
    return checks;
}

const QHash<QString, TTextCheck> &TextChecks()
{
    static const QHash<QString, TTextCheck> checks{{L("avatardisplaymode"), &CheckAvatarModes},
                                                   {L("tablerating"), &CheckRatings},
                                                   {L("tablerating_warning"), &CheckRatings}};
    return checks;
}

void CheckObjectText(TObjectCheck check, const QString &text, SFindings &findings)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &error);
    if (error.error != QJsonParseError::NoError)
        findings.errors.append(L("is no JSON: ") + error.errorString());
    else if (!document.isObject())
        findings.errors.append(L("has to be a JSON object"));
    else
        check(document.object(), findings);
}

} // namespace

bool ConfigForms::IsObject(const QString &key)
{
    return ObjectChecks().contains(key);
}

SFindings ConfigForms::Check(const QString &key, const QString &text)
{
    SFindings findings;
    if (text.isEmpty())
        return findings;
    if (const TObjectCheck check = ObjectChecks().value(key))
        CheckObjectText(check, text, findings);
    if (const TTextCheck check = TextChecks().value(key))
        check(text, findings);
    return findings;
}
