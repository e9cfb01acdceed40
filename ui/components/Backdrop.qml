import QtQuick

// The room: a dark floor, one pool of warm light that ends at the floor line, and the cello
// standing on it. It covers the whole window.
Rectangle {
    id: room

    required property Metrics metrics
    required property string celloPicture
    readonly property real axis: metrics.left + metrics.axis

    color: Theme.bg

    Item {
        width: room.width
        height: room.metrics.floor
        clip: true
        Image {
            x: room.axis - room.metrics.lightRadius
            y: room.metrics.middle - room.metrics.lightRadius
            width: 2 * room.metrics.lightRadius
            height: width
            source: Theme.picture(room.metrics.lying ? "poolWide.png" : "pool.png")
        }
    }
    Image {
        x: room.axis - width / 2
        y: room.metrics.floor - height / 2
        width: 340 * room.metrics.unit
        height: 32 * room.metrics.unit
        source: Theme.picture("foot.png")
    }
    Rectangle {
        id: line
        x: room.metrics.left + room.metrics.floorStart
        y: room.metrics.floor - 0.5
        width: room.width - x
        height: 1
        gradient: Gradient {
            orientation: Gradient.Horizontal
            GradientStop { position: 0; color: room.metrics.lying ? "#00DDB565" : "#1FDDB565" }
            GradientStop {
                position: (room.metrics.axis - room.metrics.floorStart) / line.width
                color: "#D9DDB565"
            }
            GradientStop { position: 1; color: "#1FDDB565" }
        }
    }
    Image {
        x: room.metrics.left + room.metrics.celloX
        objectName: "cello"
        y: room.metrics.celloY
        width: 400 * room.metrics.unit
        height: 1100 * room.metrics.unit
        // A window may be larger than twice what a phone's picture is made for.
        readonly property bool huge: room.metrics.unit * Theme.zoom * Screen.devicePixelRatio > 1.26
        source: Theme.onCello(huge ? "cello_iPad_Pro.png" : room.celloPicture, room.metrics.unit,
                              Screen.devicePixelRatio)
        Accessible.role: Accessible.Graphic
        Accessible.name: Texts.of("Cello")
    }
}
