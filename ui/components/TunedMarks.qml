import QtQuick

// What lights up on the cello and beside it: the string in tune, the marks on the pegs, the lamp.
Item {
    id: marks

    required property Metrics metrics
    required property string stringOutlet
    required property string lampOutlet
    required property string note         // the one last in tune
    required property int level           // of what is heard, 0 to 7
    required property bool troubled       // nothing can be heard

    PictureOutlet {
        objectName: marks.stringOutlet
        x: marks.metrics.celloX + 140 * marks.metrics.unit
        y: marks.metrics.celloY + 64 * marks.metrics.unit
        width: 120 * marks.metrics.unit
        height: 768 * marks.metrics.unit
        fillMode: Image.Stretch  // exactly, whatever its pixels
        celloUnit: marks.metrics.unit
    }
    Repeater {
        // The peg heads in the cello's units.
        model: [
            { outlet: "ring1", note: "A3", x: 272, y: 186 },
            { outlet: "ring2", note: "D3", x: 272, y: 104 },
            { outlet: "ring3", note: "G2", x: 128, y: 120 },
            { outlet: "ring4", note: "C2", x: 128, y: 202 }
        ]
        // It settles when it appears.
        PictureOutlet {
            id: ring
            required property var modelData
            objectName: modelData.outlet
            x: marks.metrics.celloX + modelData.x * marks.metrics.unit - width / 2
            y: marks.metrics.celloY + modelData.y * marks.metrics.unit - height / 2
            width: marks.metrics.ringSize
            height: width
            name: Texts.of("StringTuned", modelData.note)
            onImageChanged: if (image !== "" && !Theme.reducedMotion) settle.restart()

            NumberAnimation {
                id: settle
                target: ring
                property: "scale"
                from: 1.15
                to: 1
                duration: 180
                easing.type: Easing.OutCubic
            }
        }
    }
    Lamp {
        id: lamp
        objectName: marks.lampOutlet
        note: marks.note
        level: marks.level
        dark: marks.troubled
        x: marks.metrics.lampX
        y: marks.metrics.lampBottom - height
        width: marks.metrics.lamp
        height: width
    }
}
