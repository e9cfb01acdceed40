import QtQuick

// What all controls share: the controller's action, the focus and its ring, the spoken name.
// `activated` follows the user's change; a change from outside does not emit it.
Outlet {
    id: control

    property string action
    signal activated()

    property string name         // spoken
    property string description  // spoken after it
    property bool pressed: false
    // Of sliders and steppers. It is declared beside the spoken name: a screen reader is told of a
    // change only where the value is as old as the name.
    property real value: 0

    // What the focus ring surrounds; the whole control, unless a smaller part is drawn.
    property Item ringed: control
    property real radius: height / 2
    property real pressedScale: 0.97

    // A control in a panel that is shut off as a whole keeps its look.
    opacity: enabled || !parent.enabled ? blinking ? blink : alpha : 0.4
    scale: pressed ? pressedScale : 1
    activeFocusOnTab: enabled

    Accessible.name: name
    Accessible.description: description
    Accessible.focusable: enabled
    Accessible.ignored: !parent.enabled  // behind a panel

    Keys.onPressed: event => {
        Theme.focusVisible = true
        event.accepted = false
    }

    Behavior on scale {
        enabled: !Theme.reducedMotion
        NumberAnimation { duration: 80 }
    }

    Rounded {
        parent: control.ringed
        anchors { fill: parent; margins: -5 }
        radius: control.radius + 5
        color: "transparent"
        edgeWidth: 2
        edge: Theme.ink
        visible: control.activeFocus && Theme.focusVisible
        z: 1
    }
}
