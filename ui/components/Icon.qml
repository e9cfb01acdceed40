import QtQuick

// A small square picture, named as its file. One that nobody sees is not loaded.
Image {
    property real size: 28
    property string icon

    width: size
    height: size
    sourceSize: Qt.size(2 * size, 2 * size)
    source: visible ? Theme.picture(icon) : ""
}
