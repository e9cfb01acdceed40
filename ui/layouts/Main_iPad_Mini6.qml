import QtQuick
import "../components"

// Tablets 1133 points high.
TunerScreen {
    width: 744
    height: 1133
    safeInsets: ({ top: 24, bottom: 20 })

    celloPicture: "cello_iPad_Pro.png"
    stringOutlet: "tunedStringiPad"
    lampOutlet: "LEDDisplay128"
    lampPicture: "yellow128.png"
}
