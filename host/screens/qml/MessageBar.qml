// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Layouts 1.15
import "."

/// What went wrong or was done. Takes room of its own, so that it never hides the picture.
Rectangle {
    id: bar

    visible: messages.text !== ""
    implicitHeight: visible ? Math.max(Theme.touch + Theme.gap, content.implicitHeight + Theme.gap) : 0
    onImplicitHeightChanged: Room.messageHeight = implicitHeight
    color: messages.isError ? Theme.danger : Theme.good

    Timer {     // what was done needs no answer; what failed stays until it is read
        interval: 8000
        running: bar.visible && !messages.isError
        onTriggered: messages.dismiss()
    }
    RowLayout {
        id: content
        anchors { fill: parent; leftMargin: Theme.gap; rightMargin: Theme.gap / 2 }
        spacing: Theme.gap
        AppText {
            text: messages.isError ? "\u26A0" : "\u2713"
            font.pixelSize: Theme.titleFont
            color: Theme.dangerInk
        }
        AppText {
            objectName: "messageText"
            Layout.fillWidth: true
            text: messages.text
            color: Theme.dangerInk
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
