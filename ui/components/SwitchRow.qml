import QtQuick

// A caption and its switch, and below the caption a line that explains it, if there is one; all are
// outlets of the controller.
Item {
    id: row

    required property Metrics metrics
    property string captionOutlet
    property string hintOutlet
    property string switchOutlet
    property real least: 54  // height with one line under the caption, or none
    property alias action: toggle.action
    property alias on: toggle.on

    readonly property bool explained: hintOutlet !== ""

    height: least + (Math.max(hint.lineCount, 1) - 1) * hint.leading * hint.size

    LabelOutlet {
        id: caption
        objectName: row.captionOutlet
        y: row.least / 2 + (row.explained ? -5 : 0.34 * font.pixelSize) - baselineOffset
        room: row.width - 52 - 16
        size: row.metrics.body
        name: ""  // the switch speaks it
    }
    LabelOutlet {
        id: hint
        objectName: row.hintOutlet
        y: row.least / 2 + 17 - baselineOffset
        room: caption.room
        brief: row.metrics.width < 360
        size: row.metrics.remark
        leading: 1.25
        color: Theme.ink2
        name: ""
    }
    Switch {
        id: toggle
        objectName: row.switchOutlet
        anchors.fill: parent
        name: caption.text
        description: hint.text
    }
}
