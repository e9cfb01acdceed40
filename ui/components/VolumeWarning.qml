import QtQuick

// Asks for more volume: a triangle over two lines of text, or left of the text and in the middle of
// it where that is the place. A trouble with the microphone goes first. It is announced elsewhere.
Item {
    id: warning

    required property Metrics metrics
    required property bool troubled
    readonly property bool low: !label.hidden
    readonly property alias words: label.words

    LabelOutlet {
        objectName: "turnUpTheVolumeTriangleLabel"
        hidden: true
        name: ""
        visible: !hidden && !warning.troubled
        y: warning.metrics.warningBeside ? -height / 2 : 0
        width: 1.65 * warning.metrics.caption
        height: width
        WarningSign { width: parent.width }
    }
    LabelOutlet {
        id: label
        objectName: "turnUpTheVolumeLabel"
        hidden: true
        name: initialText
        initialText: Texts.of("TurnUpTheVolume")
        visible: !hidden && !warning.troubled
        x: warning.metrics.warningTextX - warning.metrics.margin
        y: warning.metrics.warningBeside ? -height / 2
                                         : 2.95 * warning.metrics.caption - baselineOffset
        room: warning.metrics.warningBeside
            ? warning.metrics.warningRoom
            : Math.min(warning.metrics.warningRoom, 9.2 * warning.metrics.caption)
        size: warning.metrics.caption
        leading: 1.25
        color: Theme.amber
        font.weight: Font.Bold
        shrinks: false
        balanced: true
    }
}
