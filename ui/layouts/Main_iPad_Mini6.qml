import QtQuick
import "../components"

// Tablets 1133 points high.
TunerScreen {
    celloPicture: "cello_iPad_Pro.png"
    stringOutlet: "tunedStringiPad"
    lampOutlet: "LEDDisplay128"
}
