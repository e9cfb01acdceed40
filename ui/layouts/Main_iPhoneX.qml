import QtQuick
import "../components"

// Phones 812 points high.
TunerScreen {
    width: 375
    height: 812
    safeInsets: ({ top: 44, bottom: 34 })

    celloPicture: "cello_6plus.png"
    stringOutlet: "tunedString5"
    lampOutlet: "LEDDisplay128"
    lampPicture: "yellow128.png"
}
