#include "Tour.h"

#include <models/CasinoInfo.h>
#include <settings/Settings.h>

#include <QComboBox>
#include <QTableView>
#include <QtTest>

namespace {

constexpr int TABLES = 10000;
// A frame of a screen.
constexpr double LONGEST_TURN_MS = 16;
// Of QML with Qt 6, in which a text takes half as long again: when rows come or go, all cells are set up anew.
constexpr double LONGEST_QUICK_TURN_MS = QT_VERSION < QT_VERSION_CHECK(6, 0, 0) ? LONGEST_TURN_MS : 32;
constexpr int TRIES = 3;

bool IsInTime(const CWatchedApplication::SEvent &busiest)
{
    const bool isQuick = busiest.strName.contains("QQuickWidget"_s);
    const bool isMeasured = !busiest.strName.isEmpty();
    return isMeasured && busiest.busyMs <= (isQuick ? LONGEST_QUICK_TURN_MS : LONGEST_TURN_MS) * Patience();
}

} // namespace

// What counts is for how long a turn keeps a processor busy: the client's own work, without waiting for other
// programs. Those may still make it longer once, by what they do to the processor, but what the client does too
// slowly is too slow each time. With each jackpot the server sends new counts of all tables.
void CTour::StepInTime(const QString &text, const TAction &action, const TLook &look)
{
    CWatchedApplication *watch = CWatchedApplication::Get();
    bool hasCounts = false;
    int tries = 0;
    const auto start = [&] {
        hasCounts = false;
        ++tries;
        watch->StartLap();
        action();
    };
    const auto jackpot = QObject::connect(CCasinoInfo::GetInstance(), &CCasinoInfo::signal_BadBeatJackpotChanged,
                                          qApp, [&] { hasCounts = true; });
    Step(text, start, [&] {
        const QString seen = look();
        if (seen.isEmpty() || !hasCounts)
            return QString();
        m_strFault = Describe(watch->GetBusiestOfLap());
        if (IsInTime(watch->GetBusiestOfLap()))
            return seen + QLatin1String(", ") + m_strFault;
        if (tries < TRIES)
            start();
        return QString();
    });
    QObject::disconnect(jackpot);
}

void CTour::ShowBigLobby()
{
    const auto *table = Find<QTableView>("lobbyTable");
    const auto seeAll = [&] {
        const int rows = table->model()->rowCount();
        return rows == TABLES ? "%1 tables"_s.arg(rows) : QString();
    };
    StepInTime(
        "A server with very many tables fills the lobby, and sends counts of all"_s,
        [this] {
            m_gameServer.Kill();
            StartGameServer({"--tables"_s, QString::number(TABLES)});
        },
        seeAll);
    UseBigLobby("the widgets"_s);
    const auto choose = [](const QStringList &types) {
        for (const QString &type : types) {
            QMetaObject::invokeMethod(
                CSettings::GetInstance(), [type] { CSettings::GetInstance()->SetPokerLobbyType(type); },
                Qt::QueuedConnection);
        }
    };
    StepInTime(
        "Many tables are shown in QML"_s,
        [&] {
            choose({"widgets"_s, "qml"_s});
        },
        [&] { return table->isVisible() ? QString() : seeAll(); });
    UseBigLobby("QML"_s);
    StepInTime(
        "And in widgets again"_s,
        [&] {
            choose({"qml"_s, "widgets"_s});
        },
        [&] { return table->isVisible() ? seeAll() : QString(); });
    m_gameServer.Kill();
    See("That server is gone"_s, [this] { return SeeState(EConnectionState::Reconnecting); });
}

void CTour::UseBigLobby(const QString &view)
{
    QAbstractItemModel *model = Find<QTableView>("lobbyTable")->model();
    const auto seeAll = [&] { return model->rowCount() == TABLES ? "%1 tables"_s.arg(TABLES) : QString(); };
    for (int column = model->columnCount() - 1; column >= 0; --column) {
        const auto sort = [&] {
            for (const Qt::SortOrder order : {Qt::DescendingOrder, Qt::AscendingOrder})
                QMetaObject::invokeMethod(
                    model, [=] { model->sort(column, order); }, Qt::QueuedConnection);
        };
        const QString title = model->headerData(column, Qt::Horizontal).toString();
        StepInTime("Many tables are sorted by %1 in %2"_s.arg(title, view), sort, seeAll);
    }
    const auto typeFilter = [&] {
        TypeFilter("golden"_s);
        TypeFilter(QString());
    };
    StepInTime("A filter is typed and removed in %1"_s.arg(view), typeFilter, seeAll);
    const auto chooseType = [this] {
        QTest::keyClick(Find<QComboBox>("lobbyType"), Qt::Key_Down);
        QTest::keyClick(Find<QComboBox>("lobbyType"), Qt::Key_Up);
    };
    StepInTime("A type is chosen, and all again, in %1"_s.arg(view), chooseType, seeAll);
    for (const QString &language : LANGUAGES) {
        StepInTime(
            "Many tables are in %1 in %2"_s.arg(language, view), [&] { SetLanguage(language); },
            [&] { return IsLanguage(language) ? seeAll() : QString(); });
    }
}
