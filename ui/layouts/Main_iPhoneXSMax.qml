import QtQuick
import "../components"

// Phones 896 points high.
TunerScreen {
    width: 414
    height: 896
    safeInsets: ({ top: 48, bottom: 34 })

    celloPicture: "cello_6plus.png"
    stringOutlet: "tunedString5"
    lampOutlet: "LEDDisplay128"
    lampPicture: "yellow128.png"
}
