import QtQuick 2.15
import QtQuick.Controls 2.15
import GlobalDefines 1.0

// Shows the logged-in user, the user's money, the numbers of players and tables, and the jackpot.
Pane {
    id: root

    readonly property var spinner: CCasinoInfo.jackpotSpinner
    readonly property var places: spinner.bShowComma
        ? ["Currency", "D5", "D4", "TS", "D3", "D2", "D1", "DS", "C1", "C2"]
        : ["Currency", "D7", "TS", "D6", "D5", "D4", "TS", "D3", "D2", "D1"]

    topPadding: 0
    bottomPadding: metrics.averageCharacterWidth

    component ReadLabel: Label { // which screen readers read
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }

    FontMetrics { id: metrics; font: root.font }

    contentItem: Row {
        spacing: 2 * metrics.averageCharacterWidth

        ReadLabel {
            objectName: "quickUser"
            text: CUserInfo.pPlayerModel ? CUserInfo.pPlayerModel.strNickname : texts.current.Get("USER_NONE")
            textFormat: Text.PlainText
            font.bold: true
        }
        Button {
            objectName: "quickLogIn"
            visible: !CUserInfo.bLoginState
            text: texts.current.Get("LOGIN_TITLE")
            Accessible.name: text
            onClicked: host.signal_LoginRequested()
        }
        ReadLabel {
            objectName: "quickMoney"
            visible: CUserInfo.bLoginState
            text: texts.current.Get("CASHIER", {
                "#real#": texts.current.Money(CUserInfo.mtAccountCurrency, CUserInfo.mvRealMoney),
                "#play#": texts.current.Money(GlobalDefines.MONEYTYPE_PLAY, CUserInfo.mvPlayMoney)
            })
        }
        ReadLabel {
            objectName: "quickCounts"
            visible: CCasinoInfo.showPlayerAndTableCounts && CCasinoInfo.currentTables > 0
            text: texts.current.Get("ACCOUNT_COUNTS", {
                "#players#": CCasinoInfo.currentPlayers, "#tables#": CCasinoInfo.currentTables
            })
        }
        Row {
            visible: CConfig.displaybadbeatjackpot && CCasinoInfo.jackpotValue > 0
            ReadLabel { text: texts.current.Get("JACKPOT"); rightPadding: metrics.averageCharacterWidth }
            Repeater {
                model: root.places
                Label { text: root.spinner["str" + modelData]; font.bold: true }
            }
        }
    }
}
