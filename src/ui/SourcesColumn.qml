pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Vantry

/// What is recorded.
ColumnLayout {
    id: column

    required property AppModel model

    spacing: Theme.space16

    SourceChoice {
        id: choice

        model: column.model
    }

    Heading { text: qsTr("Sources") }

    SourceRow {
        Layout.fillWidth: true
        symbol: "qrc:/icons/monitor.svg"
        label: qsTr("Screen")

        Picker {
            Layout.fillWidth: true
            name: qsTr("Screen")
            model: choice.screens
            currentIndex: choice.screen
            enabled: count > 0
            displayText: count > 0 ? currentText : qsTr("No screen")
            onActivated: index => choice.screen = index
        }
    }

    AreaRow {
        Layout.fillWidth: true
        model: column.model
    }

    SourceRow {
        Layout.fillWidth: true
        symbol: "qrc:/icons/video.svg"
        label: qsTr("Camera")

        Picker {
            Layout.fillWidth: true
            name: qsTr("Camera")
            model: choice.cameras
            currentIndex: choice.camera
            enabled: count > 0
            displayText: count > 0 ? currentText : qsTr("No camera")
            onActivated: index => choice.camera = index
        }
    }

    SourceRow {
        Layout.fillWidth: true
        symbol: "qrc:/icons/mic.svg"
        label: qsTr("Microphone")

        Picker {
            Layout.fillWidth: true
            name: qsTr("Microphone")
            model: choice.microphones
            currentIndex: choice.microphone
            enabled: count > 0
            displayText: count > 0 ? currentText : qsTr("No microphone")
            onActivated: index => choice.microphone = index
        }

        MicMeter {
            Layout.fillWidth: true
            level: column.model.devices.micLevel
        }

        Caption {
            Layout.fillWidth: true
            visible: text !== ""
            text: column.model.devices.silence
            color: Theme.amber
            wrapMode: Text.Wrap
        }
    }

    Check {
        Layout.fillWidth: true
        text: qsTr("Sound from other apps")
        help: qsTr("Sound from other apps (videos, demos). Mixed with your voice in the export; transcripts use only your mic.")
        checked: column.model.settings.systemAudio
        onToggled: column.model.settings.systemAudio = checked
    }
}
