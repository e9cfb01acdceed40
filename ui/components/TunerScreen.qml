import QtQuick

// The one screen: the room with what the tuner heard, the dock, and the panels that slide over it.
// A layout gives it its size, its insets and the outlets that it contains; the rest follows.
Item {
    id: screen

    // Per layout.
    property var safeInsets: ({ top: 0, bottom: 0 })
    required property string celloPicture
    required property string stringOutlet  // the outlet of the string pictures
    required property string lampOutlet

    // Written from outside.
    property var texts: ({})
    property bool reducedMotion: false
    property string openPanel: ""  // "settings", "fork", "chart", "about"
    property string version

    clip: true
    focus: true
    Keys.onPressed: event => {
        Theme.focusVisible = true
        event.accepted = false
    }

    // What every component heeds.
    onScaleChanged: Theme.zoom = scale
    onTextsChanged: Texts.table = texts
    onReducedMotionChanged: Theme.reducedMotion = reducedMotion
    Component.onCompleted: {
        Theme.zoom = scale
        Texts.table = texts
        Theme.reducedMotion = reducedMotion
    }

    // The focus moves into a panel that opens, and back to the cell that leads to it; after the
    // bindings, because what is shut off takes no focus.
    property Item leadingCell: null
    onOpenPanelChanged: Qt.callLater(moveFocus)
    function moveFocus() {
        const sheet = panels.openSheet()
        if (sheet) {
            leadingCell = dock.cellOf(sheet.name)
            sheet.takeFocus()
        } else if (leadingCell) {
            leadingCell.forceActiveFocus()
            leadingCell = null
        }
    }

    Metrics {
        id: metrics
        screenWidth: screen.width
        height: screen.height
        insets: screen.safeInsets
    }

    // All that a dialog shuts off.
    Item {
        anchors.fill: parent
        enabled: !dialog.shown

        // The column that the layout is.
        Item {
            x: metrics.left
            width: metrics.width
            height: screen.height
            enabled: screen.openPanel === ""

            Backdrop {
                x: -metrics.left
                width: screen.width
                height: screen.height
                metrics: metrics
                celloPicture: screen.celloPicture
            }
            ReadOut {
                id: readOut
                metrics: metrics
                a4: panels.a4
                troubled: trouble.stands
            }
            VolumeWarning {
                id: volume
                x: metrics.margin
                y: metrics.warningBeside ? metrics.warningMiddle : metrics.warningTop
                metrics: metrics
                troubled: trouble.stands
            }
            Trouble {
                id: trouble
                metrics: metrics
            }
            TunedMarks {
                metrics: metrics
                stringOutlet: screen.stringOutlet
                lampOutlet: screen.lampOutlet
                note: readOut.note
                level: readOut.level
                troubled: trouble.stands
            }
            Dock {
                id: dock
                objectName: "dock"
                x: metrics.margin
                y: metrics.dockTop
                width: metrics.dockWidth
                height: metrics.dockHeight
                iconSize: metrics.by(26, 26, 30)
                onAsked: panel => screen.openPanel = panel
            }
        }
        Panels {
            id: panels
            anchors.fill: parent
            metrics: metrics
            openPanel: screen.openPanel
            version: screen.version
            volumeLow: volume.low
            onVolumeWarning: volumeAlert.speak()
            onDismissed: screen.openPanel = ""
        }
    }
    Announcement { objectName: "announcement" }
    Announcement {
        id: volumeAlert
        text: volume.low && !trouble.stands ? volume.words : ""
        Accessible.role: Accessible.AlertMessage
    }
    RatingDialog {
        id: dialog
        objectName: "ratingDialog"
        metrics: metrics
    }
}
