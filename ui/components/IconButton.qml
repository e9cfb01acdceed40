import QtQuick

// A button with a picture on it, named as the icon's file.
Button {
    id: button

    property string icon
    property real iconSize: 26

    Image {
        anchors.centerIn: parent
        width: button.iconSize
        height: width
        sourceSize: Qt.size(2 * width, 2 * height)
        source: Theme.picture(button.icon)
    }
}
