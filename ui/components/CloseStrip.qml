import QtQuick

// The upper end of a sheet with its close button. It hides what is scrolled beneath it.
FocusScope {
    id: strip

    required property Metrics metrics
    property real radius: 0      // of the sheet's upper corners
    property bool lifted: false  // something lies under it
    signal clicked()

    height: metrics.by(64, 64, 76)

    Item {
        anchors.fill: parent
        clip: true
        visible: strip.lifted
        Rounded {
            width: parent.width
            height: parent.height + 24
            // Round corners everywhere: the software renderer leaves stale what moves beneath a plain
            // opaque rectangle.
            radius: Math.max(1, strip.radius)
            color: Theme.sheet
            edgeWidth: strip.radius > 0 ? 1 : 0
            edge: Theme.line
        }
        Rectangle {
            y: parent.height - 1
            width: parent.width
            height: 1
            color: Theme.line
        }
    }
    Button {
        x: (strip.width + strip.metrics.sheetContent) / 2 - width
        y: strip.metrics.by(10, 14, 20)
        width: 44
        height: 44
        radius: 22
        focus: true
        edge: "transparent"
        icon: "iconClose.png"
        iconSize: 24
        name: Texts.of("CloseTitle")
        onClicked: strip.clicked()
    }
}
