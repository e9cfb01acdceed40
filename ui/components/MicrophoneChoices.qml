import QtQuick

// The microphones to choose from, a row each. `choices` has a line for each: its name and, after a
// tab, what is to be said of it.
Outlet {
    id: list

    required property Metrics metrics
    property string action: "chooseMicrophone"
    property string choices: ""
    property real chosen: 0
    readonly property var lines: choices.split("\n").map(line => line.split("\t"))
    readonly property bool hasFocus: focusedRow() !== undefined
    signal activated()

    height: column.height
    Accessible.role: Accessible.Grouping
    Accessible.name: Texts.of("MicrophoneTitle")

    function rows(): var { return Array.from(column.children).filter(row => row.isChoice) }
    function focusedRow(): var { return rows().find(row => row.activeFocus) }
    function takeFocus() { rows()[chosen].forceActiveFocus(Qt.TabFocusReason) }
    function move(by: int) {
        const all = rows()
        const next = all[all.findIndex(row => row.activeFocus) + by]
        if (next) next.forceActiveFocus(Qt.TabFocusReason)
    }

    Keys.onUpPressed: move(-1)
    Keys.onDownPressed: move(1)

    Rounded {
        anchors.fill: parent
        radius: 16
        color: Theme.control
        edgeWidth: 1
        edge: Theme.line
    }
    Column {
        id: column
        width: parent.width
        Repeater {
            model: list.lines.length
            MicrophoneChoice {
                required property int index
                width: list.width
                height: list.metrics.by(52, 60, 60)
                metrics: list.metrics
                first: index === 0
                chosen: index === list.chosen
                name: list.lines[index]?.[0] ?? ""
                description: list.lines[index]?.[1] ?? ""
                onClicked: {
                    list.chosen = index
                    list.activated()
                }
            }
        }
    }
}
