import QtQuick
import Vantry

/// How loud the microphone is: green while it is well, amber when it gets too loud, red when it clips.
Rectangle {
    id: meter

    required property double level

    implicitWidth: 72
    implicitHeight: 6
    radius: height / 2
    color: Theme.line
    Accessible.role: Accessible.Indicator
    Accessible.name: qsTr("Microphone level")
    Accessible.description: qsTr("%1 percent").arg(Math.round(level * 100))

    Rectangle {
        width: meter.width * meter.level
        height: meter.height
        radius: meter.radius
        visible: width > 0
        color: meter.level <= 0.85 ? Theme.success : meter.level <= 0.95 ? Theme.amber : Theme.recording
    }
}
