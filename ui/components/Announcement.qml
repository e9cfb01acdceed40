import QtQuick

// What a screen reader is told of its own accord. Readers speak a notification that becomes visible,
// so that a new text hides this item and shows it again. There is nothing to see.
Outlet {
    id: announcement

    property string text: ""
    property string spoken: ""

    width: 1
    height: 1
    visible: !hidden && spoken !== ""
    onTextChanged: {
        spoken = ""
        again.restart()
    }

    Accessible.role: Accessible.Notification
    Accessible.name: spoken

    Timer { id: again; interval: 20; onTriggered: announcement.spoken = announcement.text }
}
