import QtQuick

// The way to the four panels.
Rounded {
    id: dock

    property real iconSize: 26
    signal asked(string panel)

    color: Theme.control
    edgeWidth: 1
    edge: Theme.line

    // The cell that leads to a panel; the focus returns to it.
    function cellOf(panel: string): Item {
        return Array.from(cells.children).find(cell => cell.panel === panel)
    }

    Tooltip {
        id: tip
        objectName: "tooltip"
    }
    Row {
        id: cells
        anchors.fill: parent

        Repeater {
            model: [
                { panel: "fork", outlet: "tuningForkButton",
                  icon: "iconTuningFork.png", title: "TuningForkTitle" },
                { panel: "chart", outlet: "", icon: "iconChart.png", title: "ChartTitle" },
                { panel: "settings", outlet: "goToSettingsButton",
                  icon: "iconSettings.png", title: "SettingsTitle" },
                { panel: "about", outlet: "", icon: "iconAbout.png", title: "AboutTitle" }
            ]
            Button {
                required property var modelData
                readonly property string panel: modelData.panel
                objectName: modelData.outlet
                icon: modelData.icon
                iconSize: dock.iconSize
                name: Texts.of(modelData.title)
                width: dock.width / 4
                height: dock.height
                radius: height / 2
                fill: "transparent"
                edge: "transparent"
                onClicked: dock.asked(panel)
                onPressedChanged: if (pressed) tip.target = null

                HoverHandler {
                    acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
                    onHoveredChanged: {
                        if (hovered) tip.target = parent
                        else if (tip.target === parent) tip.target = null
                    }
                }
            }
        }
    }
}
