import QtQuick

// An image view: shows the picture resource that `image` names, fitted to its size. What nobody sees
// is not loaded.
Outlet {
    id: view

    property string image: ""
    property string shown: image  // another picture in its place, where something overrides it
    property bool cached: true
    property real celloUnit: 0  // of a picture that lies on the cello: its unit in points
    property alias fillMode: picture.fillMode
    property string name  // spoken; nothing is, where it is empty

    Accessible.role: Accessible.Graphic
    Accessible.name: name
    Accessible.ignored: name === "" || image === ""

    Image {
        id: picture
        anchors.fill: parent
        source: !view.visible ? ""
            : view.celloUnit > 0
                ? Theme.onCello(view.shown, view.celloUnit, Screen.devicePixelRatio)
            : Theme.picture(view.shown)
        fillMode: Image.PreserveAspectFit
        cache: view.cached
    }
}
