pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Vantry

/// Which part of the screen the video shows.
SourceRow {
    id: row

    required property AppModel model
    readonly property bool isCropped: model.settings.setupCrop !== undefined

    symbol: "qrc:/icons/crop.svg"
    label: qsTr("Area")

    AreaSelection {
        id: area

        crop: row.model.settings.setupCrop
        pixelSize: row.model.screenPreview.pixelSize
    }

    RowLayout {
        spacing: Theme.space8

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0

            Caption {
                Layout.fillWidth: true
                text: area.name
                color: Theme.ink
                font.pixelSize: Theme.fontSize
            }

            Caption {
                Layout.fillWidth: true
                visible: row.isCropped
                text: area.readout
            }
        }

        IconButton {
            visible: row.isCropped
            icon.source: "qrc:/icons/x.svg"
            name: qsTr("Use full screen")
            help: qsTr("Record the full screen")
            onClicked: row.model.settings.setupCrop = undefined
        }

        StudioButton {
            text: row.isCropped ? qsTr("Change…") : qsTr("Select area…")
            help: qsTr("Show only part of the screen, e.g. without the menu bar or the browser's tabs")
            onClicked: picker.open()
        }
    }

    AreaPicker {
        id: picker

        model: row.model
        crop: row.model.settings.setupCrop
        onChosen: crop => row.model.settings.setupCrop = crop
    }
}
