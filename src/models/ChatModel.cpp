#include "ChatModel.h"

#include <Singleton_p.h>
#include <models/PackedSetting_p.h>
#include <settings/Config.h>
#include <settings/Settings.h>

#include <QDomDocument>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

PLUGININTERFACE_DEFINE_SINGLETON(CChatModel);

namespace {

constexpr int LEVEL_LEAST = 1;
constexpr int LEVEL_WITHOUT_OBSERVERS = 2;
constexpr int LEVEL_WITH_OBSERVERS = 3;

// Applies the operator's rule to the settings.
CChatModel::SSettings Restricted(CChatModel::SSettings settings)
{
    const CConfig *config = CConfig::GetInstance();
    if (config->GetOptionObserverChatSelectable())
        return settings;
    if (config->GetOptionObserverChat())
        settings.iObserverLevel = LEVEL_WITH_OBSERVERS;
    else if (settings.iObserverLevel != LEVEL_LEAST)
        settings.iObserverLevel = LEVEL_WITHOUT_OBSERVERS;
    return settings;
}

// QDomDocument recurses for each nested element and needs a multiple of the file's memory. Its time grows with the
// square of the number of attributes of an element, and with the definitions of a document type.
constexpr int MAX_SIZE = 1 << 20;
constexpr int MAX_DEPTH = 100;
constexpr int CHUNK_SIZE = 4 << 10;

// Returns whether it is safe to build the token read last. A document type may be named, but must define nothing.
bool IsHarmless(const QXmlStreamReader &reader, int &depth)
{
    switch (reader.tokenType()) {
    case QXmlStreamReader::StartElement:
        return ++depth <= MAX_DEPTH;
    case QXmlStreamReader::EndElement:
        --depth;
        return true;
    case QXmlStreamReader::DTD:
        return !reader.text().contains(QLatin1Char('['));
    default:
        return true;
    }
}

// Checks the root element. The reader gets the data in chunks, so that a tag that doesn't end is noticed before all
// of it is read.
bool IsHarmless(const QByteArray &xml)
{
    QXmlStreamReader reader;
    int depth = 0;
    for (int at = 0; at < xml.size(); at += CHUNK_SIZE) {
        reader.addData(xml.mid(at, CHUNK_SIZE));
        bool ended = at == 0;
        while (!reader.atEnd() && reader.readNext() != QXmlStreamReader::Invalid) {
            if (!IsHarmless(reader, depth))
                return false;
            if (reader.isEndElement() && depth == 0)
                return true;
            ended = true;
        }
        if (!ended)
            return false;
    }
    return false;
}

// Returns the root element; null if the file isn't a list of smileys.
QDomElement ReadRoot(QDomDocument &document, const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    const QByteArray xml = file.read(MAX_SIZE + 1);
    if (xml.size() > MAX_SIZE || !IsHarmless(xml))
        return {};
    QXmlStreamReader reader(xml);
    if (!document.setContent(&reader, true))
        return {};
    const QDomElement root = document.documentElement();
    return root.tagName() == QLatin1String("smileyconfig") &&
                   root.attribute(QStringLiteral("version")) == QLatin1String("1.0")
               ? root
               : QDomElement();
}

QString ToPath(const QString &src, const QString &folder)
{
    return src.startsWith(QLatin1String("./")) || src.startsWith(QLatin1String("../")) ? folder + src : src;
}

bool IsYes(const QString &text)
{
    static const QStringList words{QStringLiteral("true"), QStringLiteral("yes"), QStringLiteral("ok"),
                                   QStringLiteral("1"), QStringLiteral("on")};
    return words.contains(text.toLower());
}

} // namespace

CChatModel::CChatModel()
{
    connect(CSettings::GetInstance(), &CSettings::signal_ChatOptionsChanged, this,
            &CChatModel::slot_ChatOptionsChanged);
    LoadSettings();
}

CChatModel::~CChatModel() = default;

CChatModel::SSettings CChatModel::GetSettings() const
{
    return m_Settings;
}

void CChatModel::SetSettings(CChatModel::SSettings settings)
{
    settings = Restricted(settings);
    if (settings == m_Settings)
        return;
    m_Settings = settings;
    SaveSettings();
    Q_EMIT signal_SettingsChanged();
}

QHash<QString, CChatModel::SSmiley> CChatModel::GetSmileyMappings() const
{
    return m_hSmileys;
}

void CChatModel::LoadSmileyConfig(const QString &file)
{
    m_hSmileys.clear();
    QDomDocument document;
    const QDomElement root = ReadRoot(document, file);
    if (root.isNull())
        return;
    const QString folder = file.left(file.lastIndexOf(QLatin1Char('/')) + 1);
    const QString tag = QStringLiteral("smiley");
    const QString textTag = QStringLiteral("placeholder");
    for (QDomElement smiley = root.firstChildElement(tag); !smiley.isNull();
         smiley = smiley.nextSiblingElement(tag)) {
        const QString path = ToPath(smiley.attribute(QStringLiteral("src")), folder);
        if (!QFileInfo(path).isFile())
            continue;
        const bool animate = IsYes(smiley.attribute(QStringLiteral("animate")));
        for (QDomElement text = smiley.firstChildElement(textTag); !text.isNull();
             text = text.nextSiblingElement(textTag)) {
            const QString typed = text.attribute(QStringLiteral("text"));
            if (!typed.isEmpty()) // an empty text would match between any two letters
                m_hSmileys.insert(typed, {path, animate});
        }
    }
    Q_EMIT signal_SmileysChanged();
}

void CChatModel::slot_ChatOptionsChanged()
{
    if (CSettings::GetInstance()->GetCaller() != this)
        LoadSettings();
}

// A value that isn't in the stored form counts as not stored.
void CChatModel::LoadSettings()
{
    SSettings loaded;
    PackedSetting::Unpack(CSettings::GetInstance()->GetChatOptions(), loaded.bOption, loaded.iObserverLevel,
                          loaded.iLevel);
    loaded = Restricted(loaded);
    if (loaded == m_Settings)
        return;
    m_Settings = loaded;
    Q_EMIT signal_SettingsChanged();
}

void CChatModel::SaveSettings()
{
    const QByteArray value = PackedSetting::Pack(m_Settings.bOption, m_Settings.iObserverLevel, m_Settings.iLevel);
    CSettings::GetInstance()->SetChatOptions(value, this, true);
}
