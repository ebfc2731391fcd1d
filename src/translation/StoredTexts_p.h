#pragma once

#include <database/FileState_p.h>

#include <QCache>
#include <QObject>
#include <QString>
#include <QVector>

class CLocalDB;
class CStatements;

/// The texts in the catalogue's file. They are remembered as long as the file stays as it was when they were read, so
/// an answer is always the one that the file would give now, whoever has changed it. How much is remembered is
/// limited. The object belongs to the file's connection.
class CStoredTexts : public QObject
{
public:
    /// Area and key as the caller has written them.
    struct SName
    {
        QString strArea;
        QString strKey;

        bool operator==(const SName &other) const { return strKey == other.strKey && strArea == other.strArea; }
    };

    /// Returns the texts in the file of the database; null if it isn't open.
    static CStoredTexts *Get(const CLocalDB &database);
    /// Returns what is shown in place of a text that isn't there.
    static QString GetNotFound(const SName &name);

    /// Returns the text of the area, or else of the core area, or else GetNotFound().
    QString Find(int language, const SName &name);

    /// Reads the texts that were used last, because they are about to be looked up in another language.
    void ReadAhead(int language);
    /// While \a all is set, each text that is looked up counts as used; otherwise only one that has to be read.
    void SetCountsAll(bool all) { m_bCountsAll = all; }

private:
    struct SEntry
    {
        int iLanguage;
        SName name;

        bool operator==(const SEntry &other) const { return iLanguage == other.iLanguage && name == other.name; }
    };

    using THash = decltype(qHash(QString())); // as wide as Qt's version has it
    friend THash qHash(const SName &name, THash seed);
    friend THash qHash(const SEntry &entry, THash seed);

    enum EAnswer {
        Found,
        Missing,
        Refused, // by SQLite: the file is locked or has no such table
    };

    explicit CStoredTexts(CStatements *statements);

    bool IsOf(const CLocalDB &database) const;
    const QString *FindRemembered(const SEntry &entry);
    bool Hold();
    void ReadVersion();
    bool IsSameFile();
    void ForgetFormerOpening();
    EAnswer Read(QString &text, int language, const QString &area, const QString &key);
    QVector<SName> ReadAll(int language, const QString &area, const QVector<SName> &names);
    void Use(const SName &name);
    QVector<SName> TakeUsed();
    void Remember(const SEntry &entry, const QString &text, bool found);
    void Forget();

    CStatements &m_statements;
    CFileState m_state;
    CFileState::TVersion m_version{}; // at which the file gave what is remembered
    bool m_bKnown = false;            // the version of the file that is held
    int m_iOpening = -1;              // of the connection when the file was compared
    int m_iOpened = -1;               // of the connection when the state was opened
    CFileState::EMatch m_eMatch = CFileState::Unknown;
    QCache<SEntry, QString> m_texts;
    QCache<SEntry, QString> m_missing; // apart, so that who asks for many of them doesn't drive out the texts
    QVector<SName> m_used;
    bool m_bCountsAll = false;
};
