import QtQuick

// A word to press, and an arrow behind it.
PressControl {
    id: button

    property real size: 17

    width: caption.width + 38
    height: 44
    radius: 12
    name: caption.words
    onClicked: activated()

    FittedText {
        id: caption
        anchors.verticalCenter: parent.verticalCenter
        words: Texts.of("TurnOnFineHearing")
        size: button.size
        color: button.pressed ? Theme.brassPressed : Theme.brass
        font.weight: Font.Bold
        Accessible.ignored: true
    }
    Icon {
        anchors { right: parent.right; verticalCenter: parent.verticalCenter }
        icon: "iconForward.png"
    }
}
