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
    contentHeight: hint.y + hint.height
    rows: [strings.y, ...Array.from(strings.children).map(row => row.height), hint.height]

    FittedText {
        height: 44
        y: chart.metrics.by(10, 14, 20)
        room: parent.width - 56
        verticalAlignment: Text.AlignVCenter
        words: chart.temperament === "" ? chart.title : chart.temperament
        size: chart.metrics.temperament
        color: Theme.brass
        font.family: Theme.serif
        Accessible.role: Accessible.Heading
        Accessible.name: words
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
        id: strings
        y: chart.pictureTop + chart.pictureHeight + chart.metrics.by(6, 16, 16)
        Repeater {
            model: [
                { figures: "firstStringFreq", mark: "" },
                { figures: "secondStringFreq", mark: "" },
                { figures: "thirdStringFreq", mark: "" },
                { figures: "fourthStringFreq", mark: "byEarMark" }
            ]
            ChartRow {
                required property var modelData
                required property int index
                outlet: modelData.figures
                markOutlet: modelData.mark
                string: index + 1
                size: chart.metrics.by(22, 26, 32)
                markSize: chart.metrics.by(15, 15, 18)
                width: chart.metrics.sheetContent
                height: chart.metrics.by(40, 52, 60)
            }
        }
    }
    ByEarHint {
        id: hint
        y: strings.y + strings.height
        width: parent.width
        metrics: chart.metrics
        open: chart.open
        onTurnedOn: chart.takeFocus()
    }
}
