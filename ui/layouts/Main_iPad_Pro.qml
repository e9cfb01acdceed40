import QtQuick
import "../components"

// Tablets 1366 and 1376 points high.
TunerScreen {
    width: 1024
    height: 1366
    safeInsets: ({ top: 24, bottom: 20 })

    celloPicture: "cello_iPad_Pro.png"
    stringOutlet: "tunedStringiPad"
    lampOutlet: "LEDDisplay128"
    lampPicture: "yellow128.png"
}
