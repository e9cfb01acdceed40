import QtQuick

// A label. Its baseline is the baseline of its text.
Outlet {
    id: label

    property string text: ""
    property string initialText: ""  // shown as long as nobody set a text
    property string name: words     // spoken; nothing is, where it is empty
    property string description
    property bool balanced: false  // no lonely word in the last line; takes a `room`
    readonly property string words: text === "" ? initialText : text

    property alias size: shown.size
    property alias room: shown.room
    property alias shrinks: shown.shrinks
    property alias color: shown.color
    property alias font: shown.font
    property alias leading: shown.leading
    property alias wrapMode: shown.wrapMode
    property alias elide: shown.elide
    readonly property alias lineCount: shown.lineCount
    readonly property alias contentWidth: shown.contentWidth

    implicitWidth: shown.width
    implicitHeight: shown.height
    baselineOffset: shown.baselineOffset

    Accessible.role: Accessible.StaticText
    Accessible.name: name
    Accessible.description: description
    Accessible.ignored: name === ""

    FittedText {
        id: shown
        whole: label.words
        text: label.balanced ? breaker.broken(label.words, room) : label.words
        Accessible.ignored: true
    }
    LineBreaker { id: breaker; font: shown.font }
}
