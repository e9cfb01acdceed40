import QtQuick

// A panel that slides from the bottom over the dimmed room, as high as its content; what is higher
// than the room scrolls. Its close button lies at the top right; Escape and a press beside it close
// it too.
Item {
    id: sheet

    required property Metrics metrics
    required property string title  // spoken
    required property string name  // by which it is asked for
    required property real contentHeight
    property bool open: false
    property bool fills: false     // the screen, whatever the content needs
    property bool unfolded: false  // something in it that Escape folds first
    property var rows: []          // heights of what lies in it from top to bottom, when it opens
    default property alias content: body.data
    signal dismissed()
    signal foldAsked()

    property real progress: 0  // 0 out of sight, 1 open

    // What is higher than the room ends within a row, and never between two, so that it is seen to
    // go on: from half of the row on, clear of the end where it has faded.
    readonly property real fade: metrics.by(40, 56, 56)
    readonly property real lowerEnd: endBelow(metrics.sheetLimit)
    readonly property bool covers: fills && !metrics.lying && metrics.sheetWidth >= width
    function endBelow(limit: real): real {
        let end = limit
        let top = 0
        for (const height of rows) {
            const middle = top + height / 2
            const latest = Math.max(middle + 0.4 * fade, top + height - 0.6 * fade)
            if (height > 30 && middle + 0.2 * fade <= limit) end = Math.min(limit, latest)
            top += height
        }
        return top + 14 > limit ? end : limit
    }

    anchors.fill: parent
    visible: open || progress > 0
    enabled: open
    Accessible.role: Accessible.Dialog
    Accessible.name: title
    Keys.onEscapePressed: unfolded ? foldAsked() : dismissed()
    Keys.onUpPressed: area.moveBy(-60)
    Keys.onDownPressed: area.moveBy(60)
    Keys.onPressed: event => {
        event.accepted = event.key === Qt.Key_PageUp || event.key === Qt.Key_PageDown
        if (event.accepted) area.moveBy((event.key === Qt.Key_PageUp ? -0.7 : 0.7) * area.height)
    }

    // Who came by the keyboard goes on with the first control.
    function takeFocus() {
        if (Theme.focusVisible) closeButton.forceActiveFocus(Qt.TabFocusReason)
        else forceActiveFocus()
    }
    function reveal(item: Item) { area.reveal(item) }

    onOpenChanged: {
        if (open) area.begin()
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
        readonly property real shownHeight: sheet.covers ? sheet.metrics.sheetLimit
            : Math.min(sheet.lowerEnd, sheet.contentHeight + sheet.metrics.sheetPadding)

        // A sheet on the bottom edge hides its lower corners and its sides beyond the screen.
        x: (sheet.width - width) / 2
        y: sheet.height - (shownHeight + sheet.metrics.sheetLift) * sheet.progress
        width: sheet.metrics.sheetWidth + (floats ? 0 : 2)
        height: shownHeight + (floats ? 0 : 24)
        radius: sheet.covers ? 0 : 24
        color: Theme.sheet
        edgeWidth: sheet.covers ? 0 : 1
        edge: Theme.line

        MouseArea { anchors.fill: parent }  // presses on the paper do not reach the scrim

        CloseStrip {
            id: closeButton
            z: 1
            width: parent.width
            metrics: sheet.metrics
            radius: parent.radius
            lifted: area.scrolled
            onClicked: sheet.dismissed()
        }
        ScrollArea {
            id: area
            width: parent.width - (paper.floats ? 0 : 2)
            height: paper.shownHeight
            length: sheet.contentHeight + 14
            head: closeButton.height
            fade: sheet.fade
            inset: (width - sheet.metrics.sheetContent) / 2
            Item {
                id: body
                width: sheet.metrics.sheetContent
            }
        }
    }
}
