import QtQuick

// A rounded rectangle that stays smooth when the whole screen is scaled. The software renderer draws
// corners for the item's own size and stretches them afterwards, so this one is laid out at the size
// that it is shown at.
Item {
    id: rounded

    property color color
    property real radius: height / 2
    property real edgeWidth: 0
    property color edge: "transparent"

    Rectangle {
        width: Math.round(rounded.width * Theme.zoom)
        height: Math.round(rounded.height * Theme.zoom)
        scale: 1 / Theme.zoom
        transformOrigin: Item.TopLeft
        radius: Math.min(rounded.radius * Theme.zoom, height / 2)
        color: rounded.color
        border { width: rounded.edgeWidth * Theme.zoom; color: rounded.edge }
    }
}
