import Vantry

/// The three layouts to choose from.
Segments {
    options: [
        { value: LayoutKind.Camera, label: "Camera", name: "Camera", icon: "qrc:/icons/video.svg" },
        { value: LayoutKind.Bubble, label: "Screen + Me", name: "Screen + Me", icon: "qrc:/icons/picture-in-picture-2.svg" },
        { value: LayoutKind.Screen, label: "Screen", name: "Screen", icon: "qrc:/icons/monitor.svg" }
    ]
}
