import QtQuick

// A label. Its baseline is the baseline of its text.
Outlet {
    id: label

    property string text: ""
    property string initialText: ""  // shown as long as nobody set a text
    property string name: shown.text     // spoken; nothing is, where it is empty
    property string description

    property alias size: shown.size
    property alias room: shown.room
    property alias shrinks: shown.shrinks
    property alias color: shown.color
    property alias font: shown.font
    property alias leading: shown.leading

    implicitWidth: shown.width
    implicitHeight: shown.height
    baselineOffset: shown.baselineOffset

    Accessible.role: Accessible.StaticText
    Accessible.name: name
    Accessible.description: description
    Accessible.ignored: name === ""

    FittedText {
        id: shown
        text: label.text === "" ? label.initialText : label.text
        Accessible.ignored: true
    }
}
