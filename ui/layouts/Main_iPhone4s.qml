import QtQuick
import "../components"

// Phones 480 points high.
TunerScreen {
    celloPicture: "cello.png"
    stringOutlet: "tunedString"
    lampOutlet: "LEDDisplay"
}
