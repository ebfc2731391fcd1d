#pragma once

#include "LobbyTables.h"

#include <plugin/PluginInterface.h>

/// Shows the tables of the game server, and asks for a seat at the one that the user chooses. It asks for the list
/// each time the link stands, and keeps the old one on screen until the new one is complete. Of a seat that is given
/// it tells the other plugins, see SeatEvent. Its view is one of widgets or one of QML. It adds the menu of the
/// tables to the bar.
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
    // False if it has to be ignored, or the list isn't what the server says that it is.
    bool OnTable(const LobbyProtocol::STable &table);
    bool OnListEnd(quint32 count);
    void OnPlayerCounts(const QVector<LobbyProtocol::SPlayerCount> &counts);
    void OnSeatAnswer(const LobbyProtocol::SSeatAnswer &answer);
    void TellCounts() const;

    CTableListModel *m_pModel = new CTableListModel(this);
    CLobbyTables *m_pTables = new CLobbyTables(m_pModel, this);
    QPointer<QWidget> m_pView;                       // the host's
    QMap<quint32, LobbyProtocol::STable> m_incoming; // by id, the list that isn't complete yet
    bool m_bWarned = false;                          // on this connection
};
