#pragma once

#include <Export.h>

#include <QList>
#include <QObject>
#include <QSharedPointer>
#include <QString>

/// The catalogue of texts: turns a key and an area into a text in the user's language.
///
/// The texts stand in CTranslationDB, which has to be initialised before the object is created; so have those that
/// CSettings needs. Nothing is cached: whoever shows a text keeps it, and looks it up again on
/// signal_TranslationChanged(). An area inherits the texts of the area "CORE"; no language inherits from another.
///
/// The language in effect follows the setting `selectedlanguage` at once; where that names no language of the file,
/// it is the operator's default, then the system's, and the setting is corrected. Lookups run one after the other,
/// whatever the thread, but the database's connection belongs to the main thread.
class PLUGININTERFACE_EXPORT CTranslation : public QObject
{
    Q_OBJECT

public:
    /// One language of the file.
    struct SLang
    {
        int iID = -1;     ///< The file's own number, which the setting `selectedlanguage` holds.
        QString strShort; ///< Language code, such as "en".
        QString strLong;  ///< Name, for people to read.
    };

    /// Makes an object beside the shared one.
    explicit CTranslation(QObject *parent = nullptr);
    ~CTranslation() override;

    /// Creates the object on first use; the library owns it.
    static CTranslation *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// The object ends at the next turn of the event loop.
    static void DestroyInstance();

    /// The text of \a key in \a area, both in any case; \a languageID is negative for the language in effect. A text
    /// that neither the area nor "CORE" has reads "area/key", a line break and "NOT IN TRANSLATION". Empty for an
    /// empty key or area.
    QString GetTranslatedString(const QString &key, const QString &area, int languageID) const;

    /// The language in effect; its id is -1 if the file has none.
    const SLang &GetLanguage() const;
    /// In the order of the file.
    const QList<SLang> &GetAvailableLanguages() const;

Q_SIGNALS:
    /// Another language is in effect: look the texts up again.
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

    SLang m_language;
    QList<SLang> m_languages;

    static QSharedPointer<CTranslation> m_Instance;
};
