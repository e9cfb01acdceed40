import QtQuick

// Asks for more volume: a triangle over two lines of text, or left of the text and in the middle of
// it where that is the place.
Item {
    id: warning

    required property Metrics metrics

    // In two lines, broken at the last space before the middle or else at the first.
    function broken(text: string): string {
        const before = text.lastIndexOf(" ", text.length / 2 - 1)
        const at = before < 0 ? text.indexOf(" ") : before
        return at < 0 ? text : text.slice(0, at) + "\n" + text.slice(at + 1)
    }

    LabelOutlet {
        objectName: "turnUpTheVolumeTriangleLabel"
        hidden: true
        name: ""
        y: warning.metrics.warningBeside ? -height / 2 : 0
        width: 1.65 * warning.metrics.caption
        height: width
        Image {
            x: -0.07 * parent.width
            width: parent.width * 1.14
            height: width
            sourceSize: Qt.size(2 * width, 2 * height)
            source: Theme.picture("iconWarning.png")
        }
    }
    LabelOutlet {
        objectName: "turnUpTheVolumeLabel"
        hidden: true
        name: Texts.of("TurnUpTheVolume")
        initialText: warning.metrics.warningBeside ? Texts.of("TurnUpTheVolume")
                                                   : warning.broken(Texts.of("TurnUpTheVolume"))
        x: warning.metrics.warningTextX - warning.metrics.margin
        y: warning.metrics.warningBeside ? -height / 2
                                         : 2.95 * warning.metrics.caption - baselineOffset
        room: warning.metrics.warningRoom
        size: warning.metrics.caption
        leading: 1.25
        color: Theme.amber
        font.weight: Font.Bold
        shrinks: false
        Accessible.role: Accessible.AlertMessage
    }
}
