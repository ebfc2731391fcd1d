#pragma once

#include <plugin/PluginInterface.h>
#include <protocol/LobbyProtocol.h>
#include <protocol/TableProtocol.h>

#include <QHash>
#include <QList>
#include <QPointer>

#include <functional>

class CTableWindow;

/// Opens a window for each table at which the user is given a seat, and passes on what is said there. When the
/// connection is lost, so are the seats; the windows stay open until the user takes the seat again.
class CTablePlugin : public CPluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID CPluginInterface_iid)

public:
    void ReceiveEvent(CEvent e) override;
    void RegisterForEvents() override;
    void ConnectionStateChanged(EConnectionState::type state) override;

    QString GetName() const override { return QStringLiteral("table"); }
    QString GetVersion() const override { return QStringLiteral("1.0"); }
    /// The lobby requests seats, and adds the menu to the menu bar.
    QStringList GetDependencies() const override { return {QStringLiteral("lobby")}; }
    bool Initialize() override { return true; }
    void Start() override;
    /// Asks the user whether to give up the seats, if there are any.
    bool CanClose() override;
    void Shutdown() override {}
    QWidget *CreateView(QWidget *parent) override;

private:
    void AddEntry(const char *key, const std::function<void(CTableWindow *)> &action);
    void OpenTable(const LobbyProtocol::STable &table, quint16 place, QWidget *lobby);
    void ShowLine(const TableProtocol::SLine &line);
    void Send(const QByteArray &payload);
    void LeaveTable(quint32 tableID);
    const QList<CTableWindow *> GetWindows() const;

    QHash<quint32, QPointer<CTableWindow>> m_windows; // by table; the lobby's window owns them
};
