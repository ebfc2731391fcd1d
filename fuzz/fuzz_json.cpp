// JSON of the settings, the tags, the proxy and the web server's answers.

#include "Fuzz.h"

#include <models/PlayerTaggingModel.h>
#include <network/ApplicationProxy.h>
#include <settings/SettingsSync.h>
#include <time/CasinoTime.h>

#include <QJsonDocument>

namespace {

void TakeSettings(const QByteArray &json)
{
    CSettings *settings = CSettings::GetInstance();
    settings->SetOptionJSON(json);
    const QHash<QString, QVariant> taken = settings->GetSettings();
    const QByteArray options = settings->GetOptionJSON();
    settings->SetOptionJSON(options);
    Fuzz::Require(settings->GetSettings() == taken, "the options bring back the settings");
    settings->slot_SaveSettings(true);
}

void TakeTags(const QByteArray &json)
{
    CSettings::GetInstance()->SetPlayerTags(QString::fromUtf8(json));
    CPlayerTaggingModel *tags = CPlayerTaggingModel::GetInstance();
    tags->Load(true);
    tags->Save();
    for (unsigned int tag = 1; tag < CPlayerTaggingModel::ulMaxPlayerTags; ++tag)
        Fuzz::Require(tags->GetBackgroundColor(tag).isValid() == tags->GetTextColor(tag).isValid(),
                      "a tag has both colours or none");
}

void TakeAnswer(const QByteArray &json)
{
    CSettingsSync *sync = CSettingsSync::GetInstance();
    sync->ReadJSON(json);
    sync->GetLocalTimestamps();
    const QByteArray sent = sync->CreateJSONforSync();
    Fuzz::Require(sent.isEmpty() || QJsonDocument::fromJson(sent).isObject(), "what is sent is an object");
    CPlayerModel::DestroyInstances(); // each input adds names
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace

void FuzzOne(QByteArray bytes)
{
    Fuzz::Library();
    CCasinoTime::GetInstance()->SetTimeUTCServer(1000);
    switch (Fuzz::TakeByte(bytes) % 4) {
    case 0:
        return TakeSettings(bytes);
    case 1:
        return TakeTags(bytes);
    case 2:
        CConfig::GetInstance()->SetConfigs({{QStringLiteral("proxysettings"), QString::fromUtf8(bytes)}});
        Globals::SetApplicationProxy();
        return;
    default:
        return TakeAnswer(bytes);
    }
}
