import QtQuick
import "../components"

// Tablets 1194 and 1210 points high.
TunerScreen {
    width: 834
    height: 1194
    safeInsets: ({ top: 24, bottom: 20 })

    celloPicture: "cello_iPad_Pro.png"
    stringOutlet: "tunedStringiPad"
    lampOutlet: "LEDDisplay128"
    lampPicture: "yellow128.png"
}
