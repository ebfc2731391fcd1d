import QtQuick 2.15
import QtQuick.Controls 2.15
import GlobalDefines 1.0

// Shows the logged-in user, the user's money, and the jackpot.
Pane {
    id: root

    readonly property var spinner: CCasinoInfo.jackpotSpinner
    readonly property var places: spinner.bShowComma
        ? ["Currency", "D5", "D4", "TS", "D3", "D2", "D1", "DS", "C1", "C2"]
        : ["Currency", "D7", "TS", "D6", "D5", "D4", "TS", "D3", "D2", "D1"]

    // The last place before the digits that count, all of which are zero; 0 if the first digit counts.
    readonly property int leadingZero: {
        let place = 1
        while (place < places.indexOf("D1") && /^[^1-9]*$/.test(spinner["str" + places[place]]))
            ++place
        return place - 1
    }

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
        Row {
            visible: CConfig.displaybadbeatjackpot && CCasinoInfo.jackpotValue > 0
            ReadLabel { text: texts.current.Get("JACKPOT"); rightPadding: metrics.averageCharacterWidth }
            Repeater {
                model: root.places
                Label {
                    text: root.spinner["str" + modelData]
                    visible: index === 0 || index > root.leadingZero
                    font.bold: true
                }
            }
        }
    }
}
