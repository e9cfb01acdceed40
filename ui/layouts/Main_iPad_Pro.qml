import QtQuick
import "../components"

// Tablets 1366 and 1376 points high.
TunerScreen {
    celloPicture: "cello_iPad_Pro.png"
    stringOutlet: "tunedStringiPad"
    lampOutlet: "LEDDisplay128"
}
