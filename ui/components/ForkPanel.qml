import QtQuick

// The tuning fork: plays the tone of a string. Entering it keeps the beep of the tuner quiet,
// leaving it stops the tone.
Sheet {
    id: fork

    required property bool volumeLow
    property string sounding  // the note whose button was pressed last, until it is stopped
    property bool warned: false  // of the volume, while the sheet is open
    signal warning()

    title: Texts.of("TuningForkTitle")
    contentHeight: stop.y + stop.height

    onOpenChanged: open ? entered.activated() : leave()
    onVolumeLowChanged: if (open && volumeLow) warned = true  // the screen tells of it
    function leave() {
        warned = false
        stop.activated()
        left.activated()
    }

    Trigger { id: entered; action: "disableTemporarilySoundConfirmation" }
    Trigger { id: left; action: "enableSoundConfirmation" }

    FittedText {
        visible: note.text === ""
        y: fork.metrics.by(42, 50, 56) - baselineOffset
        room: parent.width - 56
        words: fork.title
        size: fork.metrics.by(28, 34, 40)
        font.family: Theme.serif
        Accessible.ignored: true
    }
    LabelOutlet {
        id: note
        objectName: "tfnoteDisplay"
        x: -0.033 * size
        y: fork.metrics.by(92, 122, 158) - baselineOffset
        size: fork.metrics.by(88, 118, 160)
        font.family: Theme.serif
    }
    LabelOutlet {
        id: frequency
        objectName: "tfFreqLabel"
        x: fork.metrics.flat ? fork.metrics.sheetContent - implicitWidth : -0.035 * size
        y: fork.metrics.flat ? note.y + note.baselineOffset - baselineOffset
                             : fork.metrics.by(144, 190, 250) - baselineOffset
        size: fork.metrics.by(40, 52, 72)
        font.weight: Font.Medium
    }
    VolumeSign {
        visible: fork.volumeLow && note.text !== ""
        x: 1.46 * note.size
        y: note.y + note.baselineOffset - 0.644 * note.size + 8
        width: (fork.metrics.flat ? frequency.x - 12 : fork.metrics.sheetContent) - x
        height: 5 * fork.metrics.caption
        metrics: fork.metrics
        onVisibleChanged: if (visible && !fork.warned) {
            fork.warned = true
            fork.warning()
        }
    }
    Row {
        id: tones
        // The sheet grows upwards when there is a note to show; the buttons stay where they are.
        y: note.text === "" ? fork.metrics.by(66, 80, 100)
                            : fork.metrics.flat ? 112 : fork.metrics.by(166, 222, 288)
        spacing: 10
        function takeFocus() { children[0].forceActiveFocus(Qt.TabFocusReason) }
        Repeater {
            model: ["A3", "D3", "G2", "C2"]
            ToneButton {
                required property string modelData
                required property int index
                objectName: modelData.toLowerCase() + "TFButton"
                action: "play" + modelData
                note: modelData
                string: index + 1
                sounding: stop.enabled && fork.sounding === note
                width: (fork.metrics.sheetContent - 30) / 4
                height: fork.metrics.flat ? 100 : fork.metrics.by(120, 132, 160)
                size: fork.metrics.by(24, 28, 34)
                onActivated: fork.sounding = note
            }
        }
    }
    Button {
        id: stop
        objectName: "stopTFButton"
        action: "stopFreqPlay"
        name: Texts.of(enabled ? "StopTitle" : "StopUnavailable")
        y: tones.y + tones.height + 14
        width: parent.width
        height: fork.metrics.flat ? 44 : fork.metrics.by(48, 56, 60)
        radius: 16
        fill: enabled ? Theme.control : "transparent"
        edge: enabled ? Theme.line : Theme.edge
        icon: enabled ? "iconStop.png" : "iconStopSilent.png"
        iconSize: 30
        // It is about to be unavailable: the focus would be lost with it.
        onActivated: {
            if (activeFocus) tones.takeFocus()
            fork.sounding = ""
        }
    }
}
