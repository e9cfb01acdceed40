import QtQuick

// A button with a picture on it, named as the icon's file.
Button {
    id: button

    property string icon
    property real iconSize: 26

    Icon {
        anchors.centerIn: parent
        size: button.iconSize
        icon: button.icon
    }
}
