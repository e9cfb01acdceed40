import QtQuick

// Says of a string that only the ear can judge it. Its right edge is its place.
LabelOutlet {
    id: mark

    property real reach: 120  // the widest it may be

    hidden: true
    name: ""  // the row speaks it
    width: contentWidth
    room: Math.min(reach - 32, ruler.implicitWidth + 1)
    color: Theme.ink2

    FittedText { id: ruler; visible: false; text: mark.text; size: mark.size }
    Icon {
        x: -32
        anchors.verticalCenter: parent.verticalCenter
        size: 22
        icon: "iconEar.png"
    }
}
