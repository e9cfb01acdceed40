import QtQuick

// The triangle, a little larger than its box: its corners are round.
Item {
    height: width

    Icon {
        x: -0.07 * parent.width
        size: 1.14 * parent.width
        icon: "iconWarning.png"
    }
}
