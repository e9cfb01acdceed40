import QtQuick

// The same warning as on the main screen, within a sheet: it stands still, and its place is kept.
// Where there is no height for it, the triangle stands left of the words.
Item {
    id: sign

    required property Metrics metrics

    WarningSign {
        y: sign.metrics.flat ? (label.height - height) / 2 : 0
        width: 1.65 * sign.metrics.caption
    }
    LabelOutlet {
        id: label
        x: sign.metrics.flat ? 2.2 * size : 0
        y: sign.metrics.flat ? 0 : 2.95 * size - baselineOffset
        room: Math.min(sign.width - x, 9.2 * size)
        initialText: Texts.of("TurnUpTheVolume")
        size: sign.metrics.caption
        leading: 1.25
        shrinks: false
        balanced: true
        color: Theme.amber
        font.weight: Font.Bold
    }
}
