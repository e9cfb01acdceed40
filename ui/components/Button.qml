import QtQuick

// A button with a fill, and a picture in its middle if one is named; whatever else it carries lies
// on it.
PressControl {
    id: button

    property color fill: Theme.control
    property color pressedFill: Theme.controlPressed
    property color edge: Theme.line
    property real edgeWidth: 1
    property string icon
    property real iconSize: 26

    radius: 16
    onClicked: activated()

    Rounded {
        anchors.fill: parent
        radius: button.radius
        color: button.pressed ? button.pressedFill : button.fill
        edgeWidth: button.edgeWidth
        edge: button.edge
    }
    Icon {
        anchors.centerIn: parent
        visible: button.icon !== ""
        size: button.iconSize
        icon: button.icon
    }
}
