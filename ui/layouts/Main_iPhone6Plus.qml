import QtQuick
import "../components"

// Phones 736 points high.
TunerScreen {
    width: 414
    height: 736
    safeInsets: ({ top: 0, bottom: 0 })

    celloPicture: "cello_6plus.png"
    stringOutlet: "tunedString5"
    lampOutlet: "LEDDisplay128"
    lampPicture: "yellow128.png"
}
