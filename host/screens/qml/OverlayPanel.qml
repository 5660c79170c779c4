// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import "."

/// What holds for the whole overlay.
Flickable {
    id: panel

    contentHeight: content.implicitHeight
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    ScrollBar.vertical: ScrollBar { }

    ColumnLayout {
        id: content
        width: panel.width - 16
        spacing: Theme.gap

        NumberRow {
            objectName: "overlayTransparency"
            Layout.fillWidth: true
            label: texts.transparency
            suffix: " %"
            step: 5
            value: elements.transparency
            onChanged: editor.setForAll("transparency", value)
        }
        ColorRow {
            objectName: "overlayTextColor"
            Layout.fillWidth: true
            label: texts.textColor
            current: elements.textColor
            isMixed: !editor.isColor(elements.textColor)
            onChosen: editor.setForAll("textColor", color)
        }
        ColorRow {
            objectName: "overlayBackgroundColor"
            Layout.fillWidth: true
            label: texts.backgroundColor
            current: elements.backgroundColor
            isMixed: !editor.isColor(elements.backgroundColor)
            onChosen: editor.setForAll("backgroundColor", color)
        }
        SwitchRow {
            objectName: "overlayAnalog"
            Layout.fillWidth: true
            text: texts.analogVideo
            checked: elements.analogVideo
            onToggled: editor.setForAll("analogVideo", checked)
        }
        SwitchRow {
            objectName: "overlayKx70"
            Layout.fillWidth: true
            text: texts.kx70
            checked: elements.kx70State
            onToggled: editor.setForAll("kx70State", checked)
        }
        NumberRow {
            objectName: "overlayKx70Row"
            Layout.fillWidth: true
            enabled: elements.kx70State
            label: texts.kx70Row
            suffix: " %"
            value: elements.kx70Row
            onChanged: editor.setForAll("kx70Row", value)
        }
        NumberRow {
            objectName: "overlayKx70Column"
            Layout.fillWidth: true
            enabled: elements.kx70State
            label: texts.kx70Column
            suffix: " %"
            value: elements.kx70Col
            onChanged: editor.setForAll("kx70Col", value)
        }
    }
}
