import QtQuick
import Vantry

Rectangle {
    id: page

    required property AppModel model

    color: Theme.canvas

    AreaPicker {
        model: page.model
        crop: page.model.settings.setupCrop
        visible: true
        onChosen: crop => page.model.settings.setupCrop = crop
        onClosed: Qt.quit()
    }
}
