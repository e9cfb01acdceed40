import QtQuick

// A caption and its switch; both are outlets of the controller.
Item {
    id: row

    required property Metrics metrics
    property string captionOutlet
    property string switchOutlet
    property alias action: toggle.action
    property alias on: toggle.on

    LabelOutlet {
        id: caption
        objectName: row.captionOutlet
        anchors.verticalCenter: parent.verticalCenter
        room: row.width - 52 - 16
        size: row.metrics.body
        name: ""  // the switch speaks it
    }
    Switch {
        id: toggle
        objectName: row.switchOutlet
        anchors.fill: parent
        name: caption.text
    }
}
