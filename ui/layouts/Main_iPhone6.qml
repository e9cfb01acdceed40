import QtQuick
import "../components"

// Phones 667 points high.
TunerScreen {
    celloPicture: "cello_6.png"
    stringOutlet: "tunedString5"
    lampOutlet: "LEDDisplay128"
}
