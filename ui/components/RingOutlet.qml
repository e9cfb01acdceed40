import QtQuick

// The mark on the peg of a string that was in tune; it settles when it appears.
PictureOutlet {
    id: ring

    onImageChanged: if (image !== "" && !Theme.reducedMotion) settle.restart()

    NumberAnimation {
        id: settle
        target: ring
        property: "scale"
        from: 1.15
        to: 1
        duration: 180
        easing.type: Easing.OutCubic
    }
}
