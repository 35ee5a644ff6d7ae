import Vantry

/// How large the bubble is, as a fraction of the frame's height.
Segments {
    name: qsTr("Bubble size")
    options: [
        { value: 0.2, label: qsTr("S"), name: qsTr("Small bubble") },
        { value: 0.26, label: qsTr("M"), name: qsTr("Medium bubble") },
        { value: 0.34, label: qsTr("L"), name: qsTr("Large bubble") }
    ]
}
