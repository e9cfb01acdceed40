import QtQuick

// The same warning as on the main screen, within a sheet: it stands still, and its place is kept.
Item {
    id: sign

    required property Metrics metrics

    Accessible.role: Accessible.AlertMessage
    Accessible.name: label.words

    WarningSign { width: 1.65 * sign.metrics.caption }
    LabelOutlet {
        id: label
        y: 2.95 * size - baselineOffset
        room: Math.min(sign.width, 9.2 * size)
        initialText: Texts.of("TurnUpTheVolume")
        size: sign.metrics.caption
        leading: 1.25
        shrinks: false
        balanced: true
        color: Theme.amber
        font.weight: Font.Bold
        name: ""  // the sign speaks it
    }
}
