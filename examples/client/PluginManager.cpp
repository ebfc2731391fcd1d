#include "PluginManager.h"

#include <common/Note.h>

#include <QDir>
#include <QLibrary>
#include <QPluginLoader>
#include <QSet>

#include <algorithm>
#include <memory>

namespace {

void Complain(const QString &text)
{
    Note(text, CConsole::MC_Plugin, CConsole::ML_Error);
}

// A file with several names, as liba.so is often a link to liba.so.1, is one library.
const QFileInfoList FindLibraries(const QString &directory)
{
    QFileInfoList libraries;
    QSet<QString> paths;
    const QFileInfoList files = QDir(directory).entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo &file : files) {
        if (!QLibrary::isLibrary(file.fileName()) || paths.contains(file.canonicalFilePath()))
            continue;
        paths.insert(file.canonicalFilePath());
        libraries.append(file);
    }
    return libraries;
}

} // namespace

CPluginManager::~CPluginManager()
{
    while (!m_plugins.isEmpty())
        Unload(m_plugins.last());
}

void CPluginManager::Load(const QString &directory)
{
    QVector<CPluginInterface *> found;
    for (const QFileInfo &file : FindLibraries(directory)) {
        CPluginInterface *plugin = LoadFile(file.absoluteFilePath());
        const auto hasItsName = [=](const auto *other) { return other->GetName() == plugin->GetName(); };
        if (plugin && std::any_of(found.begin(), found.end(), hasItsName)) {
            Complain(QStringLiteral("%1: there is a plugin \"%2\" already").arg(file.fileName(), plugin->GetName()));
            Unload(plugin);
        } else if (plugin) {
            found.append(plugin);
        }
    }

    m_plugins = SortByDependencies(found);
    for (CPluginInterface *plugin : qAsConst(found)) {
        if (m_plugins.contains(plugin))
            continue;
        Refuse(m_loaders.value(plugin)->fileName(),
               QStringLiteral("Plugin \"%1\" is left out: it needs %2")
                   .arg(plugin->GetName(), plugin->GetDependencies().join(QLatin1String(", "))));
        Unload(plugin);
    }
}

void CPluginManager::Drop(CPluginInterface *plugin, const QString &reason)
{
    const QString name = plugin->GetName();
    Complain(QStringLiteral("Plugin \"%1\" is dropped: %2").arg(name, reason));
    // In the opposite order: a plugin may use those it depends on until it is destroyed.
    for (auto i = m_plugins.size() - 1; i >= 0; i = std::min(i, m_plugins.size()) - 1) {
        if (m_plugins.at(i)->GetDependencies().contains(name))
            Drop(m_plugins.at(i), QStringLiteral("it needs \"%1\"").arg(name));
    }
    Q_EMIT signal_PluginDropped(plugin);
    Unload(plugin);
}

QVector<CPluginInterface *> CPluginManager::SortByDependencies(const QVector<CPluginInterface *> &plugins)
{
    QVector<CPluginInterface *> sorted;
    QSet<QString> names;
    QVector<CPluginInterface *> waiting = plugins;
    const auto isReady = [&names](const CPluginInterface *plugin) {
        const QStringList dependencies = plugin->GetDependencies();
        return std::all_of(dependencies.begin(), dependencies.end(),
                           [&names](const QString &name) { return names.contains(name); });
    };
    for (;;) {
        const auto next = std::find_if(waiting.begin(), waiting.end(), isReady);
        if (next == waiting.end())
            return sorted;
        names.insert((*next)->GetName());
        sorted.append(*next);
        waiting.erase(next);
    }
}

CPluginInterface *CPluginManager::LoadFile(const QString &file)
{
    auto loader = std::make_unique<QPluginLoader>(file);
    // The metadata is read from the file without loading it.
    const QString interface = loader->metaData().value(QLatin1String("IID")).toString();
    CPluginInterface *plugin = nullptr;
    if (interface.isEmpty())
        Refuse(file, QStringLiteral("%1 is no plugin").arg(file));
    else if (interface != QLatin1String(CPluginInterface_iid))
        Refuse(file, QStringLiteral("%1 is built for %2, this client for %3")
                         .arg(file, interface, QLatin1String(CPluginInterface_iid)));
    else if (!(plugin = qobject_cast<CPluginInterface *>(loader->instance())))
        Refuse(file, QStringLiteral("%1 can't be loaded: %2").arg(file, loader->errorString()));
    else if (!m_loaders.contains(plugin))
        m_loaders.insert(plugin, loader.release());
    else // a hard link, which only the file system can tell; unloading it would delete the plugin
        plugin = nullptr;
    return plugin;
}

void CPluginManager::Refuse(const QString &file, const QString &complaint)
{
    Complain(complaint);
    m_unusableFiles.append(file);
}

void CPluginManager::Unload(CPluginInterface *plugin)
{
    m_plugins.removeAll(plugin);
    const std::unique_ptr<QPluginLoader> loader(m_loaders.take(plugin));
    loader->unload(); // deletes the plugin
}
