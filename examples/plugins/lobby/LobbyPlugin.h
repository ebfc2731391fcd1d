#pragma once

#include "LobbyTables.h"

#include <plugin/PluginInterface.h>

/// Shows the tables of the game server, and requests a seat at the table that the user chooses. The plugin requests
/// the list at each connection, and shows the old list until the new one is complete. It tells other plugins of a
/// seat that the user is given, see SeatEvent. Its view is in widgets or in QML. It adds the menu of the tables to
/// the menu bar.
class CLobbyPlugin : public CPluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID CPluginInterface_iid)

public:
    CLobbyPlugin();

    void ReceiveEvent(CEvent e) override;
    void RegisterForEvents() override;
    void ConnectionStateChanged(EConnectionState::type state) override;

    QString GetName() const override { return QStringLiteral("lobby"); }
    QString GetVersion() const override { return QStringLiteral("1.0"); }
    QStringList GetDependencies() const override { return QStringList(); }
    bool Initialize() override { return true; }
    void Start() override;
    bool CanClose() override { return true; }
    void Shutdown() override {}
    QWidget *CreateView(QWidget *parent) override;

private:
    void AddMenu();
    void RequestSeat(quint32 tableID);
    // These two return false if the table has to be ignored, or if the list isn't what the server says.
    bool OnTable(const LobbyProtocol::STable &table);
    bool OnListEnd(quint32 count);
    void OnPlayerCounts(const QVector<LobbyProtocol::SPlayerCount> &counts);
    void OnSeatAnswer(const LobbyProtocol::SSeatAnswer &answer);
    void TellCounts() const;

    CTableListModel *m_pModel = new CTableListModel(this);
    CLobbyTables *m_pTables = new CLobbyTables(m_pModel, this);
    QPointer<QWidget> m_pView;                       // owned by the host
    QMap<quint32, LobbyProtocol::STable> m_incoming; // the incomplete list, by id
    bool m_bWarned = false;                          // of malformed packets, on this connection
};
