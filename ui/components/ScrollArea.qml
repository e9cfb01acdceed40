import QtQuick

// What does not fit scrolls, fades out at the lower edge, and shows a thumb for a second and while it
// moves. Whatever takes the focus comes into sight, clear of what covers the upper edge.
Item {
    id: area

    property real length: 0  // of the content
    property real head: 0    // what covers the upper edge
    property real fade: 56   // height of the lower edge
    property real inset: 0   // of the content, from the left and the right
    default property alias content: flick.flickableData
    readonly property bool scrolls: length > height
    readonly property bool scrolled: flick.contentY > 0
    readonly property Item focused: Window.activeFocusItem

    onFocusedChanged: if (enabled && holds(focused)) reveal(focused)

    function holds(item: Item): bool {
        for (let at = item; at; at = at.parent) if (at === flick.contentItem) return true
        return false
    }
    // Moves as little as it takes to show the whole item; its top, if it is higher than the area.
    function reveal(item: Item) {
        const top = item.mapToItem(flick.contentItem, 0, 0).y
        const lowest = Math.min(flick.contentY, top - head - 8)
        moveTo(Math.min(Math.max(lowest, top + item.height + fade - height), top - head - 8))
    }
    function moveTo(y: real) {
        glide.stop()
        glide.to = Math.max(0, Math.min(y, length - height))
        glide.start()
    }
    function moveBy(distance: real) { moveTo(flick.contentY + distance) }
    function begin() {
        flick.contentY = 0
        glance.restart()
    }

    Flickable {
        id: flick
        x: area.inset
        width: area.width - 2 * area.inset
        height: area.height
        contentWidth: width
        contentHeight: Math.max(height, area.length)
        boundsBehavior: Flickable.StopAtBounds
        flickableDirection: Flickable.VerticalFlick
        interactive: area.scrolls
        clip: area.scrolls
        onContentYChanged: glance.restart()
    }
    NumberAnimation {
        id: glide
        target: flick
        property: "contentY"
        duration: Theme.reducedMotion ? 0 : 200
        easing.type: Easing.OutCubic
    }
    Rectangle {
        y: area.height - height
        width: area.width
        height: area.fade
        visible: area.scrolls && flick.contentY < area.length - area.height - 1
        gradient: Gradient {
            GradientStop { position: 0; color: "#001E1610" }
            GradientStop { position: 1; color: Theme.sheet }
        }
    }
    Rounded {
        readonly property real track: area.height - area.head - 20
        x: area.width - 8
        y: area.head + 8 + track * flick.contentY / area.length
        width: 3
        height: track * area.height / area.length
        radius: 1.5
        color: Theme.edge
        visible: area.scrolls && (glance.running || flick.moving)
    }
    Timer { id: glance; interval: 1000 }
}
