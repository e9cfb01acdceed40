import QtQuick

// Dims what lies behind and keeps presses away from it.
Rectangle {
    signal pressed()

    anchors.fill: parent
    color: Theme.scrim

    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        onPressed: {
            Theme.focusVisible = false
            parent.pressed()
        }
        onWheel: event => event.accepted = true
    }
}
