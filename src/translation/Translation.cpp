#include "Translation.h"

#include <Singleton_p.h>
#include <database/TranslationDB.h>
#include <settings/Config.h>
#include <settings/Settings.h>
#include <translation/StoredTexts_p.h>

#include <QLocale>
#include <QMutex>
#include <QPointer>

PLUGININTERFACE_DEFINE_SINGLETON(CTranslation);

namespace {

constexpr int FALLBACK_LANGUAGE_ID = 2;

} // namespace

CTranslation::CTranslation(QObject *parent)
    : QObject(parent)
{
    connect(CSettings::GetInstance(), &CSettings::signal_SelectedLanguageChanged, this,
            &CTranslation::slot_SelectedLanguageChanged);
    LoadLanguages();
    UpdateCurrentLanguage();
}

CTranslation::~CTranslation() = default;

QString CTranslation::GetTranslatedString(const QString &key, const QString &area, int languageID) const
{
    static QMutex mutex;
    const QMutexLocker locker(&mutex);
    if (key.isEmpty() || area.isEmpty())
        return QString();
    CStoredTexts *texts = CStoredTexts::Get(*CTranslationDB::GetInstance());
    return texts ? texts->Find(languageID < 0 ? m_language.iID : languageID, {area, key})
                 : CStoredTexts::GetNotFound({area, key});
}

const CTranslation::SLang &CTranslation::GetLanguage() const
{
    return m_language;
}

const QList<CTranslation::SLang> &CTranslation::GetAvailableLanguages() const
{
    return m_languages;
}

// Writing the setting inside its own change signal hides the caller from the slots that are called later, so it is
// written only if it names another language than the one in effect.
void CTranslation::slot_SelectedLanguageChanged()
{
    CSettings *settings = CSettings::GetInstance();
    if (settings->GetCaller() == this)
        return;
    const bool changed = TakeLanguage();
    if (m_language.iID >= 0 && settings->GetSelectedLanguage() != m_language.iID)
        settings->SetSelectedLanguage(m_language.iID, this, true);
    if (changed)
        Announce();
}

void CTranslation::LoadLanguages()
{
    const QString id = QStringLiteral("AVL_iID");
    const QString shortName = QStringLiteral("AVL_cShort");
    const QString longName = QStringLiteral("AVL_cLong");
    QList<QHash<QString, QVariant>> rows;
    CTranslationDB::GetInstance()->SelectAll(rows, CTranslationDB::strTableNameAvailLanguages,
                                             {id, shortName, longName}, {}, 0);
    for (const auto &row : qAsConst(rows))
        m_languages.append({row.value(id).toInt(), row.value(shortName).toString(), row.value(longName).toString()});
}

int CTranslation::GetLanguageIndex(int languageID) const
{
    for (int index = 0; index < m_languages.size(); ++index) {
        if (m_languages.at(index).iID == languageID)
            return index;
    }
    return -1;
}

int CTranslation::GetSystemLanguageIndex() const
{
    QString locale = QLocale::system().name();
    if (locale.toLower() == QLatin1String("c"))
        locale = QStringLiteral("en_US");
    const QString language = locale.section(QLatin1Char('_'), 0, 0).toLower();
    for (int index = 0; index < m_languages.size(); ++index) {
        if (m_languages.at(index).strShort.toLower() == language)
            return index;
    }
    return -1;
}

int CTranslation::FindLanguageIndex() const
{
    int index = GetLanguageIndex(CSettings::GetInstance()->GetSelectedLanguage());
    if (index < 0)
        index = GetLanguageIndex(CConfig::GetInstance()->GetDefaultLanguage());
    if (index < 0)
        index = GetSystemLanguageIndex();
    if (index < 0)
        index = GetLanguageIndex(FALLBACK_LANGUAGE_ID);
    return qMax(index, 0);
}

// Returns whether another language has taken effect.
bool CTranslation::TakeLanguage()
{
    if (m_languages.isEmpty()) {
        m_language = SLang();
        return false;
    }
    const SLang &language = m_languages.at(FindLanguageIndex());
    if (language.iID == m_language.iID && language.strLong == m_language.strLong &&
        language.strShort == m_language.strShort)
        return false;
    m_language = language;
    return true;
}

void CTranslation::UpdateCurrentLanguage()
{
    if (!TakeLanguage())
        return;
    CSettings::GetInstance()->SetSelectedLanguage(m_language.iID, this, true);
    Announce();
}

// What is on the screen is looked up again, all at once. What isn't any more then no longer counts as used.
void CTranslation::Announce()
{
    const QPointer<CStoredTexts> texts = CStoredTexts::Get(*CTranslationDB::GetInstance());
    if (texts) {
        texts->ReadAhead(m_language.iID);
        texts->SetCountsAll(true);
    }
    Q_EMIT signal_TranslationChanged();
    if (texts)
        texts->SetCountsAll(false);
}
