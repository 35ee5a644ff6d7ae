pragma Singleton

import QtQuick

/// The colours and measures that every screen shares. No other file writes one of its own.
QtObject {
    // Surfaces, from the back to the front.
    readonly property color canvas: "#101217"
    readonly property color panel: "#181c24"
    readonly property color raised: "#222834"
    readonly property color raisedHover: "#30394a"
    readonly property color well: "#10151d"
    readonly property color selectorWell: "#10151e"
    readonly property color line: "#343d4d"
    readonly property color shade: "#90000000"
    readonly property color stage: "#0f0f14"
    readonly property color ring: "#ffffff" ///< Around the bubble, as in the video.
    readonly property color outside: "#99000000" ///< Over what is not chosen.

    // What is written.
    readonly property color ink: "#f2f5fa"
    readonly property color inkSecondary: "#adb8c9"

    // The accent, and what is chosen.
    readonly property color accentBlue: "#94acff"
    readonly property color accentHover: "#b5c5ff"
    readonly property color accentInk: "#101729"
    readonly property color selected: "#334568"
    readonly property color selectedHover: "#3c5078"
    readonly property color selectedLine: "#4a6090"
    readonly property color selectedInk: "#e1e9ff"

    // What they say: it records, beware, all is well.
    readonly property color recording: "#ff667a"
    readonly property color amber: "#edc17a"
    readonly property color success: "#77d8b3"
    readonly property color record: "#4a2631"
    readonly property color recordHover: "#65313f"
    readonly property color recordLine: "#83424f"
    readonly property color recordInk: "#ff9aa8"
    readonly property color artInk: "#2a0a10"

    // Key caps.
    readonly property color keycap: "#2a3341"
    readonly property color keycapLine: "#465266"
    readonly property color keycapInk: "#d2d9e4"

    /// The bands of the timeline, in the order of `LayoutKind`.
    readonly property list<QtObject> bands: [
        QtObject { readonly property color fill: "#3d2c5e"; readonly property color ink: "#e4d9ff" },
        QtObject { readonly property color fill: "#283c65"; readonly property color ink: "#d5e2ff" },
        QtObject { readonly property color fill: "#2e3542"; readonly property color ink: "#c9d1dd" }
    ]

    readonly property real disabled: 0.5
    readonly property real disabledSegments: 0.45

    // Spaces.
    readonly property int space4: 4
    readonly property int space8: 8
    readonly property int space12: 12
    readonly property int space16: 16
    readonly property int space24: 24
    readonly property int space32: 32

    // Texts: labels, secondary, controls, heads of sections, titles.
    readonly property int labelSize: 11
    readonly property int secondarySize: 12
    readonly property int fontSize: 13
    readonly property int headSize: 15
    readonly property int titleSize: 20
    readonly property string monospaced: "DejaVu Sans Mono"

    // Corners.
    readonly property int radius5: 5
    readonly property int radius: 7
    readonly property int radius8: 8
    readonly property int radius10: 10
    readonly property int radius14: 14

    readonly property int sideWidth: 272 ///< Of a column beside what matters.
    readonly property int narrowSide: 244 ///< The same in a window that is not wide.
    readonly property int wideWindow: 1200
    readonly property int leastPreview: 180
    readonly property int tipWidth: 320
    readonly property int artSize: 120 ///< Of the record button.
    readonly property int columnWidth: 560 ///< Of a list.
    readonly property int icon: 16
    readonly property int panelIcon: 20
    readonly property int target: 28 ///< The least height of what is pressed.
    readonly property int panelTarget: 32 ///< The same in the panel.
    readonly property int handle: 12 ///< What an edge is dragged by.
    readonly property int areaLine: 2 ///< Around what is chosen.

    /// Milliseconds before a help text is shown.
    readonly property int helpDelay: 600

    /// The desktop, or the user, asks for no motion.
    property bool reducedMotion: false

    // Milliseconds.
    readonly property int pressMotion: reducedMotion ? 0 : 80
    readonly property int hoverMotion: reducedMotion ? 0 : 120
    readonly property int choiceMotion: reducedMotion ? 0 : 180
    readonly property int layoutMotion: reducedMotion ? 0 : 400 ///< As long as in the video.
}
