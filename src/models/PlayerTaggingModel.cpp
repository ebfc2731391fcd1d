#include "PlayerTaggingModel.h"

#include <Singleton_p.h>
#include <models/LoadedUser_p.h>
#include <models/UserInfo.h>
#include <settings/Config.h>
#include <settings/Settings.h>
#include <translation/Translation.h>
#include <ui/TextColor.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <QPixmap>
#include <QVariantMap>

#include <algorithm>

PLUGININTERFACE_DEFINE_SINGLETON(CPlayerTaggingModel);

namespace {

const QString AREA = QStringLiteral("PLAYERTAGGING");
const QString COLOR = QStringLiteral("c");
const QString NAME = QStringLiteral("n");
// The dynamic property that tells whether the model was given all colours, which requires a login.
const char COLORED_PROPERTY[] = "colored";

constexpr int ICON_SIZE = 32;
constexpr QRect ICON_SQUARE(8, 4, 24, 24);

struct SDefault
{
    const char *strKey;
    const char *strColor;
};

constexpr std::array<SDefault, CPlayerTaggingModel::ulMaxPlayerTags> DEFAULTS{{
    {"PLAYERTAGGING_NOTAG", ""},
    {"PLAYERTAGGING_TAG1", "#FFFFFF"},
    {"PLAYERTAGGING_TAG2", "#FF007F"},
    {"PLAYERTAGGING_TAG3", "#007FFF"},
    {"PLAYERTAGGING_TAG4", "#7FFF00"},
    {"PLAYERTAGGING_TAG5", "#FF0000"},
    {"PLAYERTAGGING_TAG6", "#00FF00"},
    {"PLAYERTAGGING_TAG7", "#0000FF"},
    {"PLAYERTAGGING_TAG8", "#FFFF00"},
    {"PLAYERTAGGING_TAG9", "#FF00FF"},
    {"PLAYERTAGGING_TAG10", "#00FFFF"},
}};

// Returns the user's tags, or the operator's if there are none or without \a fromSettings.
QString GetStored(bool fromSettings)
{
    const QString text = fromSettings ? CSettings::GetInstance()->GetPlayerTags() : QString();
    return text.isEmpty() ? CConfig::GetInstance()->GetPlayerTags() : text;
}

QColor GetDefaultColor(unsigned int index)
{
    return QColor(QLatin1String(DEFAULTS[index].strColor));
}

QIcon PaintIcon(const QColor &color)
{
    QPixmap picture(ICON_SIZE, ICON_SIZE);
    picture.fill(QColor(0, 0, 0, 0));
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::gray);
    painter.fillRect(ICON_SQUARE, QBrush(color, Qt::SolidPattern));
    painter.drawRect(ICON_SQUARE);
    return QIcon(picture);
}

bool IsLoggedIn()
{
    return CUserInfo::GetInstance()->IsLoggedIn();
}

} // namespace

CPlayerTaggingModel::CPlayerTaggingModel()
{
    if (IsLoggedIn())
        SetDefaultColors();
    for (unsigned int index = 0; index < ulMaxPlayerTags; ++index)
        m_aPlayerTags[index].itmText.SetTranslationKey(QLatin1String(DEFAULTS[index].strKey), AREA);
    connect(CSettings::GetInstance(), &CSettings::signal_PlayerTagsChanged, this,
            &CPlayerTaggingModel::slot_PlayerTagsChanged);
    connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, this,
            &CPlayerTaggingModel::slot_TranslationChanged);
    LoadedUser::Connect(this, &CPlayerTaggingModel::FollowUser);
    LoadedUser::Set(*this, CSettings::GetInstance()->GetNickname());
    Load(true);
}

CPlayerTaggingModel::~CPlayerTaggingModel() = default;

bool CPlayerTaggingModel::IsAvailable(unsigned int index) const
{
    return IsLoggedIn() && index < ulMaxPlayerTags;
}

QString CPlayerTaggingModel::GetText(unsigned int index)
{
    if (!IsAvailable(index))
        return QString();
    SPlayerTag &tag = m_aPlayerTags[index];
    if (!tag.strCustomText.isEmpty())
        return tag.strCustomText;
    tag.itmText.ReTranslate();
    return tag.itmText.GetTranslatedText();
}

QColor CPlayerTaggingModel::GetBackgroundColor(unsigned int index) const
{
    return IsAvailable(index) ? m_aPlayerTags[index].colBackground : QColor();
}

QColor CPlayerTaggingModel::GetTextColor(unsigned int index) const
{
    return IsAvailable(index) ? m_aPlayerTags[index].colText : QColor();
}

QColor CPlayerTaggingModel::GetColor(unsigned int index) const
{
    return m_aPlayerTags[index].colBackground;
}

QIcon CPlayerTaggingModel::GetIcon(unsigned int index) const
{
    return IsAvailable(index) ? m_aPlayerTags[index].icnIcon : QIcon();
}

QIcon CPlayerTaggingModel::GetIcon(QColor color) const
{
    return PaintIcon(color);
}

void CPlayerTaggingModel::SetColor(unsigned int index, const QColor &color)
{
    if (!IsChangeable(index))
        return;
    Paint(m_aPlayerTags[index], color);
}

void CPlayerTaggingModel::SetText(unsigned int index, const QString &text)
{
    if (IsChangeable(index))
        m_aPlayerTags[index].strCustomText = text;
}

void CPlayerTaggingModel::Load(bool fromSettings)
{
    if (LayOver(GetStored(fromSettings)))
        Q_EMIT signal_PlayerTagsChanged();
}

void CPlayerTaggingModel::Save()
{
    if (!IsLoggedIn())
        return;
    AddMissingColors();
    QVariantMap tags;
    for (unsigned int index = 1; index < ulMaxPlayerTags; ++index) {
        const SPlayerTag &tag = m_aPlayerTags[index];
        QVariantMap stored{{COLOR, tag.colBackground.name()}};
        if (!tag.strCustomText.isEmpty())
            stored.insert(NAME, tag.strCustomText);
        tags.insert(QString::number(index), stored);
    }
    const QByteArray json = QJsonDocument(QJsonObject::fromVariantMap(tags)).toJson();
    CSettings::GetInstance()->SetPlayerTags(QString::fromUtf8(json), this, true);
    Q_EMIT signal_PlayerTagsChanged();
}

void CPlayerTaggingModel::RestoreDefault()
{
    if (IsLoggedIn()) {
        SetDefaultColors();
        ClearTexts();
    }
    Load(false);
    Save();
    Q_EMIT signal_PlayerTagsChanged();
}

void CPlayerTaggingModel::slot_PlayerTagsChanged()
{
    if (CSettings::GetInstance()->GetCaller() != this)
        LoadOfUser();
}

void CPlayerTaggingModel::slot_TranslationChanged()
{
    for (SPlayerTag &tag : m_aPlayerTags)
        tag.itmText.ReTranslate();
}

bool CPlayerTaggingModel::IsChangeable(unsigned int index) const
{
    return index > 0 && IsAvailable(index);
}

bool CPlayerTaggingModel::HasColors() const
{
    return std::any_of(m_aPlayerTags.cbegin(), m_aPlayerTags.cend(),
                       [](const SPlayerTag &tag) { return tag.colBackground.isValid(); });
}

void CPlayerTaggingModel::Paint(SPlayerTag &tag, const QColor &color)
{
    tag.colBackground = color;
    tag.colText = Globals::GetIdealTextColor(color);
    tag.icnIcon = PaintIcon(color);
}

void CPlayerTaggingModel::SetDefaultColors()
{
    setProperty(COLORED_PROPERTY, true);
    for (unsigned int index = 1; index < ulMaxPlayerTags; ++index)
        Paint(m_aPlayerTags[index], GetDefaultColor(index));
}

// Adds the colours that a model created before the first login still lacks.
void CPlayerTaggingModel::AddMissingColors()
{
    if (property(COLORED_PROPERTY).toBool())
        return;
    setProperty(COLORED_PROPERTY, true);
    for (unsigned int index = 1; index < ulMaxPlayerTags; ++index) {
        if (!m_aPlayerTags[index].colBackground.isValid())
            Paint(m_aPlayerTags[index], GetDefaultColor(index));
    }
}

void CPlayerTaggingModel::ClearTexts()
{
    for (SPlayerTag &tag : m_aPlayerTags)
        tag.strCustomText.clear();
}

// Returns false and changes nothing if the text can't be parsed.
bool CPlayerTaggingModel::LayOver(const QString &text)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &error);
    if (text.isEmpty() || error.error != QJsonParseError::NoError)
        return false;
    const QVariantMap tags = document.object().toVariantMap();
    for (auto entry = tags.cbegin(); entry != tags.cend(); ++entry) {
        const unsigned int index = entry.key().toUInt();
        const QVariantMap tag = entry->toMap();
        if (tag.contains(COLOR))
            SetColor(index, QColor(tag.value(COLOR).toString()));
        if (tag.contains(NAME))
            SetText(index, tag.value(NAME).toString());
    }
    return true;
}

// Loads the user's tags once CSettings holds the user's settings, even if it signalled no change.
void CPlayerTaggingModel::FollowUser()
{
    if (LoadedUser::HasChanged(*this))
        LoadOfUser();
}

// Discards the tags of a previous user, so that none of them show among those of the current user.
void CPlayerTaggingModel::LoadOfUser()
{
    const QString user = CSettings::GetInstance()->GetNickname();
    bool changed = false;
    if (user != LoadedUser::Get(*this)) {
        LoadedUser::Set(*this, user);
        changed = IsLoggedIn() && HasColors();
        if (changed)
            SetDefaultColors();
        if (IsLoggedIn())
            ClearTexts();
    }
    if (LayOver(GetStored(true)) || changed)
        Q_EMIT signal_PlayerTagsChanged();
}
