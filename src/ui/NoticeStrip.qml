pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Vantry

/// What there is to say of a recording under way, below its controls: the main window, which says it otherwise, is hidden. Gone while
/// there is nothing to say.
FloatingPanel {
    id: strip

    required property AppModel model
    required property PanelPlan plan
    required property FloatingPanel panel
    required property HudTip tip
    readonly property string notice: model.status
    readonly property rect place: plan.beside(
        Qt.rect(panel.x, panel.y, panel.width, panel.height), Qt.size(panel.width, rows.implicitHeight + 16))

    title: qsTr("Vantry notices")
    cornerRadius: Theme.radius10
    visible: panel.visible && (notice !== "" || room.isShort)

    onPlaceChanged: setGeometry(place.x, place.y, place.width, place.height)

    Rectangle {
        anchors.fill: parent
        radius: strip.cornerRadius
        color: Theme.panel
        border.color: Theme.line
    }

    RoomLeft {
        id: room

        model: strip.model
    }

    ColumnLayout {
        id: rows

        anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter; leftMargin: 14; rightMargin: 14 }
        spacing: Theme.space8

        StripRow {
            id: noticeRow

            visible: strip.notice !== ""
            icon: strip.model.statusIsWarning ? "triangle-alert" : "info"
            iconColor: strip.model.statusIsWarning ? Theme.amber : Theme.inkSecondary
            text: strip.notice

            HudHelp {
                tip: strip.tip
                text: noticeRow.truncated ? strip.notice : ""
            }
        }

        StripRow {
            visible: room.isShort
            icon: "hard-drive"
            iconColor: Theme.amber
            text: room.text

            Rectangle {
                anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                width: parent.width / 2
                height: 6
                radius: 3
                color: Theme.line
                Accessible.ignored: true

                Rectangle {
                    width: Math.max(parent.width * room.fraction, height)
                    height: parent.height
                    radius: parent.radius
                    color: Theme.amber
                }
            }
        }
    }
}
