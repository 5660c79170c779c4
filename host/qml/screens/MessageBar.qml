// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Layouts 1.15
import "."

/// What went wrong or was done. Takes room of its own, so that it never hides the picture.
Rectangle {
    id: bar

    visible: messages.text !== ""
    implicitHeight: visible ? Math.max(Theme.touch + Theme.gap, content.implicitHeight + Theme.gap) : 0
    color: messages.isError ? Theme.danger : Theme.good

    RowLayout {
        id: content
        anchors { fill: parent; leftMargin: Theme.gap; rightMargin: Theme.gap / 2 }
        spacing: Theme.gap
        AppText {
            text: messages.isError ? "\u26A0" : "\u2713"
            font.pixelSize: Theme.titleFont
            color: Theme.onDanger
        }
        AppText {
            objectName: "messageText"
            Layout.fillWidth: true
            text: messages.text
            color: Theme.onDanger
            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
            maximumLineCount: 4
            elide: Text.ElideRight
        }
        AppButton {
            objectName: "messageClose"
            text: "\u2715"
            onClicked: messages.dismiss()
        }
    }
}
