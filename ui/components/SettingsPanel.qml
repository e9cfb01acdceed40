import QtQuick

// Calibration; what the microphone hears with; and three switches. When it closes, the main screen
// appears again, so that what was changed is true at once.
Sheet {
    id: settings

    readonly property alias a4: header.a4
    readonly property alias temperament: header.temperament

    title: Texts.of("SettingsTitle")
    contentHeight: column.height
    fills: metrics.small && !metrics.lying
    unfolded: chooser.open
    rows: Array.from(column.children).map(row => row.ownHeight ?? row.height)
    onFoldAsked: chooser.fold()
    onOpenChanged: if (!open) {
        chooser.fold()
        returned.activated()
    }

    Trigger { id: returned; action: "returnToMainScreen" }

    component Line: Item {
        property real above: settings.metrics.by(4, 5, 8)
        property real below: above
        property real slack: 0
        readonly property real ownHeight: above + below
        width: parent.width
        height: ownHeight + slack
        Rectangle { y: parent.above + parent.slack / 2; width: parent.width; height: 1; color: Theme.line }
    }

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
        // A sheet that covers the screen cannot end higher: what follows moves down instead.
        Line {
            above: settings.metrics.by(14, 20, 24)
            below: settings.metrics.by(4, 5, 8)
            slack: settings.covers ? settings.metrics.sheetLimit - settings.lowerEnd : 0
        }
        MicrophoneChooser {
            id: chooser
            width: parent.width
            metrics: settings.metrics
            onOpenChanged: if (open) Qt.callLater(settings.reveal, chooser)
        }
        Item {
            width: parent.width
            height: settings.metrics.by(76, 90, 104)
            LabelOutlet {
                id: caption
                objectName: "micSensitivityLabel"
                y: settings.metrics.by(20, 24, 28) - baselineOffset
                room: parent.width
                size: settings.metrics.body
                name: ""  // the slider speaks it
            }
            Slider {
                objectName: "micSensitivitySlider"
                action: "micSensitivity"
                name: caption.text
                y: settings.metrics.by(26, 36, 44)
                width: parent.width
            }
        }
        SwitchRow {
            metrics: settings.metrics
            width: parent.width
            least: settings.metrics.twoLines
            captionOutlet: "fineHearingLabel"
            hintOutlet: "fineHearingHint"
            switchOutlet: "fineHearingSwitch"
            action: "toggleFineHearing"
        }
        Line {}
        Repeater {
            model: [
                { name: "soundNotification", action: "soundNotificationAction", on: true },
                { name: "stringSounds", action: "toggleStringSounds", on: false },
                { name: "frequencyChart", switch: "freqChartSwitch",
                  action: "toggleFreqChart", on: true }
            ]
            SwitchRow {
                required property var modelData
                metrics: settings.metrics
                width: column.width
                least: settings.metrics.by(46, 52, 58)
                captionOutlet: modelData.name + "Label"
                switchOutlet: modelData.switch ?? modelData.name + "Switch"
                action: modelData.action
                on: modelData.on
            }
        }
    }
}
