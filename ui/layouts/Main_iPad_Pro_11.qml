import QtQuick
import "../components"

// Tablets 1194 and 1210 points high.
TunerScreen {
    celloPicture: "cello_iPad_Pro.png"
    stringOutlet: "tunedStringiPad"
    lampOutlet: "LEDDisplay128"
}
