import QtQuick

// Every length of the screen in points, derived from its width, height and safe insets. Three
// families share the formulas: small phones (at most 568 high), phones and tablets.
QtObject {
    id: metrics

    required property real width
    required property real height
    required property var insets  // {top, bottom}

    readonly property bool tablet: width > 600
    readonly property bool small: height <= 568
    function by(ofSmall: real, ofPhone: real, ofTablet: real): real {
        return tablet ? ofTablet : small ? ofSmall : ofPhone
    }

    // Type.
    readonly property real readout: width * by(0.2, 0.2, 0.16)
    readonly property real note: width * by(0.335, 0.335, 0.3)
    readonly property real caption: by(15, 17, Math.max(22, Math.min(28, 0.0273 * width)))
    readonly property real body: by(15, 17, 20)
    readonly property real figure: by(17, 20, 24)
    readonly property real temperament: by(15, 19, 24)

    // The room, from the bottom to the top.
    readonly property real margin: tablet ? Math.round(0.07 * width) : by(16, 24, 0)
    readonly property real dockHeight: by(44, 52, 60)
    readonly property real dockWidth: Math.min(width - 2 * margin, 460)
    readonly property real dockBottom: insets.bottom > 0 ? height - insets.bottom - 4
                                                         : height - by(8, 8, 28)
    readonly property real dockTop: dockBottom - dockHeight
    readonly property real baseline: dockTop - by(14, 0.028 * height, 0.042 * height)
    readonly property real floor: baseline - 0.717 * readout
                                  - by(10, 0.026 * height, 0.03 * height)
    readonly property real top: insets.top + by(6, 10, 0.03 * height)
    readonly property real middle: (top + floor) / 2
    readonly property real lightRadius: 0.62 * (floor - top)

    // The cello is drawn in 400 x 1100 units: scroll at 10, tip of the end pin at 1097, axis at 200.
    readonly property real unit: (floor - top) / 1087
    readonly property real axis: tablet ? 0.68 * width : width - margin - 176 * unit - 4
    readonly property real celloX: axis - 200 * unit
    readonly property real celloY: top - 10 * unit
    readonly property real ringSize: Math.max(24, Math.min(60, 58 * unit))

    readonly property real captionBaseline: top + 1.05 * caption + 6
    readonly property real noteBaseline: captionBaseline + height * by(0.024, 0.024, 0.03)
                                         + 0.655 * note
    readonly property real lamp: by(64, 0.2 * width, 128)
    readonly property real lampBottom: floor - by(8, 0.028 * height, 0.028 * height)

    // The sheets over it.
    readonly property real sheetWidth: tablet ? 560 : width
    readonly property real sheetMargin: tablet ? 32 : margin
    readonly property real sheetContent: sheetWidth - 2 * sheetMargin
    readonly property real sheetLift: tablet ? 48 : 0  // above the bottom edge of the screen
    readonly property real sheetPadding: by(24, 44, 36)
    readonly property real sheetLimit: height - insets.top - sheetLift
    // Room that a small screen has beyond the smallest, 0 to 1; the settings breathe by it.
    readonly property real slack: Math.max(0, Math.min(1, (height - 480) / 88))
    // Phones too low for the settings at their full spacing.
    readonly property bool tight: !tablet && !small && height < 700
}
