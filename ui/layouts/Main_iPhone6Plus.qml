import QtQuick
import "../components"

// Phones 736 points high.
TunerScreen {
    celloPicture: "cello_6plus.png"
    stringOutlet: "tunedString5"
    lampOutlet: "LEDDisplay128"
}
