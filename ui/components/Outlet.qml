import QtQuick

// An element that the controller acts on. `hidden`, `alpha` and `blinking` are written from outside
// and never bound; what is seen follows from them.
Item {
    id: outlet

    property bool hidden: false
    property real alpha: 1
    property bool blinking: false

    // What blinks does so three times and then stands still. Blinking runs in steps of 50 ms, ten to
    // a round: every step is a repaint.
    readonly property int blinkSteps: 30
    property int blinkStep: 0
    readonly property real blink: 0.5 + 0.5 * Math.cos(Math.PI * blinkStep / 5)
    readonly property bool blinks: blinking && visible && !Theme.reducedMotion

    visible: !hidden
    opacity: blinking ? blink : alpha

    onBlinksChanged: blinkStep = 0

    Timer {
        interval: 50
        repeat: true
        running: outlet.blinks && outlet.blinkStep < outlet.blinkSteps
        onTriggered: ++outlet.blinkStep
    }
}
