// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Layouts 1.15
import "."

/// What the free text of the profile says from now on: one of the favourites, or something new.
Card {
    id: card

    function show(text) {
        liveOverlay.showFreeText(text)
        card.close()
    }

    width: 700
    height: Math.min(implicitHeight, room)
    onOpened: {
        field.clear()
        if (!useKeyboard)   // which would cover the favourites before anybody asked for it
            field.forceActiveFocus()
    }

    contentItem: ColumnLayout {
        spacing: Theme.gap
        AppText {
            Layout.fillWidth: true
            text: texts.kindFreeText
            font.pixelSize: Theme.titleFont
            font.bold: true
        }
        ListView {
            id: list
            Layout.fillWidth: true
            Layout.fillHeight: true
            implicitHeight: contentHeight
            clip: true
            spacing: 4
            boundsBehavior: Flickable.StopAtBounds
            model: editor.favorites
            delegate: AppButton {
                objectName: "showFavorite" + index
                width: list.width
                align: Text.AlignLeft
                text: modelData.replace(/\n/g, " \u23CE ")
                onClicked: card.show(modelData)
            }
        }
        AppArea {
            id: field
            objectName: "freeTextField"
            Layout.fillWidth: true
            placeholderText: texts.text
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: Theme.gap
            AppButton {
                text: texts.cancel
                onClicked: card.close()
            }
            AppButton {
                objectName: "freeTextClear"
                text: texts.hideFreeText
                onClicked: card.show("")
            }
            AppButton {
                objectName: "freeTextShow"
                text: texts.showFreeText
                fill: Theme.accent
                ink: Theme.accentInk
                enabled: field.text.trim() !== ""
                onClicked: card.show(field.text)
            }
        }
    }
}
