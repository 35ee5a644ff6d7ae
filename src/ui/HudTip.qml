pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Vantry

/// What a control of a panel does, in a panel of its own: the control's own window has no room for it, and the recording leaves
/// this one out as well.
FloatingPanel {
    id: tip

    required property PanelPlan plan
    property string text
    property rect place
    property Item subject: null

    title: qsTr("Vantry help")
    width: Math.ceil(label.width) + 20
    height: Math.ceil(label.height) + 12
    cornerRadius: Theme.radius
    visible: subject !== null

    onPlaceChanged: setGeometry(place.x, place.y, place.width, place.height)

    /// At the item, below its panel.
    function show(item, help) {
        text = help;
        const panel = item.Window.window;
        place = plan.beside(Qt.rect(item.mapToGlobal(0, 0).x, panel.y, item.width, panel.height), Qt.size(width, height));
        subject = item;
    }

    function hide(item) {
        if (subject === item)
            subject = null;
    }

    Rectangle {
        anchors.fill: parent
        radius: tip.cornerRadius
        color: Theme.raised
        border.color: Theme.line
    }

    Label {
        id: label

        readonly property int widest: 440

        anchors.centerIn: parent
        width: Math.min(implicitWidth, widest)
        text: tip.text
        color: Theme.ink
        font.pixelSize: Theme.secondarySize
        wrapMode: Text.Wrap
    }
}
