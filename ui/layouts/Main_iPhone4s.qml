import QtQuick
import "../components"

// Phones 480 points high.
TunerScreen {
    width: 320
    height: 480
    safeInsets: ({ top: 0, bottom: 0 })

    celloPicture: "cello.png"
    stringOutlet: "tunedString"
    lampOutlet: "LEDDisplay"
    lampPicture: "yellow64.png"
}
