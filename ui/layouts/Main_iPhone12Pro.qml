import QtQuick
import "../components"

// Phones 844, 852 and 874 points high; their insets differ.
TunerScreen {
    width: 390
    height: 844
    safeInsets: ({ top: { 844: 47, 852: 59, 874: 62 }[height], bottom: 34 })

    celloPicture: "cello_6plus.png"
    stringOutlet: "tunedString5"
    lampOutlet: "LEDDisplay128"
    lampPicture: "yellow128.png"
}
