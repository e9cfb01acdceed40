import QtQuick
import "../components"

// Phones 896 points high.
TunerScreen {
    celloPicture: "cello_6plus.png"
    stringOutlet: "tunedString5"
    lampOutlet: "LEDDisplay128"
}
