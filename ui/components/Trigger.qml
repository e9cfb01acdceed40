import QtQuick

// Calls an action of the controller for something that is no control, such as entering a panel.
Item {
    property string action
    signal activated()

    visible: false
}
