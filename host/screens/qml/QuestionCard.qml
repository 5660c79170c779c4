// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Layouts 1.15
import "."

/// Asks before something is lost. The last answer is the one that changes nothing. It may open where
/// another one was answered: the second touch of a trembling finger is no answer to this one.
Card {
    id: card

    property string title: ""
    property string text: ""
    property var answers: []        ///< texts
    signal answered(int index)

    width: 640
    onAboutToShow: settling.restart()
    onOpened: buttons.itemAt(answers.length - 1).forceActiveFocus(Qt.TabFocusReason)

    contentItem: ColumnLayout {
        spacing: 2 * Theme.gap
        AppText {
            Layout.fillWidth: true
            text: card.title
            font.pixelSize: Theme.titleFont
            font.bold: true
        }
        AppText {
            Layout.fillWidth: true
            text: card.text
            Timer {
                id: settling
                interval: 400
            }
            MouseArea {
                objectName: "settling"
                parent: card.contentItem.parent
                anchors.fill: parent
                z: 1
                visible: settling.running
            }
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: Theme.gap
            Repeater {
                id: buttons
                model: card.answers
                AppButton {
                    objectName: card.objectName + "Answer" + index
                    text: modelData
                    onClicked: {
                        card.close()
                        card.answered(index)
                    }
                }
            }
        }
    }
}
