import QtQuick

// The nine values of A4 that have a button of their own.
Grid {
    id: grid

    required property Metrics metrics
    readonly property real cellWidth: Math.floor(2 * (width - (columns - 1) * spacing) / columns) / 2

    columns: metrics.by(5, 3, 3)
    spacing: metrics.by(6, 10, 12)
    Accessible.role: Accessible.Grouping
    Accessible.name: Texts.of("CalibrationTitle")

    Repeater {
        model: [392, 415, 432, 440, 441, 442, 443, 444, 466]
        PresetButton {
            required property int modelData
            a4: modelData
            objectName: "setA" + modelData + "btn"
            action: "setA" + modelData
            backgroundImage: ""
            width: grid.cellWidth
            height: grid.metrics.by(44, grid.metrics.tight ? 48 : 50, 60)
            size: grid.metrics.figure
        }
    }
}
