// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import "."

/// A new observation: its code from the catalog, where the camera was when this was opened, and a
/// remark.
Card {
    id: card

    property string code: ""
    property string distance: ""
    property double distanceM: 0
    readonly property var found: project.observationCodes.filter(function(item) {
        const wanted = search.text.trim().toLowerCase()
        return item.code.toLowerCase().indexOf(wanted) >= 0
            || item.caption.toLowerCase().indexOf(wanted) >= 0
    })
    // What cannot be seen is not stored.
    onFoundChanged: {
        if (!found.some(function(item) { return item.code === card.code }))
            code = ""
    }

    width: 900
    height: Math.min(700, room)
    onAboutToShow: {
        code = ""
        search.text = ""
        remark.text = ""
        distance = video.distance
        distanceM = video.distanceM()
    }
    onOpened: {
        if (!useKeyboard)   // which would cover half of the list before anybody asked for it
            search.forceActiveFocus()
    }

    contentItem: ColumnLayout {
        spacing: Theme.gap
        RowLayout {
            AppText {
                Layout.fillWidth: true
                text: texts.newObservation
                font.pixelSize: Theme.titleFont
                font.bold: true
            }
            AppText {
                objectName: "observationDistance"
                text: texts.distance + ": " + card.distance
            }
        }
        AppField {
            id: search
            objectName: "observationSearch"
            Layout.fillWidth: true
            placeholderText: texts.searchCode
        }
        ListView {
            id: list
            objectName: "observationCodes"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            spacing: 4
            model: card.found
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar { }
            delegate: AppButton {
                objectName: "code" + modelData.code
                width: list.width - 16
                align: Text.AlignLeft
                text: modelData.code + "   " + modelData.caption
                checked: card.code === modelData.code
                symbol: checked ? "\u2713" : ""
                onClicked: card.code = modelData.code
            }
        }
        AppField {
            id: remark
            objectName: "observationRemark"
            Layout.fillWidth: true
            maximumLength: 200
            placeholderText: texts.remark
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: Theme.gap
            AppButton {
                objectName: "observationCancel"
                text: texts.cancel
                onClicked: card.close()
            }
            AppButton {
                objectName: "observationSave"
                text: texts.store
                fill: Theme.accent
                ink: Theme.accentInk
                enabled: card.code !== ""
                onClicked: {
                    if (project.addObservation(card.code, card.distanceM, remark.text))
                        card.close()
                }
            }
        }
    }
}
