import QtQuick

// One half of a stepper: steps when pressed, and again and again while it is held.
Item {
    id: half

    property string icon
    property string name  // spoken
    signal stepped()

    Accessible.role: Accessible.Button
    Accessible.name: name
    Accessible.ignored: !enabled
    Accessible.onPressAction: stepped()

    Rounded {
        visible: touch.pressed
        anchors { fill: parent; margins: 1 }
        color: Theme.controlPressed
    }
    Icon {
        anchors.centerIn: parent
        icon: half.icon
    }
    MouseArea {
        id: touch
        anchors.fill: parent
        onPressed: {
            Theme.focusVisible = false
            half.stepped()
        }
    }
    Timer {
        id: again
        running: touch.pressed && touch.containsMouse
        repeat: true
        interval: 400
        onRunningChanged: interval = 400
        onTriggered: {
            interval = 90
            half.stepped()
        }
    }
}
