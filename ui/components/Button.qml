import QtQuick

// A button with a fill; whatever it carries lies on it.
PressControl {
    id: button

    property color fill: Theme.control
    property color pressedFill: Theme.controlPressed
    property color edge: Theme.line
    property real edgeWidth: 1

    radius: 16
    onClicked: activated()

    Rounded {
        anchors.fill: parent
        radius: button.radius
        color: button.pressed ? button.pressedFill : button.fill
        edgeWidth: button.edgeWidth
        edge: button.edge
    }
}
