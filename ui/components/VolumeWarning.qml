import QtQuick

// Asks for more volume: a triangle over two lines of text.
Item {
    id: warning

    required property Metrics metrics

    LabelOutlet {
        objectName: "turnUpTheVolumeTriangleLabel"
        hidden: true
        width: 1.65 * warning.metrics.caption
        height: width
        Accessible.ignored: true
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
        initialText: Texts.of("TurnUpTheVolume")
        y: 2.95 * warning.metrics.caption - baselineOffset
        room: warning.metrics.axis - 140 * warning.metrics.unit - warning.metrics.margin - 8
        size: warning.metrics.caption
        leading: 1.25
        color: Theme.amber
        font.weight: Font.Bold
        shrinks: false
        Accessible.role: Accessible.AlertMessage
    }
}
