import QtQuick
import "../components"

// Phones 926, 932 and 956 points high; their insets differ.
TunerScreen {
    celloPicture: "cello_6plus.png"
    stringOutlet: "tunedString5"
    lampOutlet: "LEDDisplay128"
}
