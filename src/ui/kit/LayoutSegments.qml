import Vantry

/// The three layouts to choose from.
Segments {
    name: qsTr("Layout")
    options: [
        { value: LayoutKind.Camera, label: qsTr("Camera"), name: qsTr("Camera"), symbol: "qrc:/icons/video.svg" },
        { value: LayoutKind.Bubble, label: qsTr("Screen + Me"), name: qsTr("Screen + Me"), symbol: "qrc:/icons/picture-in-picture-2.svg" },
        { value: LayoutKind.Screen, label: qsTr("Screen"), name: qsTr("Screen"), symbol: "qrc:/icons/monitor.svg" }
    ]
}
