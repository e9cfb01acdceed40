import QtQuick

// A4 in large figures with its stepper, and the name of that pitch, which keeps its line when there
// is none.
Item {
    id: header

    required property Metrics metrics
    readonly property string a4: value.text
    readonly property string temperament: temperamentName.text
    readonly property real valueBaseline: metrics.by(86, 120, 146)

    height: Math.max(metrics.by(124, 176, 214),
                     temperamentName.y + temperamentName.implicitHeight + 12)

    LabelOutlet {
        objectName: "calibrationLabel"
        y: header.metrics.by(33, 43, 50) - baselineOffset
        room: header.width - 56
        size: header.metrics.body
        color: Theme.ink2
    }
    LabelOutlet {
        id: value
        objectName: "calibrationFrequencyValue"
        text: "440"
        x: -0.045 * size
        y: header.valueBaseline - baselineOffset
        size: header.metrics.by(50, 68, 84)
        font.weight: Font.Medium
    }
    LabelOutlet {
        objectName: "hZLabel"
        x: value.x + value.implicitWidth + 8
        y: header.valueBaseline - baselineOffset
        room: stepper.x - x - 8
        size: header.metrics.by(20, 26, 32)
        color: Theme.ink2
    }
    Stepper {
        id: stepper
        objectName: "setFrequencyValueStepper"
        action: "setFrequencyValue"
        name: Texts.of("CalibrationTitle")
        anchors.right: parent.right
        y: header.metrics.by(58, 74, 94)
        width: header.metrics.by(120, 136, 160)
        height: header.metrics.by(44, 52, 60)
    }
    LabelOutlet {
        id: temperamentName
        objectName: "currentTemperamentName"
        y: header.metrics.by(112, 154, 190) - baselineOffset
        room: header.width
        size: header.metrics.temperament
        color: Theme.brass
        font.family: Theme.serif
    }
}
