import QtQuick
import "../components"

// Phones 667 points high.
TunerScreen {
    width: 375
    height: 667
    safeInsets: ({ top: 0, bottom: 0 })

    celloPicture: "cello_6.png"
    stringOutlet: "tunedString5"
    lampOutlet: "LEDDisplay128"
    lampPicture: "yellow128.png"
}
