import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15

// The lobby in QML, bound to the settings and to the tables that the widgets show as well.
Pane {
    id: root
    focus: true

    readonly property real rowHeight: Math.ceil(metrics.height * 1.4)
    // Copies, because a list of C++ is read as a whole for each element.
    readonly property var neededWidths: columns.needed.map(width => width)
    readonly property real neededWidth: neededWidths.reduce((sum, width) => sum + width, 0)
    // What each cell needs, looked up once.
    readonly property real cellPadding: metrics.height / 4
    readonly property color base: palette.base
    readonly property color alternateBase: palette.alternateBase
    readonly property color text: palette.text
    readonly property color highlight: palette.highlight
    readonly property color highlightedText: palette.highlightedText
    readonly property var widths: columns.widths.map(width => width)

    function choose(row) {
        tables.chosenRow = Math.max(0, Math.min(row, list.rows - 1))
        const top = tables.chosenRow * rowHeight
        list.contentY = Math.max(top + rowHeight - list.height, Math.min(list.contentY, top))
    }

    onWidthsChanged: list.forceLayout()

    FontMetrics { id: metrics; font: root.font }
    Shortcut { sequence: StandardKey.Find; onActivated: { view.setFocus(); filter.forceActiveFocus() } }
    Binding { target: columns; property: "room"; value: list.width }
    // These bindings stay in force, whatever the user does to the fields.
    Binding { target: filter; property: "text"; value: String(CSettings.ringgamefilter) }
    Binding {
        target: type
        property: "currentIndex"
        value: Math.max(0, type.model.findIndex(entry => entry.value === CSettings.selectedgametype))
    }

    ColumnLayout {
        anchors.fill: parent

        RowLayout {
            TextField {
                id: filter
                objectName: "quickFilter"
                focus: true
                placeholderText: texts.current.Get("LOBBY_FILTER")
                Accessible.name: placeholderText
                selectByMouse: true
                Layout.fillWidth: true
                onTextEdited: CSettings.ringgamefilter = text
                onAccepted: list.forceActiveFocus(Qt.TabFocusReason)
            }
            ComboBox {
                id: type
                objectName: "quickType"
                model: tables.types
                textRole: "text"
                valueRole: "value"
                Accessible.name: displayText
                Layout.preferredWidth: Math.max(...model.map(entry => metrics.advanceWidth(entry.text))) +
                                       3 * metrics.height
                onActivated: CSettings.selectedgametype = currentValue
            }
            Label {
                objectName: "quickCount"
                text: tables.count
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            Button {
                objectName: "quickTakeSeat"
                text: texts.current.Get("LOBBY_TAKE_SEAT")
                Accessible.name: text
                enabled: tables.chosenRow >= 0
                ToolTip.visible: hovered
                ToolTip.text: texts.current.Get("LOBBY_TAKE_SEAT_TIP")
                onClicked: tables.AskForSeat()
            }
        }

        // HorizontalHeaderView isn't used because it stays connected to the model after its own destruction.
        // It is created after the rest, in pieces, since buttons take long.
        Loader {
            Layout.leftMargin: frame.border.width
            Layout.preferredWidth: 0 // otherwise the columns' spare width would widen the window, and so on
            Layout.minimumHeight: 1.5 * metrics.height
            asynchronous: true
            sourceComponent: Row {
                Repeater {
                    model: root.neededWidths.length
                    Button {
                        readonly property bool isOrder: index === tables.orderColumn
                        readonly property bool isAscending: tables.order === Qt.AscendingOrder
                        readonly property string title: texts.current ? tables.headerData(index, Qt.Horizontal) : ""
                        text: title + (!isOrder ? "" : isAscending ? " \u25b4" : " \u25be")
                        Accessible.name: title
                        width: root.widths[index] || 0
                        z: -index // the handles lie upon the next title
                        padding: metrics.height / 4
                        flat: true
                        contentItem: Label {
                            text: parent.text
                            horizontalAlignment: index < 3 ? Text.AlignLeft : Text.AlignRight
                        }
                        onClicked: tables.sort(index, isOrder && isAscending ? Qt.DescendingOrder : Qt.AscendingOrder)

                        MouseArea {
                            readonly property bool isLast: index === root.neededWidths.length - 1
                            visible: !isLast
                            width: 2 * root.cellPadding
                            height: parent.height
                            x: parent.width - width / 2
                            z: 1
                            cursorShape: Qt.SplitHCursor
                            preventStealing: true
                            onPositionChanged: mouse => columns.Drag(index, mapToItem(parent, mouse.x, 0).x)
                        }
                    }
                }
            }
        }

        Rectangle {
            id: frame
            color: root.palette.base
            border.color: list.activeFocus ? root.palette.highlight : root.palette.mid
            border.width: 2
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.minimumWidth: root.neededWidth + 2 * border.width
            Layout.minimumHeight: 8 * root.rowHeight

            // Rows appear a few at a time, because the texts of all of them would take longer than a frame.
            Timer {
                interval: 1
                repeat: true
                running: list.height < list.room && list.begunRows < list.rows + list.rowsAtOnce
                onTriggered: list.begunRows += list.rowsAtOnce
            }

            Column {
                visible: tables.allFiltered
                anchors.centerIn: parent
                spacing: root.cellPadding
                Label { text: texts.current.Get("LOBBY_NO_MATCH") }
                Button {
                    text: texts.current.Get("LOBBY_CLEAR_FILTER")
                    Accessible.name: text
                    anchors.horizontalCenter: parent.horizontalCenter
                    onClicked: tables.ClearFilter()
                }
            }

            TableView {
                id: list
                objectName: "quickTables"
                readonly property real room: frame.height - 2 * frame.border.width
                readonly property int rowsAtOnce: 6
                property int begunRows: 0
                onRowsChanged: begunRows = Math.min(begunRows, rows + rowsAtOnce)
                height: Math.min(room, begunRows * root.rowHeight)
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.top: parent.top
                anchors.margins: frame.border.width
                model: tableRows
                clip: true
                opacity: tables.stale ? 0.5 : 1
                boundsBehavior: Flickable.StopAtBounds
                activeFocusOnTab: true
                // Screen readers read the chosen row; cells of their own would be too many.
                Accessible.role: Accessible.List
                Accessible.focusable: true
                Accessible.name: texts.current.Get("LOBBY_TITLE")
                Accessible.description: root.neededWidths.map(
                    (width, column) => tables.data(tables.index(tables.chosenRow, column))).join(" ")
                columnWidthProvider: column => root.widths[column] || 0
                rowHeightProvider: () => root.rowHeight
                ScrollBar.vertical: ScrollBar {}
                Keys.onPressed: event => {
                    const page = Math.floor(height / root.rowHeight)
                    const steps = {
                        [Qt.Key_Up]: -1, [Qt.Key_Down]: 1, [Qt.Key_PageUp]: -page, [Qt.Key_PageDown]: page,
                        [Qt.Key_Home]: -rows, [Qt.Key_End]: rows
                    }
                    if (event.accepted = event.key in steps)
                        root.choose(tables.chosenRow + steps[event.key])
                }
                Keys.onReturnPressed: tables.AskForSeat()
                Keys.onEnterPressed: tables.AskForSeat()
                TapHandler {
                    function rowAt(point) {
                        return Math.floor(list.contentItem.mapFromItem(null, 0, point.scenePosition.y).y / root.rowHeight)
                    }
                    onTapped: eventPoint => { list.forceActiveFocus(); root.choose(rowAt(eventPoint)) }
                    onDoubleTapped: eventPoint => { if (rowAt(eventPoint) === tables.chosenRow) tables.AskForSeat() }
                }
                delegate: Rectangle { // kept small, because there are many
                    readonly property bool isChosen: row === tables.chosenRow
                    color: isChosen ? root.highlight : row % 2 ? root.alternateBase : root.base
                    Text {
                        x: root.cellPadding
                        width: parent.width - 2 * x
                        height: parent.height
                        text: display
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        font: root.font
                        color: parent.isChosen ? root.highlightedText : root.text
                        verticalAlignment: Text.AlignVCenter
                        horizontalAlignment: column < 3 ? Text.AlignLeft : Text.AlignRight
                    }
                }
            }
        }

        Label {
            objectName: "quickStatus"
            text: tables.status
            textFormat: Text.PlainText
            elide: Text.ElideRight
            Layout.fillWidth: true
            Layout.preferredWidth: 0
        }
    }
}
