import QtQuick
import "../components"

// Tablets 1080, 1112 and 1180 points high.
TunerScreen {
    width: 834
    height: 1112
    safeInsets: ({ top: 24, bottom: 20 })

    celloPicture: "cello_iPad_Pro.png"
    stringOutlet: "tunedStringiPad"
    lampOutlet: "LEDDisplay128"
    lampPicture: "yellow128.png"
}
