import QtQuick

// An element that the controller acts on. `hidden`, `alpha` and `blinking` are written from outside
// and never bound; what is seen follows from them.
Item {
    id: outlet

    property bool hidden: false
    property real alpha: 1
    property bool blinking: false

    property real blink: 1
    readonly property bool blinks: blinking && visible && !Theme.reducedMotion

    visible: !hidden
    opacity: blinking ? blink : alpha

    onBlinksChanged: if (!blinks) blink = 1

    SequentialAnimation on blink {
        running: outlet.blinks
        loops: Animation.Infinite
        NumberAnimation { to: 0; duration: 250; easing.type: Easing.InOutQuad }
        NumberAnimation { to: 1; duration: 250; easing.type: Easing.InOutQuad }
    }
}
