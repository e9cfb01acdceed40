import QtQuick

// Every length of the screen in points, derived from the window's size and its safe insets. A window
// that lies has a layout of its own. Any other has the upright one, which is at most three quarters
// as wide as high: in a wider window it stands in the middle, as a column that starts at `left`, and
// only the room runs on to both edges. Small phones (at most 568 high, or narrow), phones and
// tablets share the formulas.
QtObject {
    id: metrics

    required property real screenWidth
    required property real height
    // {top, bottom}, and of the same device turned on its side {side, top, bottom} as `lying`.
    required property var insets

    readonly property bool lying: screenWidth >= 1.2 * height
    readonly property bool low: lying && height < 700
    readonly property real width: lying ? screenWidth : Math.min(screenWidth, 0.75 * height)
    readonly property real left: Math.floor((screenWidth - width) / 2)
    readonly property var safe: lying ? insets.lying ?? { side: 0, top: 0, bottom: 0 } : insets

    readonly property bool tablet: lying ? !low : width > 600
    readonly property bool small: !tablet && (height <= 568 || width < 360)
    function by(ofSmall: real, ofPhone: real, ofTablet: real): real {
        return tablet ? ofTablet : small ? ofSmall : ofPhone
    }
    // What a window that lies has instead: while it is low, and from 700 on.
    function either(upright: real, ofLow: real, ofHigh: real): real {
        return low ? ofLow : lying ? ofHigh : upright
    }

    // Type.
    readonly property real readout: lying ? Math.min(0.32 * height, 0.145 * width)
                                          : width * by(0.2, 0.2, 0.16)
    readonly property real note: lying ? Math.min(0.36 * height, 0.17 * width)
                                       : width * by(0.335, 0.335, 0.3)
    readonly property real caption: either(by(15, 17, Math.max(22, Math.min(28, 0.0273 * width))),
                                           17, height < 1000 ? 22 : 28)
    readonly property real prompt: lying ? 0.42 * readout : 0.103 * width  // before the first note
    readonly property real body: by(15, 17, 20)
    readonly property real remark: by(15, 15, 17)  // the second line of a row
    readonly property real figure: by(17, 20, 24)
    readonly property real temperament: by(15, 19, 24)

    // The room, from the bottom to the top.
    readonly property real margin: low ? Math.max(24, (safe.side ?? 0) + 12)
                                       : tablet ? Math.round(0.07 * width) : by(16, 24, 0)
    readonly property real dockHeight: low ? 48 : by(44, 52, 60)
    readonly property real dockWidth: low ? Math.min(460, 0.54 * width)
                                          : Math.min(width - 2 * margin, 460)
    readonly property real dockBottom: height - (safe.bottom > 0 ? safe.bottom + 4
                                                                 : low ? 12 : by(8, 8, 28))
    readonly property real dockTop: dockBottom - dockHeight
    readonly property real baseline: dockTop - either(by(14, 0.028 * height, 0.042 * height),
                                                      0.062 * height, 0.042 * height)
    readonly property real readoutTop: baseline - 0.717 * readout
    readonly property real floor: lying ? dockBottom
                                        : readoutTop - by(10, 0.026 * height, 0.03 * height)
    readonly property real top: safe.top + either(by(6, 10, 0.03 * height), 10, 0.03 * height)
    readonly property real middle: (top + floor) / 2
    readonly property real lightRadius: lying ? Math.max(0.62 * (floor - top), 0.44 * width)
                                              : 0.62 * (floor - top)
    // Where the floor line starts: beside the dock that stands on it, or at the window's edge.
    readonly property real floorStart: lying ? margin + dockWidth + 24 : -left

    // The cello is drawn in 400 x 1100 units: scroll at 10, tip of the end pin at 1097, axis at 200,
    // 176 to either side. In a narrow and high window it is as large as the lamp beside it and the
    // right edge allow.
    readonly property real roomForHalf: tablet ? Math.min(0.32 * width - 8,
                                                          0.68 * width - margin - lamp - 16)
                                               : (width - 2 * margin - lamp - 20) / 2
    readonly property real unit: Math.min((floor - top) / 1087, roomForHalf / 176)
    readonly property real axis: lying ? (low ? 0.785 : 0.79) * width
                                       : tablet ? 0.68 * width : width - margin - 176 * unit - 4
    readonly property real promptRoom: lying ? axis - 176 * unit - 8 - margin : width - margin - 8
    readonly property real celloX: axis - 200 * unit
    readonly property real celloY: floor - 1097 * unit
    readonly property real ringSize: Math.max(24, Math.min(60, 58 * unit))

    readonly property real captionBaseline: top + 1.05 * caption + either(6, 2, 0.03 * height)
    readonly property real noteBaseline: captionBaseline + 0.655 * note
        + either(height * by(0.024, 0.024, 0.03), 15, 0.024 * height)

    // The lamp's picture; its glass begins 0.135 of the size further in. Lying it is over the
    // read-out if there is room for it, otherwise right of the note.
    readonly property real lamp: lying ? Math.min(0.26 * height, 0.13 * width, 200)
                                       : by(64, 0.2 * width, 128)
    readonly property bool lampBesideNote: lying && readoutTop - noteBaseline < lamp + 48
    readonly property real lampX: margin - 0.135 * lamp
                                  + (lampBesideNote ? 1.25 * note + 24 : 0)
    readonly property real lampBottom: lampBesideNote
        ? noteBaseline - 0.3275 * note + lamp / 2
        : lying ? readoutTop - 0.058 * height + 0.135 * lamp
                : floor - by(8, 0.028 * height, 0.028 * height)
    readonly property real lampGlassTop: lampBottom - 0.865 * lamp

    // Warnings: the sign over its text, from `warningTop` down; or, where that does not fit, the
    // sign left of it, both in the middle of what note, lamp and read-out leave.
    readonly property real warningLimit: (lampBesideNote ? readoutTop : lampGlassTop) - 12
    readonly property bool warningBeside: low || lying && warningLimit - noteBaseline < 5 * caption
    readonly property real warningMiddle: (noteBaseline + 12 + warningLimit) / 2
    readonly property real warningTop: Math.min(middle, warningLimit - 4.2 * caption)
    readonly property real warningTextX: margin + (warningBeside ? 2.5 * caption : 0)
    readonly property real warningRoom: axis - 140 * unit - 8 - warningTextX

    // A trouble has more lines: beside the body where it is widest, and never beside the lower bout.
    readonly property real troubleRoom: lying ? warningRoom : axis - 158 * unit - 8 - warningTextX
    readonly property real troubleCeiling: captionBaseline + 12
    readonly property real troubleLimit: lying ? warningLimit
                                               : Math.min(warningLimit, celloY + 835 * unit)

    // The sheets over it.
    readonly property real sheetWidth: lying ? Math.min(560, width) : tablet ? 560 : width
    readonly property real sheetMargin: lying ? (low ? 24 : 32) : tablet ? 32 : margin
    readonly property real sheetContent: sheetWidth - 2 * sheetMargin
    readonly property real sheetLift: either(tablet ? 48 : 0, 0, 24)  // above the bottom edge
    readonly property real sheetPadding: by(24, 44, 36)
    readonly property real sheetLimit: height - (low ? safe.top + 32
        : tablet ? Math.max(safe.top, 24) + sheetLift : safe.top)
    readonly property real twoLines: by(58, 62, 68)  // height of a row of two lines
    // Lying so low that what is usually in a stack stands side by side.
    readonly property bool flat: low && height < 440
    // Phones too low for the settings at their full spacing.
    readonly property bool tight: !tablet && !small && height < 700
}
