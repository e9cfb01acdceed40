import QtQuick

// The frequency of one string beside a piece of that string.
Item {
    id: row

    required property string outlet
    required property int string  // 1 (A3) to 4 (C2)
    property real size: 26

    Rectangle {
        visible: row.string > 1
        width: parent.width
        height: 1
        color: Theme.line
    }
    LabelOutlet {
        objectName: row.outlet
        anchors.verticalCenter: parent.verticalCenter
        room: row.width - 96 - 12
        size: row.size
        font.weight: Font.Medium
    }
    Rounded {
        anchors { right: parent.right; rightMargin: 4; verticalCenter: parent.verticalCenter }
        width: 96
        height: Theme.stringWidths[row.string - 1]
        color: Theme.stringColors[row.string - 1]
    }
}
