import QtQuick

// The lamp: yellow and hollow while the string is not in tune, green with a tick when it is, dark
// when nothing can be heard. The light around it follows the level of what is heard.
PictureOutlet {
    id: lamp

    required property string note  // the one last in tune
    required property bool dark
    required property int level    // 0 to 7
    readonly property bool green: image.startsWith("green")

    shown: dark ? "lampDark.png" : image
    name: dark ? "" : green && note !== "" ? Texts.of("NoteInTune", note)
                                           : Texts.of(green ? "InTune" : "NotInTune")

    Image {
        readonly property real strength: [0.4, 0.5, 0.6, 0.7, 0.8, 0.87, 0.93, 1][lamp.level]
        z: -1
        anchors.centerIn: parent
        width: lamp.width * [0.88, 0.92, 0.94, 0.96, 1, 1.02, 1.04, 1.06][lamp.level]
        height: width
        visible: !lamp.dark
        opacity: lamp.green ? Math.max(0.7, strength) : strength
        source: Theme.picture(lamp.green ? "haloGreen.png" : "haloYellow.png")
    }
}
