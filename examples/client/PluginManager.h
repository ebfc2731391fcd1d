#pragma once

#include <plugin/PluginInterface.h>

#include <QHash>
#include <QObject>
#include <QStringList>
#include <QVector>

class QPluginLoader;

/// Finds the plugins of an installation, loads those that fit, and sorts them into the order in which they have to
/// start. It writes to the console what it refuses.
class CPluginManager : public QObject
{
    Q_OBJECT

public:
    /// Unloads the plugins in the opposite order of the start.
    ~CPluginManager() override;

    /// Loads every shared object of \a directory that was built for this version of the interface; no code of others
    /// runs. A file with several names is loaded once, and of several plugins with one name, which may be copies, the
    /// first is kept. Called once.
    void Load(const QString &directory);
    /// Drops a plugin and those that depend on it; emits signal_PluginDropped() for each before.
    void Drop(CPluginInterface *plugin, const QString &reason);

    /// Returns the plugins in the order of their start, each after those it depends on.
    const QVector<CPluginInterface *> &GetPlugins() const { return m_plugins; }

    /// Returns the paths of the files in the folder that are no plugins for this client, and of plugins that lack
    /// another one. Copies of a plugin don't count.
    const QStringList &GetUnusableFiles() const { return m_unusableFiles; }

    /// Sorts plugins into the order of their start. A plugin is left out if it depends, directly or not, on a missing
    /// plugin, or on itself in a circle. Otherwise the given order is kept.
    static QVector<CPluginInterface *> SortByDependencies(const QVector<CPluginInterface *> &plugins);

Q_SIGNALS:
    /// Emitted before the plugin is unloaded.
    void signal_PluginDropped(CPluginInterface *plugin);

private:
    CPluginInterface *LoadFile(const QString &file);
    void Refuse(const QString &file, const QString &complaint);
    void Unload(CPluginInterface *plugin);

    QVector<CPluginInterface *> m_plugins;
    QHash<CPluginInterface *, QPluginLoader *> m_loaders; // by their instances
    QStringList m_unusableFiles;
};
