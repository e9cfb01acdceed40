import QtQuick

// Plays the tone of one string; the string in it swings while it sounds.
Button {
    id: button

    required property string note
    required property int string  // 1 (A3) to 4 (C2)
    required property bool sounding
    property real size: 28

    name: Texts.of("PlayTone", note)
    fill: sounding ? Theme.selected : Theme.control
    pressedFill: sounding ? Theme.selectedPressed : Theme.controlPressed
    edge: sounding ? Theme.brass : Theme.line
    edgeWidth: sounding ? 2 : 1
    Accessible.checkable: true
    Accessible.checked: sounding

    Image {
        id: swing
        property real swell: 1
        visible: button.sounding
        anchors.horizontalCenter: parent.horizontalCenter
        y: wire.y - 1
        width: 26
        height: wire.height + 2
        source: Theme.picture("toneSwing.png")
        transform: Scale { origin.x: 13; xScale: swing.swell }

        SequentialAnimation on swell {
            running: swing.visible && !Theme.reducedMotion
            loops: Animation.Infinite
            NumberAnimation { to: 1.15; duration: 450; easing.type: Easing.InOutSine }
            NumberAnimation { to: 0.85; duration: 450; easing.type: Easing.InOutSine }
        }
    }
    Rounded {
        id: wire
        anchors.horizontalCenter: parent.horizontalCenter
        y: 16
        width: 1.25 * Theme.stringWidths[button.string - 1]
        height: button.height - 64
        color: Theme.stringColors[button.string - 1]
    }
    Text {
        anchors.horizontalCenter: parent.horizontalCenter
        y: button.height - 16 - baselineOffset
        text: button.note
        color: Theme.ink
        font.family: Theme.serif
        font.pixelSize: button.size
        Accessible.ignored: true
    }
}
