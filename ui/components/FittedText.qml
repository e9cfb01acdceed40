import QtQuick

// A text that shrinks to four fifths of its size at most where it does not fit, and wraps beyond
// that. Without a `room` it takes the width it needs.
Text {
    id: fitted

    property string words
    property real size: 17
    property real room: 0
    property bool shrinks: true
    property bool balanced: false  // no lonely word in the last line
    property real leading: 0  // from line to line in sizes; 0 leaves it to the font
    readonly property real fit: shrinks && room > 0 ? Math.min(1, room / ruler.advanceWidth) : 1
    readonly property bool wraps: wrapMode !== Text.NoWrap

    function cutsWords(): bool { return breaker.cuts(words, room) }

    text: wraps ? breaker.broken(words, room, balanced) : words
    width: room > 0 ? room : implicitWidth
    wrapMode: room > 0 ? Text.Wrap : Text.NoWrap
    lineHeightMode: leading > 0 ? Text.FixedHeight : Text.ProportionalHeight
    lineHeight: leading > 0 ? leading * font.pixelSize : 1
    textFormat: Text.PlainText
    color: Theme.ink
    font.family: Theme.sans
    font.pixelSize: fit < 1 ? Math.floor(size * Math.max(0.8, fit)) : Math.round(size)

    TextMetrics {
        id: ruler
        text: fitted.words
        font.family: fitted.font.family
        font.weight: fitted.font.weight
        font.pixelSize: Math.round(fitted.size)
    }
    LineBreaker { id: breaker; font: fitted.font }
}
