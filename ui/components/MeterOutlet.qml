import QtQuick

// Holds a level for others to show. With less motion it has three steps only: silence, heard but too
// quiet, loud enough.
Outlet {
    property real level: 0
    readonly property int step: Theme.reducedMotion ? [0, 2, 2, 2, 6, 6, 6, 6][level] : level
    readonly property bool tooQuiet: level >= 1 && level <= 3
}
