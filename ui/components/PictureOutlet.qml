import QtQuick

// An image view: shows the picture resource that `image` names, fitted to its size.
Outlet {
    id: view

    property string image: ""
    property bool cached: true
    property string name  // spoken; nothing is, where it is empty

    Accessible.role: Accessible.Graphic
    Accessible.name: name
    Accessible.ignored: name === "" || image === ""

    Image {
        anchors.fill: parent
        source: Theme.picture(view.image)
        fillMode: Image.PreserveAspectFit
        cache: view.cached
    }
}
