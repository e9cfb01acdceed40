import QtQuick

// What a screen reader is told of its own accord. Readers speak a notification that becomes visible,
// so that a new text hides this item, takes its name, and shows it again. There is nothing to see.
Outlet {
    id: announcement

    property string text: ""
    property bool shown: false

    width: 1
    height: 1
    visible: !hidden && shown
    onTextChanged: speak()

    function speak() {
        shown = false
        again.restart()
    }

    Accessible.role: Accessible.Notification
    Accessible.name: text

    Timer { id: again; interval: 20; onTriggered: announcement.shown = announcement.text !== "" }
}
