import QtQuick
import QtQuick.Controls.impl
import QtQuick.Layouts
import Vantry

/// One source: its name above what it is chosen with.
ColumnLayout {
    id: row

    required property url symbol
    required property string label

    spacing: Theme.space8

    RowLayout {
        spacing: Theme.space8

        IconImage {
            source: row.symbol
            color: Theme.inkSecondary
            sourceSize { width: Theme.icon; height: Theme.icon }
        }

        Caption {
            Layout.fillWidth: true
            text: row.label
        }
    }
}
