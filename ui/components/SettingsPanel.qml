import QtQuick

// Calibration, sensitivity of the microphone, and three switches.
Sheet {
    id: settings

    readonly property alias a4: header.a4
    readonly property alias temperament: header.temperament
    readonly property real rowHeight: metrics.by(44 + 10 * metrics.slack, metrics.tight ? 48 : 54, 58)

    title: Texts.of("SettingsTitle")
    contentHeight: column.height
    fills: metrics.small

    Column {
        id: column
        width: parent.width

        CalibrationHeader {
            id: header
            width: parent.width
            metrics: settings.metrics
        }
        PresetGrid {
            width: parent.width
            metrics: settings.metrics
        }
        Item {
            id: sensitivity
            readonly property real gap: settings.metrics.by(14 + 10 * settings.metrics.slack,
                                                            settings.metrics.tight ? 18 : 24, 28)
            readonly property real space: settings.metrics.by(8 * settings.metrics.slack,
                                                              settings.metrics.tight ? 4 : 10, 16)
            width: parent.width
            height: gap + 84 + 2 * space

            Rectangle { y: sensitivity.gap; width: parent.width; height: 1; color: Theme.line }
            LabelOutlet {
                id: caption
                objectName: "micSensitivityLabel"
                y: sensitivity.gap + 24 + sensitivity.space - baselineOffset
                room: parent.width
                size: settings.metrics.body
                name: ""  // the slider speaks it
            }
            Slider {
                objectName: "micSensitivitySlider"
                action: "micSensitivity"
                name: caption.text
                y: sensitivity.gap + 32 + 1.4 * sensitivity.space
                width: parent.width
            }
            Rectangle { y: parent.height - 2; width: parent.width; height: 1; color: Theme.line }
        }
        SwitchRow {
            metrics: settings.metrics
            width: parent.width
            height: settings.rowHeight
            captionOutlet: "soundNotificationLabel"
            switchOutlet: "soundNotificationSwitch"
            action: "soundNotificationAction"
            on: true
        }
        SwitchRow {
            metrics: settings.metrics
            width: parent.width
            height: settings.rowHeight
            captionOutlet: "stringSoundsLabel"
            switchOutlet: "stringSoundsSwitch"
            action: "toggleStringSounds"
        }
        SwitchRow {
            metrics: settings.metrics
            width: parent.width
            height: settings.rowHeight
            captionOutlet: "frequencyChartLabel"
            switchOutlet: "freqChartSwitch"
            action: "toggleFreqChart"
            on: true
        }
    }
}
