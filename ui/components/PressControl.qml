import QtQuick

// A control that is pressed: by mouse or finger anywhere on it, by Space or Return, or by a screen
// reader.
Control {
    id: control

    property string backgroundImage: ""  // of buttons: the picture behind the caption
    property bool held: false            // by a key
    signal clicked()

    pressed: touch.pressed && touch.containsMouse || held

    Accessible.role: Accessible.Button
    Accessible.onPressAction: clicked()

    function hold(event) {
        Theme.focusVisible = true
        if (!event.isAutoRepeat) held = true
    }
    function release(event) {
        if (event.isAutoRepeat || !held) return
        held = false
        clicked()
    }

    Keys.onSpacePressed: event => hold(event)
    Keys.onReturnPressed: event => hold(event)
    Keys.onEnterPressed: event => hold(event)
    Keys.onReleased: event => release(event)
    onActiveFocusChanged: held = false

    MouseArea {
        id: touch
        anchors.fill: parent
        onPressed: Theme.focusVisible = false
        onClicked: control.clicked()
    }
}
