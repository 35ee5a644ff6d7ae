pragma Singleton

import QtQuick

/// The colours and measures that every screen shares.
QtObject {
    readonly property color canvas: "#101217"
    readonly property color panel: "#181c24"
    readonly property color raised: "#222834"
    readonly property color line: "#343d4d"
    readonly property color ink: "#f2f5fa"
    readonly property color inkSecondary: "#adb8c9"
    readonly property color accent: "#94acff"
    readonly property color well: "#10151d"
    readonly property color selected: "#334568"
    readonly property color selectedInk: "#e1e9ff"
    readonly property color recording: "#ff667a"
    readonly property color amber: "#edc17a"
    readonly property color success: "#77d8b3"

    readonly property int gap: 12
    readonly property int radius: 7
    readonly property int fontSize: 13
    readonly property int columnWidth: 560
}
