import QtQuick
import "../components"

// Phones 568 points high.
TunerScreen {
    celloPicture: "cello_5.png"
    stringOutlet: "tunedString5"
    lampOutlet: "LEDDisplay"
}
