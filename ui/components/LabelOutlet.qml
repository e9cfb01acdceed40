import QtQuick

// A label. Its baseline is the baseline of its text.
Outlet {
    id: label

    property string text: ""
    property string initialText: ""  // shown as long as nobody set a text
    property string name: words     // spoken; nothing is, where it is empty
    property string description
    property bool brief: false  // shows the short form of its text, if there is one
    readonly property string words: text === "" ? initialText : brief ? Texts.brief(text) : text

    property alias size: shown.size
    property alias room: shown.room
    property alias shrinks: shown.shrinks
    property alias balanced: shown.balanced
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
        words: label.words
        Accessible.ignored: true
    }
}
