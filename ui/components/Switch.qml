import QtQuick

// A switch that takes the whole row it lies in as its target; it is drawn at the right end.
PressControl {
    id: control

    property bool on: false

    ringed: track
    radius: 16
    pressedScale: 1
    onClicked: {
        on = !on
        activated()
    }

    Accessible.role: Accessible.CheckBox
    Accessible.checkable: true
    Accessible.checked: on
    Accessible.onToggleAction: clicked()

    Rounded {
        id: track
        anchors { right: parent.right; verticalCenter: parent.verticalCenter }
        width: 52
        height: 32
        radius: 16
        color: control.on ? Theme.brass : Theme.control
        edgeWidth: control.on ? 0 : 2
        edge: Theme.edge

        Rounded {
            x: control.on ? 23 : 6
            anchors.verticalCenter: parent.verticalCenter
            width: control.on ? 26 : 20
            height: width
            color: control.on ? Theme.ivory : "#B7A48D"
            scale: control.pressed ? 1.08 : 1
        }
        // The tick, two strokes that meet at its foot.
        Item {
            visible: control.on
            x: 36
            y: 16
            Rounded { x: -5.9; y: 1.2; width: 7; height: 2.6; rotation: 45; color: "#5A4110" }
            Rounded { x: -3.2; y: -1.95; width: 12.4; height: 2.6; rotation: -50; color: "#5A4110" }
        }
    }
}
