import QtQuick

// Why nothing can be heard, and what to do about it: a sign over the lines, or left of them where
// warnings have it there. A long text grows upwards, away from the lamp; one that still does not fit
// is smaller. It is announced elsewhere.
Item {
    id: trouble

    required property Metrics metrics
    readonly property bool stands: title.text !== ""
    readonly property bool beside: metrics.warningBeside
    readonly property real size: crowded ? 0.8 * metrics.caption : metrics.caption
    readonly property bool crowded:
        titleRuler.cutsWords() || remedyRuler.cutsWords()
        || lengthOf(titleRuler, remedyRuler, metrics.caption)
            > metrics.troubleLimit - metrics.troubleCeiling

    // Baselines: the first of the title, from there to the first of the remedy.
    readonly property real firstLine: beside
        ? (0.35 - 0.65 * (title.lineCount + remedy.lineCount - 1)) * size : 2.95 * size
    readonly property real toRemedy:
        (1.25 * (title.lineCount - 1) + (beside ? 1.3 : 1.5)) * size

    readonly property real lastLine: firstLine + toRemedy + 1.25 * (remedy.lineCount - 1) * size

    // From the top of the sign to the last baseline.
    function lengthOf(of, what, size: real): real {
        return (2.95 + 1.5 + 1.25 * (of.lineCount + what.lineCount - 2)) * size
    }

    x: metrics.margin
    y: beside ? Math.min(metrics.warningMiddle, metrics.troubleLimit - lastLine)
              : Math.min(metrics.middle, metrics.troubleLimit - lengthOf(title, remedy, size))
    visible: stands

    component Ruler: FittedText {
        visible: false
        size: trouble.metrics.caption
        room: trouble.metrics.troubleRoom
        shrinks: false
        balanced: true
    }
    component Line: LabelOutlet {
        x: trouble.metrics.warningTextX - trouble.metrics.margin
        room: trouble.metrics.troubleRoom
        size: trouble.size
        leading: 1.25
        shrinks: false
        balanced: true
    }

    Ruler { id: titleRuler; words: title.text; font.weight: Font.Bold }
    Ruler { id: remedyRuler; words: remedy.text }
    Icon {
        objectName: "troubleSign"
        x: -0.12 * size
        y: trouble.beside ? -size / 2 : -0.06 * size
        size: 1.85 * trouble.size
        icon: "iconNoMicrophone.png"
    }
    Line {
        id: title
        objectName: "troubleTitle"
        y: trouble.firstLine - baselineOffset
        color: Theme.amber
        font.weight: Font.Bold
    }
    Line {
        id: remedy
        objectName: "troubleRemedy"
        y: trouble.firstLine + trouble.toRemedy - baselineOffset
    }
}
