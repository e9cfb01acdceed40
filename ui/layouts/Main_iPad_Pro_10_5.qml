import QtQuick
import "../components"

// Tablets 1080, 1112 and 1180 points high.
TunerScreen {
    celloPicture: "cello_iPad_Pro.png"
    stringOutlet: "tunedStringiPad"
    lampOutlet: "LEDDisplay128"
}
