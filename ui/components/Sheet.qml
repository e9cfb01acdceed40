import QtQuick

// A panel that slides from the bottom over the dimmed room, as high as its content. Its close button
// lies at the top right; Escape and a press beside it close it too.
Item {
    id: sheet

    required property Metrics metrics
    required property string title  // spoken
    required property string name  // by which it is asked for
    required property real contentHeight
    property bool open: false
    property bool fills: false     // the screen, whatever the content needs
    default property alias content: body.data
    signal dismissed()

    property real progress: 0  // 0 out of sight, 1 open

    anchors.fill: parent
    visible: open || progress > 0
    enabled: open
    Accessible.role: Accessible.Dialog
    Accessible.name: title
    Keys.onEscapePressed: dismissed()

    // Who came by the keyboard goes on with the first control.
    function takeFocus() {
        if (Theme.focusVisible) closeButton.forceActiveFocus(Qt.TabFocusReason)
        else forceActiveFocus()
    }

    onOpenChanged: {
        slide.to = open ? 1 : 0
        slide.duration = Theme.reducedMotion ? 0 : open ? 260 : 200
        slide.easing.type = open ? Easing.OutCubic : Easing.InCubic
        slide.restart()
    }
    NumberAnimation { id: slide; target: sheet; property: "progress" }

    Scrim {
        opacity: 0.62 * sheet.progress
        onPressed: sheet.dismissed()
    }
    Rounded {
        id: paper

        readonly property bool floats: sheet.metrics.sheetLift > 0
        readonly property bool covers: sheet.fills && sheet.metrics.sheetWidth >= sheet.width
        readonly property real shownHeight: covers ? sheet.metrics.sheetLimit
            : Math.min(sheet.metrics.sheetLimit, sheet.contentHeight + sheet.metrics.sheetPadding)

        // A sheet on the bottom edge hides its lower corners and its sides beyond the screen.
        x: (sheet.width - width) / 2
        y: sheet.height - (shownHeight + sheet.metrics.sheetLift) * sheet.progress
        width: sheet.metrics.sheetWidth + (floats ? 0 : 2)
        height: shownHeight + (floats ? 0 : 24)
        radius: covers ? 0 : 24
        color: Theme.sheet
        edgeWidth: covers ? 0 : 1
        edge: Theme.line

        MouseArea { anchors.fill: parent }  // presses on the paper do not reach the scrim

        Item {
            x: (parent.width - width) / 2
            width: sheet.metrics.sheetContent
            height: paper.shownHeight

            IconButton {
                id: closeButton
                anchors.right: parent.right
                y: sheet.metrics.by(10, 14, 20)
                width: 44
                height: 44
                radius: 22
                edge: "transparent"
                icon: "iconClose.png"
                iconSize: 24
                name: Texts.of("CloseTitle")
                onClicked: sheet.dismissed()
            }
            Item {
                id: body
                width: parent.width
            }
        }
    }
}
