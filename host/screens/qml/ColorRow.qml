// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Layouts 1.15
import "."

/// A colour with its name and value; touching it opens the palette.
RowLayout {
    id: row

    property string label: ""
    property color current: "transparent"
    property bool isMixed: false    ///< there is no one colour
    signal chosen(color color)

    spacing: Theme.gap

    AppText {
        Layout.fillWidth: true
        text: row.label
    }
    AppButton {
        objectName: row.objectName + "Button"
        Layout.preferredWidth: 190
        onClicked: {
            card.start = row.isMixed ? "#ffffff" : row.current
            card.open()
        }
        contentItem: RowLayout {
            spacing: Theme.gap
            Rectangle {
                Layout.leftMargin: 6
                Layout.preferredWidth: 40
                Layout.preferredHeight: 40
                visible: !row.isMixed
                color: "white"
                border.width: 1
                border.color: Theme.line
                Rectangle {     // the white shows how much shines through
                    anchors { fill: parent; margins: 1 }
                    color: row.current
                }
            }
            AppText {
                Layout.fillWidth: true
                text: row.isMixed ? texts.mixed : row.current.toString()
                font.pixelSize: Theme.smallFont
            }
        }
    }
    ColorCard {
        id: card
        objectName: row.objectName + "Card"
        title: row.label
        onAccepted: row.chosen(color)
    }
}
