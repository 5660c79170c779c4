// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import "."

/// The layout of the overlay on the running picture.
Item {
    id: screen

    property int panel: 0
    signal guarded(var action)      ///< unsaved changes would be lost
    signal saveWanted()
    signal saveAsWanted()

    Shortcut {
        sequence: StandardKey.Save
        enabled: screen.visible && editor.history.modified
        onActivated: screen.saveWanted()
    }
    Shortcut {
        sequences: [StandardKey.Undo]
        enabled: screen.visible
        onActivated: editor.history.undo()
    }
    Shortcut {
        sequences: [StandardKey.Redo]
        enabled: screen.visible
        onActivated: editor.history.redo()
    }
    ColumnLayout {
        anchors { fill: parent; margins: Theme.gap }
        spacing: Theme.gap

        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.gap / 2
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 0
                AppText {
                    objectName: "editorTitle"
                    Layout.fillWidth: true
                    text: profileActions.currentName
                    font.bold: true
                    font.pixelSize: Theme.smallFont
                    elide: Text.ElideRight
                    maximumLineCount: 2
                    lineHeight: 0.9
                }
                AppText {
                    objectName: "editorModified"
                    Layout.fillWidth: true
                    visible: editor.history.modified
                    text: "\u25CF " + texts.modified
                    font.pixelSize: Theme.smallFont
                    color: Theme.accent
                }
            }
            AppButton {
                objectName: "undo"
                symbol: "\u21B6"
                text: texts.undo
                everyTouchCounts: true
                enabled: editor.history.canUndo
                onClicked: editor.history.undo()
            }
            AppButton {
                objectName: "redo"
                symbol: "\u21B7"
                text: texts.redo
                everyTouchCounts: true
                enabled: editor.history.canRedo
                onClicked: editor.history.redo()
            }
            AppButton {
                objectName: "revert"
                text: texts.revert
                enabled: editor.history.modified
                onClicked: reversion.open()
            }
            AppButton {
                objectName: "saveAs"
                text: texts.saveAs
                onClicked: screen.saveAsWanted()
            }
            AppButton {
                objectName: "save"
                text: texts.save
                fill: Theme.accent
                ink: Theme.accentInk
                enabled: editor.history.modified
                onClicked: screen.saveWanted()
            }
        }
        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: Theme.gap

            ColumnLayout {
                Layout.fillWidth: true
                Layout.fillHeight: true
                spacing: Theme.gap

                FocusScope {
                    id: stageScope
                    objectName: "stageScope"
                    Layout.fillWidth: true
                    Layout.preferredHeight: width * 9 / 16
                    activeFocusOnTab: true
                    Keys.onLeftPressed: editor.nudge(-1, 0, event.isAutoRepeat)
                    Keys.onRightPressed: editor.nudge(1, 0, event.isAutoRepeat)
                    Keys.onUpPressed: editor.nudge(0, -1, event.isAutoRepeat)
                    Keys.onDownPressed: editor.nudge(0, 1, event.isAutoRepeat)
                    Keys.onDeletePressed: editor.deleteSelected()
                    Keys.onPressed: {
                        if (event.key === Qt.Key_PageDown || event.key === Qt.Key_PageUp) {
                            editor.selectNext(event.key === Qt.Key_PageDown ? 1 : -1)
                            event.accepted = true
                        } else if (event.key === Qt.Key_Plus || event.key === Qt.Key_Minus) {
                            editor.scaleBy(event.key === Qt.Key_Plus ? 5 : -5)
                            event.accepted = true
                        }
                    }
                    EditorStage {
                        objectName: "editorStage"
                        anchors.fill: parent
                    }
                    Rectangle {
                        anchors.fill: parent
                        visible: stageScope.activeFocus
                        color: "transparent"
                        border.width: Theme.frame
                        border.color: Theme.accent
                    }
                }
                RowLayout {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    spacing: Theme.gap

                    GridLayout {
                        Layout.fillWidth: false
                        Layout.alignment: Qt.AlignTop
                        columns: 3
                        rowSpacing: 4
                        columnSpacing: 4
                        enabled: editor.selected !== null
                        component Arrow: AppButton {
                            property int columnStep: 0
                            property int rowStep: 0
                            property bool isHeld: false
                            autoRepeat: true
                            onPressedChanged: {
                                if (pressed)
                                    isHeld = false
                            }
                            onClicked: {
                                editor.nudge(columnStep, rowStep, isHeld)
                                isHeld = true
                            }
                        }
                        Arrow { objectName: "arrowUp"; Layout.column: 1; Layout.row: 0; symbol: "\u25B2"; rowStep: -1 }
                        Arrow { objectName: "arrowLeft"; Layout.column: 0; Layout.row: 1; symbol: "\u25C0"; columnStep: -1 }
                        Arrow { objectName: "arrowDown"; Layout.column: 1; Layout.row: 1; symbol: "\u25BC"; rowStep: 1 }
                        Arrow { objectName: "arrowRight"; Layout.column: 2; Layout.row: 1; symbol: "\u25B6"; columnStep: 1 }
                    }
                    ListView {
                        id: warnings
                        objectName: "warnings"
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        clip: true
                        spacing: 4
                        model: editor.warnings
                        boundsBehavior: Flickable.StopAtBounds
                        ScrollBar.vertical: ScrollBar { }
                        delegate: AppButton {
                            objectName: "warning" + index
                            width: warnings.width - 16
                            text: modelData.text
                            onClicked: editor.select(modelData.index)
                            contentItem: AppText {  // what is wrong comes after two names
                                leftPadding: Theme.gap
                                verticalAlignment: Text.AlignVCenter
                                text: "\u26A0  " + modelData.text
                                font.pixelSize: Theme.smallFont
                                maximumLineCount: 2
                                lineHeight: 0.9
                                elide: Text.ElideRight
                            }
                        }
                        AppText {
                            anchors.fill: parent
                            horizontalAlignment: Text.AlignHCenter
                            topPadding: Theme.gap
                            visible: warnings.count === 0
                            text: "\u2713 " + texts.noWarnings
                            color: Theme.muted
                        }
                    }
                    ColumnLayout {
                        Layout.fillWidth: false
                        Layout.alignment: Qt.AlignTop
                        Layout.preferredWidth: 150
                        spacing: 4
                        AppButton {
                            objectName: "addText"
                            Layout.fillWidth: true
                            symbol: "+"
                            text: texts.addText
                            onClicked: newText.open()
                        }
                        AppButton {
                            objectName: "addPicture"
                            Layout.fillWidth: true
                            symbol: "+"
                            text: texts.addPicture
                            onClicked: picture.open()
                        }
                        AppButton {
                            objectName: "deleteElement"
                            Layout.fillWidth: true
                            symbol: "\u2715"
                            text: texts.deleteElement
                            fill: Theme.danger
                            ink: Theme.dangerInk
                            enabled: editor.canDelete
                            onClicked: editor.deleteSelected()
                        }
                    }
                }
            }
            ColumnLayout {
                Layout.preferredWidth: 370
                Layout.maximumWidth: 370
                Layout.fillHeight: true
                spacing: Theme.gap / 2
                RowLayout {
                    spacing: 4
                    Repeater {
                        model: [texts.elements, texts.properties, texts.overlay]
                        AppButton {
                            objectName: "panel" + index
                            Layout.fillWidth: true
                            font.pixelSize: Theme.smallFont
                            text: modelData
                            checked: screen.panel === index
                            onClicked: screen.panel = index
                        }
                    }
                }
                StackLayout {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    currentIndex: screen.panel
                    ElementList { onChosen: screen.panel = 1 }
                    PropertyPanel { objectName: "propertyPanel" }
                    OverlayPanel { objectName: "overlayPanel" }
                }
            }
        }
    }
    NameCard {
        id: newText
        objectName: "newText"
        title: texts.addTextTitle
        hint: texts.text
        onAccepted: {
            editor.addText(name)
            screen.panel = 1
        }
    }
    PictureCard {
        id: picture
        objectName: "pictureCard"
        folder: pictureFolder
    }
    QuestionCard {
        id: reversion
        objectName: "reversion"
        title: texts.revertTitle
        text: texts.revertText.arg(profileActions.currentName)
        answers: [texts.revert, texts.cancel]
        onAnswered: {
            if (index === 0)
                editor.revert()
        }
    }
}
