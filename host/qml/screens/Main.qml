// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import QtQuick.Window 2.15
import Xqosd 1.0
import "."

ApplicationWindow {
    id: window

    property int screen: 0
    property bool closing: false    ///< the operator has decided about unsaved changes
    property bool closeWhenRecorded: false

    /// Asks about unsaved changes first, if there are any.
    function guarded(action) {
        if (!editor.hasUnsavedChanges()) {
            action()
            return
        }
        unsaved.action = action
        unsaved.open()
    }
    /// Saves, under a new name where the profile may not be written, and then goes on. Asks before
    /// it saves over what is not on the screen.
    function saveAndThen(action) {
        const question = editor.canSave() ? profileActions.saveQuestion() : ""
        if (!editor.canSave()) {
            saveAsAndThen(action)
        } else if (question !== "") {
            overwrite.action = action
            overwrite.text = question
            overwrite.open()
        } else if (editor.save()) {
            action()
        }
    }
    function saveAsAndThen(action) {
        saveName.action = action
        saveName.open()
    }

    objectName: "window"
    width: 1280
    height: 800
    minimumWidth: 1200      // below, buttons would leave the window
    minimumHeight: 740
    visible: true
    title: "xqosd"
    color: Theme.ground

    onClosing: {
        if (video.recordState !== VideoController.Idle) {
            close.accepted = false
            window.closeWhenRecorded = true
            video.stopRecording()
            return
        }
        if (window.closing || !editor.hasUnsavedChanges())
            return
        close.accepted = false
        guarded(function() {
            window.closing = true
            window.close()
        })
    }

    Connections {
        target: video
        function onRecordStateChanged() {
            if (window.closeWhenRecorded && video.recordState === VideoController.Idle) {
                window.closeWhenRecorded = false
                window.close()
            }
        }
    }
    Loader {
        id: keyboard

        z: 1        // over the screens, which come after it
        active: useKeyboard
        source: active ? "OnScreenKeyboard.qml" : ""
        onStatusChanged: {
            if (status === Loader.Error)
                messages.error(texts.errorNoKeyboard)
        }
        onLoaded: {
            item.windowWidth = Qt.binding(function() { return window.width })
            item.windowHeight = Qt.binding(function() { return window.height })
        }
    }
    RowLayout {
        id: content

        readonly property Item field: window.activeFocusItem
        readonly property real covered: {
            if (Room.keyboardHeight === 0 || !contains(field))
                return 0
            const bottom = mapFromItem(field, 0, Math.min(field.height, 2 * Theme.touch)).y + Theme.gap
            return Math.max(0, bottom - (height - Room.keyboardHeight))
        }

        function contains(item) {
            while (item && item !== content)
                item = item.parent
            return item === content
        }

        anchors.fill: parent
        spacing: 0
        // So that what is typed can be read.
        transform: Translate { y: -content.covered }

        Rectangle {
            Layout.fillHeight: true
            Layout.preferredWidth: 132
            color: Theme.panel
            ColumnLayout {
                anchors { fill: parent; margins: Theme.gap / 2 }
                spacing: Theme.gap
                Repeater {
                    id: navigation
                    model: [{ symbol: "\u25C9", text: texts.live, name: "navLive" },
                            { symbol: "\u25A6", text: texts.editor, name: "navEditor" },
                            { symbol: "\u2630", text: texts.profiles, name: "navProfiles" },
                            { symbol: "\u2699", text: texts.project, name: "navProject" }]
                    AppButton {
                        id: tab
                        objectName: modelData.name
                        Layout.fillWidth: true
                        implicitHeight: 96
                        checked: window.screen === index
                        text: modelData.text
                        onClicked: window.screen = index
                        contentItem: ColumnLayout {
                            spacing: 2
                            Text {
                                Layout.alignment: Qt.AlignHCenter
                                text: modelData.symbol
                                font.pixelSize: 34
                                color: tab.checked ? Theme.accentInk : Theme.text
                            }
                            Text {
                                Layout.alignment: Qt.AlignHCenter
                                text: tab.text
                                font.pixelSize: Theme.smallFont
                                font.bold: tab.checked
                                color: tab.checked ? Theme.accentInk : Theme.text
                            }
                        }
                    }
                }
                Item { Layout.fillHeight: true }
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 0
            StackLayout {
                Layout.fillWidth: true
                Layout.fillHeight: true
                currentIndex: window.screen
                LiveScreen { objectName: "liveScreen" }
                EditorScreen {
                    objectName: "editorScreen"
                    onGuarded: window.guarded(action)
                    onSaveWanted: window.saveAndThen(function() { })
                    onSaveAsWanted: window.saveAsAndThen(function() { })
                }
                ProfilesScreen {
                    objectName: "profilesScreen"
                    onGuarded: window.guarded(action)
                }
                ProjectScreen { objectName: "projectScreen" }
            }
            MessageBar {
                objectName: "messageBar"
                Layout.fillWidth: true
            }
        }
    }
    QuestionCard {
        id: unsaved

        property var action: null

        objectName: "unsaved"
        title: texts.unsavedTitle
        text: texts.unsavedText.arg(profileActions.currentName)
        answers: [texts.save, texts.discard, texts.cancel]
        onAnswered: {
            if (index === 0) {
                window.saveAndThen(action)
            } else if (index === 1) {
                editor.revert()
                action()
            }
        }
    }
    QuestionCard {
        id: overwrite

        property var action: null

        objectName: "overwrite"
        title: texts.overwriteTitle
        answers: [texts.save, texts.saveAs, texts.cancel]
        onAnswered: {
            if (index === 1)
                window.saveAsAndThen(action)
            else if (index === 0 && editor.save())
                action()
        }
    }
    NameCard {
        id: saveName

        property var action: null

        objectName: "saveName"
        title: texts.saveAsTitle
        hint: texts.name
        name: profileActions.currentName
        onAccepted: {
            if (editor.saveAs(name) && action)
                action()
        }
    }
}
