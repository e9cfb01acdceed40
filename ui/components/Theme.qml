pragma Singleton
import QtQuick

// Colours, fonts and pictures of the whole application, and the two facts about the user that every
// control heeds.
QtObject {
    readonly property color bg: "#120D0A"
    readonly property color sheet: "#1E1610"
    readonly property color control: "#2C2119"
    readonly property color controlPressed: "#3A2C20"
    readonly property color selected: "#57401C"
    readonly property color selectedPressed: "#6A4F24"
    readonly property color line: "#54432F"
    readonly property color edge: "#8F7A63"
    readonly property color ink: "#F7EDDF"
    readonly property color ink2: "#CDBBA5"
    readonly property color brass: "#DDB565"
    readonly property color brassPressed: "#C79E4E"
    readonly property color inkOnBrass: "#22160A"
    readonly property color amber: "#F5A83C"
    readonly property color ivory: "#FFF8EC"
    readonly property color scrim: "#080504"

    // The four strings as drawn: colour and thickness of the first (A3) to the fourth (C2).
    readonly property var stringColors: ["#F3EEE4", "#E6DCCB", "#D8C39A", "#C8A972"]
    readonly property var stringWidths: [1.9, 2.4, 3.0, 3.8]

    readonly property string sans: "Lato"
    readonly property string serif: "Gentium Book Plus"

    // The desktop asks for less motion: nothing slides, swells or blinks.
    property bool reducedMotion: false

    // How much larger than its points the screen is shown.
    property real zoom: 1

    // The keyboard was used last: the focus is worth a ring.
    property bool focusVisible: false

    // Pictures are named without their density; the one of two pixels a point is crisp everywhere.
    function picture(name: string): string {
        return name === "" ? "" : "qrc:/endpin/pictures/" + name.replace(".png", "@2x.png")
    }
    // How high the cello is in the pictures for each kind of device, 1100 of its units, in points.
    readonly property var celloHeights: ({ "": 363, "5": 451, "6": 517, "6plus": 693, "iPad": 759,
                                           "iPad_Pro": 1023 })
    // Of the cello and of what glows on it no more is loaded than the screen can show, and no less;
    // `unit` is that of the drawing in points, `density` the screen's pixels to a point.
    function onCello(name: string, unit: real, density: real): string {
        const kind = name.slice(0, -4).split("_").slice(1).filter(part => part !== "string").join("_")
        const enlarged = 1100 * unit * zoom * density / celloHeights[kind]
        return name === "" || enlarged > 1 ? picture(name) : "qrc:/endpin/pictures/" + name
    }
}
