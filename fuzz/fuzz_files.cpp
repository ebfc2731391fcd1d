// Files of the operator: emoticons in XML, and style sheets with the files that they include.

#include "Fuzz.h"

#include <models/ChatModel.h>
#include <ui/StyleSheet.h>

namespace {

void LoadSmileys(const CInstallationTree &installation, const QByteArray &xml)
{
    CChatModel *chat = CChatModel::GetInstance();
    chat->LoadSmileyConfig(installation.WriteFile(QStringLiteral("Resources/smileys.xml"), xml));
    const auto smileys = chat->GetSmileyMappings();
    for (auto smiley = smileys.cbegin(); smiley != smileys.cend(); ++smiley)
        Fuzz::Require(!smiley.value().strFile.isEmpty(), "a smiley has a picture");
}

void LoadSheet(const CInstallationTree &installation, const QByteArray &css)
{
    static const QString included = // clazy:exclude=unused-non-trivial-variable, for the file
        installation.WriteFile(QStringLiteral("Resources/a.css"), "A { b: url(./c.png); }\n");
    const QString untouched = QStringLiteral("untouched");
    const QString path = installation.WriteFile(QStringLiteral("Resources/fuzz.css"), css);
    QString contents = untouched;
    if (!Globals::GetCssContents(path, contents)) {
        Fuzz::Require(contents == untouched, "a broken sheet changes nothing");
        return;
    }
    Fuzz::Require(contents.count(QLatin1Char('{')) == contents.count(QLatin1Char('}')), "each block is closed");
}

} // namespace

void FuzzOne(QByteArray bytes)
{
    const CInstallationTree &installation = Fuzz::Library().GetInstallation();
    if (Fuzz::TakeByte(bytes) % 2 == 0)
        LoadSmileys(installation, bytes);
    else
        LoadSheet(installation, bytes);
}
