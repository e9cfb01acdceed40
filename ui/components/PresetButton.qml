import QtQuick

// One value of A4. Selected means that it has a background picture.
Button {
    id: button

    required property int a4
    property real size: 20
    readonly property bool selected: backgroundImage !== ""

    radius: 12
    fill: selected ? Theme.selected : Theme.control
    pressedFill: selected ? Theme.selectedPressed : Theme.controlPressed
    edge: selected ? Theme.brass : Theme.line
    name: Texts.of("CalibrationPreset", a4)
    Accessible.role: Accessible.RadioButton
    Accessible.checkable: true
    Accessible.checked: selected

    Loader {
        anchors.fill: parent
        active: button.selected
        sourceComponent: NineParts {
            source: Theme.picture(button.backgroundImage)
            size: Qt.size(108, 50)
            corner: 14
        }
    }
    Rounded {
        visible: button.selected && button.pressed
        anchors { fill: parent; margins: 2 }
        radius: 10
        color: Theme.selectedPressed
    }
    Text {
        anchors.centerIn: parent
        text: button.a4
        color: Theme.ink
        font.family: Theme.sans
        font.pixelSize: button.size
        font.weight: button.selected ? Font.Bold : Font.Medium
        Accessible.ignored: true
    }
}
