import QtQuick

// A slider from 0 to 10. The knob follows the finger without steps; the controller is told where it
// was let go, and rounds as it sees fit.
Control {
    id: slider

    value: 5
    readonly property real minimumValue: 0
    readonly property real maximumValue: 10
    readonly property real stepSize: 1
    readonly property int shown: Math.round(value)
    readonly property real travel: width - 32  // of the knob

    implicitHeight: 44
    ringed: knob
    radius: 16
    pressed: touch.pressed
    pressedScale: 1

    Accessible.role: Accessible.Slider
    Accessible.onIncreaseAction: step(1)
    Accessible.onDecreaseAction: step(-1)
    Keys.onLeftPressed: step(-1)
    Keys.onDownPressed: step(-1)
    Keys.onRightPressed: step(1)
    Keys.onUpPressed: step(1)

    function bounded(wanted: real): real {
        return Math.max(minimumValue, Math.min(maximumValue, wanted))
    }
    function step(by: real) {
        value = bounded(shown + by)
        activated()
    }

    Rounded {
        id: track
        x: 16
        anchors.verticalCenter: parent.verticalCenter
        width: slider.travel
        height: 5
        color: Theme.line
        Rounded {
            width: knob.x
            height: 5
            color: Theme.brass
        }
    }
    Repeater {
        model: 11
        Rectangle {
            required property int index
            visible: index !== slider.shown
            x: 15.25 + slider.travel * index / 10
            y: slider.height / 2 + 11
            width: 1.5
            height: 5
            color: Theme.edge
        }
    }
    Rounded {
        id: knob
        x: slider.travel * slider.value / 10
        anchors.verticalCenter: parent.verticalCenter
        width: 32
        height: 32
        scale: slider.pressed ? 1.1 : 1
        color: Theme.ivory
        edgeWidth: 2
        edge: Theme.brass
        Text {
            anchors.centerIn: parent
            text: slider.shown
            color: "#3A2A0C"
            font { family: Theme.sans; pixelSize: 16; weight: Font.Bold }
            Accessible.ignored: true
        }
    }
    MouseArea {
        id: touch
        anchors.fill: parent
        preventStealing: true
        function follow(x: real) { slider.value = slider.bounded((x - 16) / slider.travel * 10) }
        onPressed: event => {
            Theme.focusVisible = false
            follow(event.x)
        }
        onPositionChanged: event => follow(event.x)
        onReleased: slider.activated()
        onCanceled: slider.activated()
    }
}
