import QtQuick

// A button with a word on it.
Button {
    id: button

    property string text
    property color ink: Theme.ink
    property color pressedInk: ink
    property int weight: Font.Medium
    property real size: 18

    implicitHeight: 50
    name: text

    FittedText {
        anchors.centerIn: parent
        room: button.width - 24
        words: button.text
        size: button.size
        color: button.pressed ? button.pressedInk : button.ink
        font.weight: button.weight
        horizontalAlignment: Text.AlignHCenter
        Accessible.ignored: true
    }
}
