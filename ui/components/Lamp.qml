import QtQuick

// The lamp: yellow and hollow while the string is not in tune, green with a tick when it is. A
// screen reader hears which string it is.
PictureOutlet {
    id: lamp

    required property string note  // the one last in tune
    readonly property bool green: image.startsWith("green")

    Accessible.role: Accessible.AlertMessage
    name: green && note !== "" ? Texts.of("StringTuned", note)
                               : Texts.of(green ? "InTune" : "NotInTune")
}
