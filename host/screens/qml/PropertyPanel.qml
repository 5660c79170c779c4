// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import "."

/// What can be changed of the selected element.
Flickable {
    id: panel

    readonly property var element: editor.selected
    readonly property var textElement: editor.selectedIsText ? editor.selected : null
    readonly property var picture: editor.selectedIsPicture ? editor.selected : null

    contentHeight: content.implicitHeight
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    ScrollBar.vertical: ScrollBar { }

    AppText {
        anchors { left: parent.left; right: parent.right; top: parent.top; margins: Theme.gap }
        visible: panel.element === null
        text: texts.chooseElement
        color: Theme.muted
    }
    ColumnLayout {
        id: content
        width: panel.width - 16
        visible: panel.element !== null
        spacing: Theme.gap

        AppText {
            objectName: "selectedName"
            Layout.fillWidth: true
            text: editor.selectedName
            font.bold: true
            elide: Text.ElideRight
            maximumLineCount: 1
        }
        AppText {
            text: panel.element ? texts.position.arg(panel.element.column).arg(panel.element.row) : ""
            color: Theme.muted
            font.pixelSize: Theme.smallFont
        }
        SwitchRow {
            objectName: "propertyEnabled"
            Layout.fillWidth: true
            text: texts.enabled
            checked: panel.element ? panel.element.enabled : false
            onToggled: editor.set("enabled", checked)
        }
        SwitchRow {
            objectName: "propertyCaption"
            Layout.fillWidth: true
            visible: editor.selectedKeeps.indexOf("captionVisible") >= 0
            text: texts.showCaption
            checked: panel.element ? panel.element.captionVisible : false
            onToggled: editor.set("captionVisible", checked)
        }
        ChoiceRow {
            objectName: "propertyUnit"
            Layout.fillWidth: true
            visible: choices.length > 0
            label: texts.unit
            choices: editor.unitChoices.map(function(unit) { return unit === "" ? texts.unitOfUser : unit })
            current: panel.element ? editor.unitChoices.indexOf(panel.element.unit) : -1
            onChosen: editor.set("unit", editor.unitChoices[index])
        }
        ColumnLayout {
            Layout.fillWidth: true
            visible: editor.selectedHasOwnText
            spacing: 4
            AppText { text: texts.text }
            AppArea {
                objectName: "propertyText"
                Layout.fillWidth: true
                text: panel.textElement ? panel.textElement.text : ""
                property bool goesOn: false     // letter after letter is one step to undo
                onTextChanged: {
                    const isTyped = activeFocus && panel.textElement !== null && text !== panel.textElement.text
                    if (isTyped)
                        editor.set("text", text, goesOn)
                    goesOn = isTyped
                }
                onActiveFocusChanged: goesOn = false
                // Its own undoing would be one more change.
                Keys.onPressed: {
                    if (event.matches(StandardKey.Undo)) {
                        editor.history.undo()
                        event.accepted = true
                    } else if (event.matches(StandardKey.Redo)) {
                        editor.history.redo()
                        event.accepted = true
                    }
                }
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            visible: editor.selectedIsFreeText
            spacing: 4
            AppText { text: texts.favorites }
            Repeater {
                model: editor.favorites
                RowLayout {
                    AppButton {
                        objectName: "favorite" + index
                        Layout.fillWidth: true
                        text: modelData.replace(/\n/g, " \u23CE ")
                        align: Text.AlignLeft
                        onClicked: editor.set("text", modelData)
                    }
                    AppButton {
                        objectName: "favoriteRemove" + index
                        symbol: "\u2715"
                        onClicked: editor.removeFavorite(index)
                    }
                }
            }
            AppButton {
                objectName: "favoriteAdd"
                Layout.fillWidth: true
                symbol: "+"
                text: texts.addFavorite
                enabled: panel.textElement !== null && panel.textElement.text.trim() !== ""
                onClicked: editor.addFavorite(panel.textElement.text)
            }
        }
        NumberRow {
            objectName: "propertyTimeout"
            Layout.fillWidth: true
            visible: editor.selectedKeeps.indexOf("timeout") >= 0
            label: value > 0 ? texts.timeout : texts.timeoutOff
            suffix: " s"
            to: 600
            value: panel.element ? panel.element.timeout : 0
            onChanged: editor.set("timeout", value)
        }
        ColorRow {
            objectName: "propertyTextColor"
            Layout.fillWidth: true
            visible: panel.textElement !== null
            label: texts.textColor
            current: panel.textElement ? panel.textElement.textColor : "transparent"
            onChosen: editor.set("textColor", color)
        }
        ColorRow {
            objectName: "propertyBackgroundColor"
            Layout.fillWidth: true
            visible: panel.textElement !== null
            label: texts.backgroundColor
            current: panel.textElement ? panel.textElement.backgroundColor : "transparent"
            onChosen: editor.set("backgroundColor", color)
        }
        NumberRow {
            objectName: "propertyScale"
            Layout.fillWidth: true
            visible: panel.picture !== null
            label: texts.scale
            suffix: " %"
            from: editor.smallestScale
            to: editor.largestScale
            step: 5
            value: panel.picture ? Math.round(panel.picture.scaleFactor * 100) : 100
            onChanged: editor.set("scaleFactor", value / 100)
        }
    }
}
