import QtQuick

// The four panels; one of them at most is open.
Item {
    id: panels

    required property Metrics metrics
    required property string openPanel
    required property string version
    required property bool volumeLow
    readonly property alias a4: settings.a4
    signal dismissed()
    signal volumeWarning()

    function openSheet(): Item {
        return Array.from(children).find(sheet => sheet.open) ?? null
    }

    ForkPanel {
        name: "fork"
        volumeLow: panels.volumeLow
        onWarning: panels.volumeWarning()
        metrics: panels.metrics
        open: panels.openPanel === name
        onDismissed: panels.dismissed()
    }
    ChartPanel {
        name: "chart"
        metrics: panels.metrics
        temperament: settings.temperament
        open: panels.openPanel === name
        onDismissed: panels.dismissed()
    }
    SettingsPanel {
        id: settings
        name: "settings"
        metrics: panels.metrics
        open: panels.openPanel === name
        onDismissed: panels.dismissed()
    }
    AboutPanel {
        name: "about"
        metrics: panels.metrics
        version: panels.version
        open: panels.openPanel === name
        onDismissed: panels.dismissed()
    }
}
