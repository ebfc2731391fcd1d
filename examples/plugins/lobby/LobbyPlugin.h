#pragma once

#include "LobbyTables.h"

#include <plugin/PluginInterface.h>

#include <QCollator>

#include <map>
#include <optional>

/// Shows the tables of the game server, and requests a seat at the table that the user chooses. The plugin requests
/// the list at each connection, and shows the old list until the new one is complete. Lists and counts are shown in a
/// turn of the event loop of their own, not in that which received them. It tells other plugins of a seat that the
/// user is given, see SeatEvent. Its view is in widgets or in QML. It adds the menu of the tables to the menu bar.
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
    QObject *CreateQuickColumns();
    void AddMenu();
    void RequestSeat(quint32 tableID);
    // These two return false if the table has to be ignored, or if the list isn't what the server says.
    bool OnTable(const LobbyProtocol::STable &table);
    bool OnListEnd(quint32 count);
    void OnPlayerCounts(const QVector<LobbyProtocol::SPlayerCount> &counts);
    void ShowReceived();
    void ClearIncoming();
    void OnSeatAnswer(const LobbyProtocol::SSeatAnswer &answer);
    void TellCounts() const;

    CTableList *m_pList = new CTableList(this);
    CLobbyTables *m_pTables = new CLobbyTables(m_pList, this);
    QPointer<QWidget> m_pView; // owned by the host
    const QCollator m_collator;
    // The incomplete list, in the order of the names, and its ids.
    std::multimap<QCollatorSortKey, LobbyProtocol::STable> m_incoming;
    QSet<quint32> m_incomingIDs;
    // What has been received and isn't shown yet: a complete list, if there is one, and counts that came after it.
    std::optional<QVector<LobbyProtocol::STable>> m_list;
    QVector<LobbyProtocol::SPlayerCount> m_counts;
    QTimer m_show;
    quint32 m_uiAnswered = 0; // the table whose seat the last answer was about
    bool m_bWarned = false;   // of malformed packets, on this connection
};
