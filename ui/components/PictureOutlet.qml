import QtQuick

// An image view: shows the picture resource that `image` names, fitted to its size. What nobody sees
// is not loaded.
Outlet {
    id: view

    property string image: ""
    property bool cached: true
    property bool large: false
    property alias fillMode: picture.fillMode
    property string name  // spoken; nothing is, where it is empty

    Accessible.role: Accessible.Graphic
    Accessible.name: name
    Accessible.ignored: name === "" || image === ""

    Image {
        id: picture
        anchors.fill: parent
        source: !view.visible ? ""
            : view.large ? Theme.largePicture(view.image, Screen.devicePixelRatio)
            : Theme.picture(view.image)
        fillMode: Image.PreserveAspectFit
        cache: view.cached
    }
}
