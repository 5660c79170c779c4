// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import "."

/// A colour from the palette or by its value, and how much of the picture shines through.
Card {
    id: card

    property string title: ""
    property color start: "white"
    property color choice: "white"
    readonly property var tones: ["#ffffff", "#d0d0d0", "#808080", "#000000",
        "#ffe066", "#ff9f1c", "#e02020", "#8a0f0f",
        "#a8e05f", "#1f9d3a", "#0b4f2a", "#30d5c8",
        "#5bb0ff", "#1060d0", "#0a1f5c", "#c060e0"]
    signal accepted(color color)

    function pick(color) {
        card.choice = Qt.rgba(color.r, color.g, color.b, card.choice.a)
        value.text = card.choice.toString()
    }
    function pickAlpha(percent) {
        card.choice = Qt.rgba(card.choice.r, card.choice.g, card.choice.b, percent / 100)
        value.text = card.choice.toString()
    }

    width: 560
    onAboutToShow: {
        choice = start
        value.text = start.toString()
    }

    contentItem: ColumnLayout {
        spacing: Theme.gap
        AppText {
            text: card.title
            font.pixelSize: Theme.titleFont
            font.bold: true
        }
        GridLayout {
            columns: 8
            rowSpacing: 4
            columnSpacing: 4
            Repeater {
                model: card.tones
                AppButton {
                    readonly property color color: modelData
                    objectName: card.objectName + "Color" + index
                    implicitWidth: Theme.touch
                    fill: color
                    ink: color.hslLightness > 0.5 ? "black" : "white"
                    symbol: Qt.colorEqual(Qt.rgba(card.choice.r, card.choice.g, card.choice.b, 1), color)
                            ? "\u2713" : ""
                    onClicked: card.pick(color)
                }
            }
        }
        AppText { text: texts.colorValue }
        AppField {
            id: value
            objectName: card.objectName + "Value"
            Layout.fillWidth: true
            validator: RegularExpressionValidator { regularExpression: /#([0-9a-fA-F]{6}|[0-9a-fA-F]{8})/ }
            onTextEdited: {
                if (acceptableInput)
                    card.choice = text
            }
        }
        NumberRow {
            objectName: card.objectName + "Opacity"
            Layout.fillWidth: true
            label: texts.opacity
            suffix: " %"
            step: 10
            value: Math.round(card.choice.a * 100)
            onChanged: card.pickAlpha(value)
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: Theme.gap
            AppButton {
                text: texts.cancel
                onClicked: card.close()
            }
            AppButton {
                objectName: card.objectName + "Ok"
                text: texts.ok
                fill: Theme.accent
                ink: Theme.accentInk
                enabled: value.acceptableInput
                onClicked: {
                    card.close()
                    card.accepted(card.choice)
                }
            }
        }
    }
}
