import QtQuick

// What stands in place of the read-out while there is none. In silence three dots, a light travels
// through them; it moves in a few steps a second: it is on screen most of the time, and every step
// is a repaint. What is heard makes a string between the dots swing, step by step with its level.
Item {
    id: dots
    objectName: "waitingDots"

    property real size: 78  // of the read-out
    property int level: 0   // 0 to 7
    property real phase: 0  // 0 to 1, one round

    width: 0.84 * size
    height: 0.4 * size

    Repeater {
        model: 3
        Rounded {
            required property int index
            readonly property real glow: 0.5 + 0.5 * Math.cos(2 * Math.PI * (dots.phase - index / 4))
            visible: dots.level === 0
            x: (0.06 + 0.36 * index - 0.055) * dots.size
            y: (0.2 - 0.055) * dots.size
            width: 0.11 * dots.size
            height: width
            color: Theme.amber
            opacity: Theme.reducedMotion ? [0.9, 0.5, 0.25][index] : 0.25 + 0.65 * glow
        }
    }
    Image {
        visible: dots.level > 0
        anchors.fill: parent
        source: visible ? Theme.picture("levelSwing" + dots.level + ".png") : ""
    }
    Timer {
        interval: 120
        repeat: true
        running: dots.visible && dots.level === 0 && !Theme.reducedMotion
        onTriggered: dots.phase = (dots.phase + 0.12 / 1.8) % 1
    }
}
