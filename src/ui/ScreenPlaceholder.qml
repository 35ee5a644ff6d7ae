import QtQuick
import QtQuick.Controls.impl
import Vantry

/// Stands where the screen will be shown.
Item {
    Column {
        anchors.centerIn: parent
        spacing: Theme.space8

        IconImage {
            anchors.horizontalCenter: parent.horizontalCenter
            source: "qrc:/icons/monitor.svg"
            color: Theme.line
            sourceSize { width: Theme.space32; height: Theme.space32 }
        }

        Caption { text: qsTr("The screen shows here once Screen Recording is allowed") }
    }
}
