import QtQuick
import "../components"

// Phones 844, 852 and 874 points high; their insets differ.
TunerScreen {
    celloPicture: "cello_6plus.png"
    stringOutlet: "tunedString5"
    lampOutlet: "LEDDisplay128"
}
