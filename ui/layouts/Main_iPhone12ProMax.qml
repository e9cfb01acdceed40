import QtQuick
import "../components"

// Phones 926, 932 and 956 points high; their insets differ.
TunerScreen {
    width: 428
    height: 926
    safeInsets: ({ top: { 926: 47, 932: 59, 956: 62 }[height], bottom: 34 })

    celloPicture: "cello_6plus.png"
    stringOutlet: "tunedString5"
    lampOutlet: "LEDDisplay128"
    lampPicture: "yellow128.png"
}
