import QtQuick

// What the tuner heard: the frequency, or the waiting dots; the note; and the caption with the pitch
// of A4, which mirrors the label in the settings.
Item {
    id: readOut

    required property Metrics metrics
    required property string a4
    readonly property alias note: noteDisplay.text

    FittedText {
        objectName: "caption"
        x: readOut.metrics.margin
        y: readOut.metrics.captionBaseline - baselineOffset
        visible: readOut.a4 !== ""
        text: "A4 = " + readOut.a4 + "Hz"
        size: readOut.metrics.caption
        color: Theme.brass
        font.weight: Font.Medium
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
    LabelOutlet {
        id: noteDisplay
        objectName: "noteDisplay"
        x: readOut.metrics.margin - 0.03 * size
        y: readOut.metrics.noteBaseline - baselineOffset
        size: readOut.metrics.note
        font.family: Theme.serif
        name: text === "" ? "" : Texts.of("NoteName") + " " + text
    }
    LabelOutlet {
        id: frequency
        objectName: "freq_label"
        x: readOut.metrics.margin - 0.03 * size
        y: readOut.metrics.baseline - baselineOffset
        size: readOut.metrics.readout
        width: 3.8 * size  // also where there is nothing to read: it can be pointed at and spoken
        font.weight: Font.Medium
        Accessible.role: Accessible.StatusBar
        name: Texts.of("ReadOut")
        description: text === "" ? Texts.of("ListeningTitle") : text
    }
    WaitingDots {
        x: readOut.metrics.margin
        y: readOut.metrics.baseline
        size: readOut.metrics.readout
        visible: frequency.text === "" && !frequency.hidden
    }
}
