import Vantry

/// The four corners to choose from.
Segments {
    name: qsTr("Bubble corner")
    options: [
        { value: CornerKind.TopLeft, name: qsTr("Top left"), symbol: "qrc:/icons/arrow-up-left.svg" },
        { value: CornerKind.TopRight, name: qsTr("Top right"), symbol: "qrc:/icons/arrow-up-right.svg" },
        { value: CornerKind.BottomRight, name: qsTr("Bottom right"), symbol: "qrc:/icons/arrow-down-right.svg" },
        { value: CornerKind.BottomLeft, name: qsTr("Bottom left"), symbol: "qrc:/icons/arrow-down-left.svg" }
    ]
}
