import QtQuick

// A picture stretched in nine parts: its corners keep their shape, its edges grow in one direction.
// `source` has two pixels a point.
Item {
    id: parts

    property string source
    property size size     // of the picture, in points
    property real corner   // of the picture, in points

    Repeater {
        model: 9
        Image {
            required property int index
            readonly property int column: index % 3
            readonly property int row: Math.floor(index / 3)
            function start(step: int, length: real): real {
                return [0, parts.corner, length - parts.corner][step]
            }
            function extent(step: int, length: real): real {
                return step === 1 ? length - 2 * parts.corner : parts.corner
            }
            x: start(column, parts.width)
            y: start(row, parts.height)
            width: extent(column, parts.width)
            height: extent(row, parts.height)
            sourceClipRect: Qt.rect(2 * start(column, parts.size.width),
                                    2 * start(row, parts.size.height),
                                    2 * extent(column, parts.size.width),
                                    2 * extent(row, parts.size.height))
            source: parts.source
        }
    }
}
