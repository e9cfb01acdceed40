import QtQuick
import "../components"

// Phones 568 points high.
TunerScreen {
    width: 320
    height: 568
    safeInsets: ({ top: 0, bottom: 0 })

    celloPicture: "cello_5.png"
    stringOutlet: "tunedString5"
    lampOutlet: "LEDDisplay"
    lampPicture: "yellow64.png"
}
