#pragma once

#include "SettingsStores.h"

#include <QDateTime>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

#ifdef BENCH_KCONFIG
#include <KConfig>
#include <KConfigGroup>
#endif

// The same settings in files of QSettings and KConfig.

namespace SettingsStores {

struct SIniFile
{
    explicit SIniFile(const QString &path)
        : settings(path, QSettings::IniFormat)
    {
    }
    QVariant Read(size_t entry)
    {
        QVariant value = settings.value(ENTRIES[entry].strPath);
        value.convert(ENTRIES[entry].vDefault.userType());
        return value;
    }
    void Write(size_t entry, const QVariant &value) { settings.setValue(ENTRIES[entry].strPath, value); }
    void Sync() { settings.sync(); }

    QSettings settings;
};

#ifdef BENCH_KCONFIG
struct SKConfigFile
{
    explicit SKConfigFile(const QString &path)
        : config(path, KConfig::SimpleConfig)
    {
        for (const SEntry &entry : ENTRIES)
            groups.push_back(config.group(entry.strArea));
    }
    QVariant Read(size_t entry) { return groups[entry].readEntry(ENTRIES[entry].strKey, ENTRIES[entry].vDefault); }
    void Write(size_t entry, const QVariant &value) { groups[entry].writeEntry(ENTRIES[entry].strKey, value); }
    void Sync() { config.sync(); }

    KConfig config;
    std::vector<KConfigGroup> groups; // of each entry
};
#endif

// A peer's file, which knows neither users nor times.
template <typename File>
class CPeer
{
public:
    CPeer()
    {
        LogIn();
        for (size_t i = 0; i < ENTRIES.size(); ++i)
            Set(i, 0);
        Sync();
    }

    void Set(size_t entry, int number) { m_File->Write(entry, ENTRIES[entry].Value(number)); }
    void Sync() { m_File->Sync(); }
    void LogIn()
    {
        m_File.emplace(m_file.fileName());
        for (size_t i = 0; i < ENTRIES.size(); ++i)
            m_values.insert(ENTRIES[i].strKey, m_File->Read(i));
    }
    // QSettings remembers the contents of a file that it has closed, until the file's time is another one.
    void LogOut()
    {
        m_File.reset();
        Require(m_file.open(QIODevice::ReadWrite) &&
                    m_file.setFileTime(QDateTime::fromSecsSinceEpoch(++m_iTime), QFileDevice::FileModificationTime),
                "the ageing of the file");
        m_file.close();
    }

    TValues GetValues() const
    {
        TValues values;
        for (const SEntry &entry : ENTRIES) {
            if (entry.eScope == User)
                values.insert(entry.strKey, m_values.value(entry.strKey).toString());
        }
        return values;
    }

    // What has reached the file, which a copy tells that nobody has read yet.
    bool Holds(int number, bool) const
    {
        const QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("copy.conf"));
        Require(QFile::copy(m_file.fileName(), path), "the copy of the file");
        File copy(path);
        for (size_t i = 0; i < ENTRIES.size(); ++i) {
            if (copy.Read(i) != ENTRIES[i].Value(number))
                return false;
        }
        return true;
    }

private:
    QTemporaryDir m_dir;
    QFile m_file{m_dir.filePath(QStringLiteral("settings.conf"))};
    std::optional<File> m_File;
    TRow m_values; // as read
    qint64 m_iTime = TIME_FOUND;
};

} // namespace SettingsStores
