import QtQuick

// Below the chart: which string the lamp cannot hear, and the way out of it. After that was taken it
// says so for a while, and keeps its room until the panel closes.
Item {
    id: hint

    required property Metrics metrics
    required property bool open  // the panel
    readonly property bool needed: !sentence.hidden
    property bool taken: false
    signal turnedOn()

    height: needed || taken ? sentence.y + sentence.height + 51 : 0
    onOpenChanged: taken = false

    Rectangle {
        visible: hint.needed || hint.taken
        width: parent.width
        height: 1
        color: Theme.line
    }
    LabelOutlet {
        id: sentence
        objectName: "byEarHint"
        hidden: true
        y: 30 - baselineOffset
        room: hint.width
        size: hint.metrics.remark
        leading: 1.25
        shrinks: false
        balanced: true
        color: Theme.ink2
    }
    ByEarButton {
        objectName: "fineHearingButton"
        action: "turnOnFineHearing"
        hidden: true
        y: sentence.y + sentence.height + 7
        size: hint.metrics.body
        onActivated: {
            hint.taken = true
            done.restart()
            hint.turnedOn()
        }
    }
    Item {
        y: 16
        width: hint.width
        height: 28
        visible: done.running
        Accessible.role: Accessible.Notification
        Accessible.name: said.words
        FittedText {
            id: said
            y: 14 - baselineOffset
            words: Texts.of("FineHearingIsOn")
            size: hint.metrics.remark
            color: Theme.ink2
            Accessible.ignored: true
        }
        Icon {
            x: said.width + 8
            y: -2
            size: 22
            icon: "iconDone.png"
        }
    }
    Timer { id: done; interval: 3000 }
}
