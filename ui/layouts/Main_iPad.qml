import QtQuick
import "../components"

// Tablets 1024 points high.
TunerScreen {
    celloPicture: "cello_iPad.png"
    stringOutlet: "tunedStringiPad"
    lampOutlet: "LEDDisplay128"
}
