import QtQuick
import "../components"

// Tablets 1024 points high.
TunerScreen {
    width: 768
    height: 1024
    safeInsets: ({ top: 0, bottom: 0 })

    celloPicture: "cello_iPad.png"
    stringOutlet: "tunedStringiPad"
    lampOutlet: "LEDDisplay128"
    lampPicture: "yellow128.png"
}
