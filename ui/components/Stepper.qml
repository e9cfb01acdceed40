import QtQuick

// Moves A4 by whole hertz; a half that is held repeats.
Control {
    id: stepper

    value: 440
    readonly property real minimumValue: 392
    readonly property real maximumValue: 466
    readonly property real stepSize: 1

    pressedScale: 1

    Accessible.role: Accessible.SpinBox
    Accessible.onIncreaseAction: step(1)
    Accessible.onDecreaseAction: step(-1)
    Keys.onLeftPressed: step(-1)
    Keys.onDownPressed: step(-1)
    Keys.onRightPressed: step(1)
    Keys.onUpPressed: step(1)

    function step(by: real) {
        const wanted = Math.max(minimumValue, Math.min(maximumValue, value + by))
        if (wanted === value) return
        value = wanted
        activated()
    }

    Rounded {
        anchors.fill: parent
        color: Theme.control
        edgeWidth: 1
        edge: Theme.line
    }
    StepperHalf {
        width: stepper.width / 2
        height: stepper.height
        icon: "iconMinus.png"
        name: Texts.of("DecreaseA4")
        onStepped: stepper.step(-stepper.stepSize)
    }
    StepperHalf {
        x: stepper.width / 2
        width: stepper.width / 2
        height: stepper.height
        icon: "iconPlus.png"
        name: Texts.of("IncreaseA4")
        onStepped: stepper.step(stepper.stepSize)
    }
    Rectangle {
        anchors { horizontalCenter: parent.horizontalCenter; verticalCenter: parent.verticalCenter }
        width: 1
        height: stepper.height - 24
        color: Theme.line
    }
}
