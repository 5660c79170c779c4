// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import "."

/// All elements by kind, also those that are not on the picture.
ColumnLayout {
    id: panel

    signal chosen()

    spacing: Theme.gap / 2

    AppField {
        objectName: "elementSearch"
        Layout.fillWidth: true
        placeholderText: texts.search
        onTextChanged: elementFilter.search = text
    }
    ListView {
        id: list
        objectName: "elementList"
        Layout.fillWidth: true
        Layout.fillHeight: true
        clip: true
        spacing: 4
        model: panel.visible ? elementFilter : null // nobody else follows every value
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.vertical: ScrollBar { }
        section.property: "kind"
        section.delegate: AppText {
            width: list.width
            topPadding: 8
            bottomPadding: 4
            text: section
            font.pixelSize: Theme.smallFont
            font.bold: true
            color: Theme.muted
        }
        delegate: AppButton {
            id: row
            objectName: "listed" + sourceIndex
            width: list.width - 16
            checked: editor.selectedIndex === sourceIndex
            text: name
            onClicked: {
                editor.select(sourceIndex)
                panel.chosen()
            }
            contentItem: RowLayout {
                AppText {
                    Layout.fillWidth: true
                    Layout.leftMargin: Theme.gap
                    text: row.text
                    font.bold: row.checked
                    color: row.checked ? Theme.accentInk : Theme.text
                    elide: Text.ElideRight
                    maximumLineCount: 1
                    wrapMode: Text.NoWrap
                }
                AppText {
                    Layout.rightMargin: Theme.gap
                    text: shown ? "\u2713" : "\u2715"
                    color: row.checked ? Theme.accentInk : Theme.text
                }
            }
        }
        AppText {
            anchors.centerIn: parent
            visible: list.count === 0
            text: texts.noElements
            color: Theme.muted
        }
    }
}
