// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Layouts 1.15
import "."

/// Asks for a name.
Card {
    id: card

    property string title: ""
    property string hint: ""
    property string name: ""        ///< to start with
    property bool mayBeEmpty: false
    signal accepted(string name)

    function accept() {
        if (!ok.enabled)
            return
        card.close()
        card.accepted(field.text)
    }

    width: 640
    onOpened: {
        field.text = card.name
        field.selectAll()
        field.forceActiveFocus()
    }

    contentItem: ColumnLayout {
        spacing: 2 * Theme.gap
        AppText {
            Layout.fillWidth: true
            text: card.title
            font.pixelSize: Theme.titleFont
            font.bold: true
        }
        AppField {
            id: field
            objectName: card.objectName + "Field"
            Layout.fillWidth: true
            maximumLength: 80
            placeholderText: card.hint
            onAccepted: card.accept()
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: Theme.gap
            AppButton {
                text: texts.cancel
                onClicked: card.close()
            }
            AppButton {
                id: ok
                objectName: card.objectName + "Ok"
                text: texts.ok
                fill: Theme.accent
                ink: Theme.accentInk
                enabled: card.mayBeEmpty || field.text.trim() !== ""
                onClicked: card.accept()
            }
        }
    }
}
