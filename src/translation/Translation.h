#pragma once

#include <Export.h>

#include <QList>
#include <QObject>
#include <QSharedPointer>
#include <QString>

/// The catalogue of texts, which translates a key and an area into a text in the user's language.
///
/// The texts are read from CTranslationDB, which must be initialised first, as must the databases of CSettings. A
/// look-up returns what the file contains now, even if another process has just changed it. Code that shows a text
/// keeps it, and looks it up again on signal_TranslationChanged(). An area inherits the texts of the area "CORE"; no
/// language inherits from another.
///
/// The language in effect follows the setting `selectedlanguage` at once. If the setting names no language of the
/// file, the operator's default or else the system's language is used, and the setting is corrected. Lookups from
/// different threads run one after the other, but the database connection belongs to the main thread.
class PLUGININTERFACE_EXPORT CTranslation : public QObject
{
    Q_OBJECT

public:
    /// A language of the file.
    struct SLang
    {
        int iID = -1;     ///< The id in the file, which the setting `selectedlanguage` holds.
        QString strShort; ///< The language code, such as "en".
        QString strLong;  ///< The name for people to read.
    };

    /// Constructs an object in addition to the shared one.
    explicit CTranslation(QObject *parent = nullptr);
    ~CTranslation() override;

    /// Returns the object, creating it on first use; the library owns it.
    static CTranslation *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Destroys the object at the next turn of the event loop.
    static void DestroyInstance();

    /// Returns the text of \a key in \a area, both case-insensitive, in the language \a languageID, or in the
    /// language in effect if that is negative. For a text that neither the area nor "CORE" has, returns "area/key", a
    /// line break and "NOT IN TRANSLATION". Empty for an empty key or area.
    QString GetTranslatedString(const QString &key, const QString &area, int languageID) const;

    /// Returns the language in effect; its id is -1 if the file has no languages.
    const SLang &GetLanguage() const;
    /// Returns the languages in the order of the file.
    const QList<SLang> &GetAvailableLanguages() const;

Q_SIGNALS:
    /// Emitted when another language has taken effect and texts must be looked up again.
    void signal_TranslationChanged();

private Q_SLOTS:
    void slot_SelectedLanguageChanged();

private:
    void LoadLanguages();
    int GetLanguageIndex(int languageID) const;
    int GetSystemLanguageIndex() const;
    int FindLanguageIndex() const;
    bool TakeLanguage();
    void UpdateCurrentLanguage();
    void Announce();

    SLang m_language;
    QList<SLang> m_languages;

    static QSharedPointer<CTranslation> m_Instance;
};
