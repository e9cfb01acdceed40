import QtQuick

// The frequency of one string beside a piece of that string, or beside the word that it is to be
// tuned by ear.
Item {
    id: row

    required property string outlet
    required property string markOutlet
    required property int string  // 1 (A3) to 4 (C2)
    property real size: 26
    property real markSize: 15

    Rectangle {
        visible: row.string > 1
        width: parent.width
        height: 1
        color: Theme.line
    }
    LabelOutlet {
        id: figures
        objectName: row.outlet
        anchors.verticalCenter: parent.verticalCenter
        room: row.width - 96 - 12
        size: row.size
        font.weight: Font.Medium
        description: mark.hidden ? "" : mark.text
    }
    Rounded {
        visible: mark.hidden
        anchors { right: parent.right; rightMargin: 4; verticalCenter: parent.verticalCenter }
        width: 96
        height: Theme.stringWidths[row.string - 1]
        color: Theme.stringColors[row.string - 1]
    }
    LabelOutlet {
        id: mark

        readonly property real reach: row.width - figures.contentWidth - 16  // the widest it may be

        objectName: row.markOutlet
        anchors { right: parent.right; verticalCenter: parent.verticalCenter }
        hidden: true
        name: ""  // the row speaks it
        width: contentWidth
        room: Math.min(reach - 32, ruler.implicitWidth + 1)
        size: row.markSize
        color: Theme.ink2

        FittedText { id: ruler; visible: false; words: mark.text; size: mark.size }
        Icon {
            x: -32
            anchors.verticalCenter: parent.verticalCenter
            size: 22
            icon: "iconEar.png"
        }
    }
}
