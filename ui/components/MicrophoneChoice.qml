import QtQuick

// One microphone of the list: its name, and below it what is to be said of it.
PressControl {
    id: choice

    required property Metrics metrics
    required property bool first
    required property bool chosen
    readonly property bool isChoice: true
    readonly property real shift: description === "" ? 6 : -4  // from the middle to the baseline

    ringed: mark
    radius: 11
    pressedScale: 1

    Accessible.role: Accessible.RadioButton
    Accessible.checkable: true
    Accessible.checked: chosen
    Accessible.onToggleAction: clicked()

    Rectangle {
        visible: !choice.first
        x: 46
        width: parent.width - 47
        height: 1
        color: Theme.line
    }
    Rounded {
        id: mark
        x: 13
        anchors.verticalCenter: parent.verticalCenter
        width: 22
        height: 22
        color: choice.pressed ? Theme.controlPressed : "transparent"
        edgeWidth: 2
        edge: choice.chosen ? Theme.brass : Theme.edge
        Icon {
            visible: choice.chosen
            size: 22
            icon: "iconChosen.png"
        }
    }
    FittedText {
        x: 48
        y: choice.height / 2 + choice.shift - baselineOffset
        room: choice.width - x - 16
        shrinks: false
        wrapMode: Text.NoWrap
        elide: Text.ElideMiddle
        words: choice.name
        size: choice.metrics.body
        font.weight: choice.chosen ? Font.Bold : Font.Normal
        Accessible.ignored: true
    }
    FittedText {
        x: 48
        y: choice.height / 2 + 17 - baselineOffset
        room: choice.width - x - 16
        shrinks: false
        wrapMode: Text.NoWrap
        elide: Text.ElideMiddle
        words: choice.description
        size: choice.metrics.remark
        color: Theme.ink2
        Accessible.ignored: true
    }
}
