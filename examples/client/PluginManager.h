#pragma once

#include <plugin/PluginInterface.h>

#include <QHash>
#include <QObject>
#include <QString>
#include <QVector>

class QPluginLoader;

/// Finds the plugins of an installation, loads those that fit, and brings them into the order they have to start in.
/// What it refuses, it says in the console.
class CPluginManager : public QObject
{
    Q_OBJECT

public:
    /// Unloads the plugins, the last one first.
    ~CPluginManager() override;

    /// Loads every shared object of \a directory that was built against this interface version; of others no code
    /// runs. One that has several names there is loaded once, and of several plugins of one name, which may be
    /// copies, the first one stays. Called once.
    void Load(const QString &directory);
    /// Drops a plugin, and those that depend on it; each is announced before it goes.
    void Drop(CPluginInterface *plugin, const QString &reason);

    /// In the order of their start: each behind those it depends on.
    const QVector<CPluginInterface *> &GetPlugins() const { return m_plugins; }

    /// Brings plugins into the order of their start. One that depends on a plugin that isn't there, directly or not,
    /// or on itself in a circle, is left out. Otherwise the given order holds.
    static QVector<CPluginInterface *> SortByDependencies(const QVector<CPluginInterface *> &plugins);

Q_SIGNALS:
    /// The plugin is about to be unloaded.
    void signal_PluginDropped(CPluginInterface *plugin);

private:
    CPluginInterface *LoadFile(const QString &file);
    void Unload(CPluginInterface *plugin);

    QVector<CPluginInterface *> m_plugins;
    QHash<CPluginInterface *, QPluginLoader *> m_loaders; // by their instances
};
