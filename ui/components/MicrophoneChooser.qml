import QtQuick

// The microphone in use, and the list of all that unfolds below it.
Item {
    id: chooser

    required property Metrics metrics
    property bool open: false
    property real unfolded: open ? 1 : 0  // how far the list is

    visible: choices.choices !== ""  // where nothing is known of microphones there is nothing to say
    readonly property real ownHeight: visible ? row.height : 0
    height: visible ? row.height + unfolded * (choices.height + 12) : 0

    function unfold() {
        open = true
        if (Theme.focusVisible) choices.takeFocus()
    }
    function fold() {
        if (choices.hasFocus) row.forceActiveFocus(Qt.TabFocusReason)
        open = false
    }

    Keys.onDownPressed: unfold()

    Behavior on unfolded {
        enabled: !Theme.reducedMotion
        NumberAnimation { duration: 200; easing.type: Easing.OutCubic }
    }
    PressControl {
        id: row
        width: parent.width
        height: chooser.metrics.twoLines
        ringed: pill
        radius: 16
        pressedScale: 1
        name: caption.text
        description: inUse.text + ", " + Texts.of(chooser.open ? "ListUnfolded" : "ListFolded")
        onClicked: chooser.open ? chooser.fold() : chooser.unfold()

        LabelOutlet {
            id: caption
            objectName: "microphoneLabel"
            y: row.height / 2 - 5 - baselineOffset
            room: row.width - 52 - 16
            size: chooser.metrics.body
            name: ""
        }
        LabelOutlet {
            id: inUse
            objectName: "microphoneName"
            y: row.height / 2 + 17 - baselineOffset
            room: caption.room
            size: chooser.metrics.remark
            shrinks: false
            wrapMode: Text.NoWrap
            elide: Text.ElideMiddle
            color: Theme.ink2
            name: ""
        }
        Rounded {
            id: pill
            anchors { right: parent.right; verticalCenter: parent.verticalCenter }
            width: 52
            height: 32
            color: chooser.open || row.pressed ? Theme.controlPressed : Theme.control
            edgeWidth: 1
            edge: Theme.line
            Icon {
                anchors.centerIn: parent
                rotation: chooser.open ? 180 : 0
                icon: "iconUnfold.png"
            }
        }
    }
    Item {
        y: row.height
        width: parent.width
        height: chooser.unfolded * choices.height
        clip: chooser.unfolded < 1
        visible: chooser.unfolded > 0
        enabled: chooser.open
        MicrophoneChoices {
            id: choices
            objectName: "microphoneChoices"
            width: parent.width
            metrics: chooser.metrics
            onActivated: folding.restart()
        }
    }
    // The mark moves before the list goes.
    Timer { id: folding; interval: 150; onTriggered: chooser.fold() }
}
