import QtQuick

// What the tuner heard: the frequency, or what stands in its place; the note; and the caption with
// the pitch of A4, which mirrors the label in the settings.
Item {
    id: readOut

    required property Metrics metrics
    required property string a4
    required property bool troubled  // nothing can be heard: neither note nor read-out are there
    readonly property alias note: noteDisplay.text
    readonly property alias level: meter.step
    readonly property bool waiting: frequency.text === "" && !frequency.hidden && !troubled
    readonly property real middle: metrics.baseline - 0.36 * metrics.readout

    // Holds the level for others to show. With less motion it has three steps only: silence, heard
    // but too quiet, loud enough.
    Outlet {
        id: meter
        objectName: "inputLevel"
        property real level: 0
        readonly property int step: Theme.reducedMotion ? [0, 2, 2, 2, 6, 6, 6, 6][level] : level
        readonly property bool tooQuiet: level >= 1 && level <= 3
    }
    FittedText {
        objectName: "caption"
        x: readOut.metrics.margin
        y: readOut.metrics.captionBaseline - baselineOffset
        visible: readOut.a4 !== ""
        words: "A4 = " + readOut.a4 + "Hz"
        size: readOut.metrics.caption
        color: Theme.brass
        font.weight: Font.Medium
        Accessible.role: Accessible.StaticText
        Accessible.name: words
    }
    LabelOutlet {
        id: noteDisplay
        objectName: "noteDisplay"
        x: readOut.metrics.margin - 0.03 * size
        y: readOut.metrics.noteBaseline - baselineOffset
        visible: !hidden && !readOut.troubled
        size: readOut.metrics.note
        font.family: Theme.serif
        name: text === "" ? "" : Texts.of("NoteName") + " " + text
    }
    LabelOutlet {
        id: frequency
        objectName: "freq_label"
        x: readOut.metrics.margin - 0.03 * size
        y: readOut.metrics.baseline - baselineOffset
        visible: !hidden && !readOut.troubled
        size: readOut.metrics.readout
        width: 3.8 * size  // also where there is nothing to read: it can be pointed at and spoken
        font.weight: Font.Medium
        Accessible.role: Accessible.StatusBar
        name: Texts.of("ReadOut")
        description: text !== "" ? text
                                 : Texts.of(meter.tooQuiet ? "HeardTooQuiet" : "ListeningTitle")
    }
    LabelOutlet {
        id: hint
        objectName: "firstNoteHint"
        x: readOut.metrics.margin
        y: readOut.middle + (0.325 - 0.55 * (lineCount - 1)) * font.pixelSize - baselineOffset
        visible: !hidden && text !== "" && readOut.waiting
        room: readOut.metrics.promptRoom - 20 - 0.84 * dots.size
        size: readOut.metrics.prompt
        leading: 1.1
        balanced: true
        color: Theme.ink2
        font.family: Theme.serif
    }
    WaitingDots {
        id: dots
        x: hint.visible ? hint.x + hint.contentWidth + 20 : readOut.metrics.margin
        y: readOut.middle - height / 2
        size: readOut.metrics.readout * (hint.text === "" ? 1 : 0.8)
        level: meter.step
        visible: readOut.waiting
    }
}
