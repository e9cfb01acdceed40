import QtQuick

// What this application is.
Sheet {
    id: about

    property string version

    title: Texts.of("AboutTitle")
    contentHeight: column.height

    Column {
        id: column
        width: parent.width
        topPadding: about.metrics.by(14, 20, 26)

        FittedText {
            words: "Endpin"
            size: about.metrics.by(30, 34, 42)
            font.family: Theme.serif
            Accessible.role: Accessible.Heading
            Accessible.name: words
        }
        Item { width: 1; height: 8 }
        Rectangle { width: 40; height: 2; radius: 1; color: Theme.brass }
        Item { width: 1; height: about.metrics.by(16, 24, 28) }
        LabelOutlet {
            objectName: "aboutMsg2"
            room: parent.width
            size: about.metrics.body
            leading: 1.55
            shrinks: false
        }
        Item { width: 1; height: about.metrics.by(14, 20, 24) }
        LabelOutlet {
            objectName: "aboutCongratsMessage"
            room: parent.width
            size: about.metrics.body
            leading: 1.55
            color: Theme.ink2
            shrinks: false
        }
        Item { width: 1; height: about.metrics.by(16, 24, 28) }
        Rectangle { width: parent.width; height: 1; color: Theme.line }
        Item { width: 1; height: about.metrics.by(10, 14, 16) }
        FittedText {
            room: parent.width
            words: Texts.of("VersionLine", about.version)
            size: about.metrics.by(14, 15, 18)
            color: Theme.ink2
            Accessible.role: Accessible.StaticText
            Accessible.name: words
        }
    }
}
