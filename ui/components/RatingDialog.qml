import QtQuick

// Asks for a rating, or tells something. The buttons stand in the order rate, later, no; the answer
// is the index of the one that was chosen. Escape and a press beside the dialog are "later", or no
// answer (-1) where that is not offered: nobody says no by leaving.
Item {
    id: dialog

    property Metrics metrics
    property string title
    property string message
    property var buttons: []
    property bool shown: false
    signal chosen(int index)

    anchors.fill: parent
    visible: shown
    enabled: shown
    Accessible.role: Accessible.AlertMessage
    Accessible.name: title || message
    Accessible.description: title ? message : ""
    Keys.onEscapePressed: leave()

    // The focus stays on the dialog itself: a key that is still down answers nothing.
    property Item focusBefore: null
    onShownChanged: {
        if (shown) focusBefore = Window.activeFocusItem
        Qt.callLater(moveFocus)
    }
    function moveFocus() {
        if (shown) forceActiveFocus()
        else if (focusBefore) focusBefore.forceActiveFocus()
    }

    function choose(index: int) {
        shown = false
        chosen(index)
    }

    function leave() { choose(buttons.length === 3 ? 1 : -1) }

    Scrim {
        opacity: 0.7
        onPressed: dialog.leave()
    }

    Rounded {
        anchors.centerIn: parent
        width: Math.min(dialog.width - 48, dialog.metrics.flat ? 520 : 400)
        height: column.height
        radius: 24
        color: Theme.sheet
        edgeWidth: 1
        edge: Theme.line

        MouseArea { anchors.fill: parent }  // beside a button is not beside the dialog

        Column {
            id: column
            x: 20
            width: parent.width - 40
            topPadding: dialog.metrics.by(18, 28, 28)
            bottomPadding: dialog.metrics.by(14, 24, 24)
            spacing: 10

            FittedText {
                room: parent.width
                words: dialog.title
                visible: words !== ""
                size: dialog.metrics.by(26, 30, 30)
                font.family: Theme.serif
                horizontalAlignment: Text.AlignHCenter
                Accessible.role: Accessible.Heading
                Accessible.name: words
            }
            FittedText {
                x: 8
                room: parent.width - 16
                words: dialog.message
                size: dialog.metrics.by(15, 16, 18)
                leading: 1.5
                bottomPadding: dialog.metrics.by(8, 20, 20)
                color: Theme.ink2
                shrinks: false
                horizontalAlignment: Text.AlignHCenter
                Accessible.role: Accessible.StaticText
                Accessible.name: words
            }
            Grid {
                id: answers
                readonly property real cell: (column.width - (columns - 1) * spacing) / columns
                columns: dialog.metrics.flat ? Math.max(1, dialog.buttons.length) : 1
                spacing: 10
                Repeater {
                    model: dialog.buttons
                    TextButton {
                        required property string modelData
                        required property int index
                        readonly property bool first: index === 0
                        readonly property bool last: index === dialog.buttons.length - 1
                        width: answers.cell
                        text: modelData
                        fill: first ? Theme.brass : last ? "transparent" : Theme.control
                        pressedFill: first ? Theme.brassPressed
                                           : last ? "transparent" : Theme.controlPressed
                        edge: first || last ? "transparent" : Theme.line
                        ink: first ? Theme.inkOnBrass : last ? Theme.ink2 : Theme.ink
                        pressedInk: first ? Theme.inkOnBrass : Theme.ink
                        weight: first ? Font.Bold : Font.Medium
                        onActivated: dialog.choose(index)
                    }
                }
            }
        }
    }
}
