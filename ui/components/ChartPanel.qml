import QtQuick

// The chart of the four frequencies: a picture, and the labels that the controller writes.
Sheet {
    id: chart

    required property string temperament
    readonly property real pictureTop: metrics.by(62, 74, 84)
    // Without a picture (none is shown until a preset is chosen) the labels move up.
    readonly property real pictureHeight: picture.image === "" ? 0
        : Math.round(metrics.sheetContent * 248 / 342)

    title: Texts.of("ChartTitle")
    contentHeight: rows.y + rows.height

    FittedText {
        height: 44
        y: chart.metrics.by(10, 14, 20)
        room: parent.width - 56
        verticalAlignment: Text.AlignVCenter
        text: chart.temperament === "" ? chart.title : chart.temperament
        size: chart.metrics.temperament
        color: Theme.brass
        font.family: Theme.serif
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    PictureOutlet {
        id: picture
        objectName: "chartDisplay"
        y: chart.pictureTop
        width: parent.width
        height: chart.pictureHeight
        cached: false
        name: chart.title
    }
    Column {
        id: rows
        y: chart.pictureTop + chart.pictureHeight + chart.metrics.by(6, 16, 16)
        Repeater {
            model: ["firstStringFreq", "secondStringFreq", "thirdStringFreq", "fourthStringFreq"]
            ChartRow {
                required property string modelData
                required property int index
                outlet: modelData
                string: index + 1
                size: chart.metrics.by(22, 26, 32)
                width: chart.metrics.sheetContent
                height: chart.metrics.by(40, 52, 60)
            }
        }
    }
}
