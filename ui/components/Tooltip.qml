import QtQuick

// The name of a picture in words, over it, once the mouse has rested there. For the eye alone: a
// screen reader is told the name by the control itself.
Rounded {
    id: tip

    property Item target: null  // what the mouse is on; null: nothing
    readonly property alias text: label.words
    readonly property bool shown: target !== null && delay.over

    x: Math.max(0, Math.min(parent.width - width, target ? target.x + (target.width - width) / 2 : x))
    y: -height - 8
    width: label.width + 24
    height: label.height + 12
    radius: 8
    color: Theme.controlPressed
    edgeWidth: 1
    edge: Theme.line
    visible: shown

    onTargetChanged: {
        delay.over = false
        if (target) {
            label.words = target.name
            delay.restart()
        } else {
            delay.stop()
        }
    }

    Timer {
        id: delay
        property bool over: false
        interval: 600
        onTriggered: over = true
    }
    FittedText {
        id: label
        anchors.centerIn: parent
        size: 15
        Accessible.ignored: true
    }
}
