// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import "."

/// The profiles: which there are, which one is on the picture, and what can be done with one.
ColumnLayout {
    id: screen

    property int marked: -1
    readonly property var markedProfile: marked >= 0 && marked < list.count ? profileActions.profileAt(marked) : null
    readonly property bool canChange: markedProfile !== null && !markedProfile.readOnly
    signal guarded(var action)      ///< unsaved changes would be lost

    spacing: Theme.gap

    AppText {
        Layout.margins: Theme.gap
        text: texts.profiles
        font.pixelSize: Theme.titleFont
        font.bold: true
    }
    ListView {
        id: list
        objectName: "profileList"
        Layout.fillWidth: true
        Layout.fillHeight: true
        Layout.leftMargin: Theme.gap
        Layout.rightMargin: Theme.gap
        clip: true
        spacing: Theme.gap / 2
        model: profiles
        currentIndex: -1
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.vertical: ScrollBar { }
        delegate: AppButton {
            id: row
            readonly property var profile: model.display
            readonly property bool isCurrent: profileActions.currentIndex === index
            objectName: "profile" + index
            width: list.width - 16
            implicitHeight: 68
            checked: screen.marked === index
            text: profile ? profile.caption : ""
            onClicked: screen.marked = index
            contentItem: RowLayout {
                spacing: Theme.gap
                AppText {
                    Layout.leftMargin: Theme.gap
                    text: row.checked ? "\u25C9" : "\u25CB"
                    color: row.checked ? Theme.accentInk : Theme.text
                }
                AppText {
                    Layout.fillWidth: true
                    text: row.text
                    font.bold: row.checked
                    elide: Text.ElideMiddle
                    wrapMode: Text.NoWrap   // elides at the end only, if at all, otherwise
                    maximumLineCount: 1
                    color: row.checked ? Theme.accentInk : Theme.text
                }
                Repeater {
                    model: [row.isCurrent ? "\u25B6 " + texts.current : "",
                            row.profile && row.profile.readOnly ? texts.readOnly : ""]
                    Rectangle {
                        visible: modelData !== ""
                        Layout.preferredWidth: badge.implicitWidth + 2 * Theme.gap
                        Layout.preferredHeight: badge.implicitHeight + Theme.gap
                        Layout.rightMargin: Theme.gap
                        radius: Theme.radius
                        color: Theme.ground
                        border.width: 1
                        border.color: Theme.line
                        AppText {
                            id: badge
                            anchors.centerIn: parent
                            text: modelData
                            font.pixelSize: Theme.smallFont
                        }
                    }
                }
            }
        }
    }
    Flow {
        Layout.fillWidth: true
        Layout.margins: Theme.gap
        spacing: Theme.gap
        AppButton {
            objectName: "profileSelect"
            text: texts.select
            symbol: "\u25B6"
            fill: Theme.accent
            ink: Theme.accentInk
            enabled: screen.markedProfile !== null && screen.marked !== profileActions.currentIndex
            onClicked: {
                const index = screen.marked
                screen.guarded(function() { profileActions.select(index) })
            }
        }
        AppButton {
            objectName: "profileClone"
            text: texts.clone
            enabled: screen.markedProfile !== null
            onClicked: {
                cloneName.name = screen.markedProfile.caption
                cloneName.open()
            }
        }
        AppButton {
            objectName: "profileRename"
            text: texts.rename
            enabled: screen.canChange
            onClicked: {
                newName.name = screen.markedProfile.caption
                newName.open()
            }
        }
        AppButton {
            objectName: "profileRemove"
            text: texts.remove
            symbol: "\u2715"
            fill: Theme.danger
            ink: Theme.dangerInk
            enabled: screen.canChange
            onClicked: removal.open()
        }
    }
    NameCard {
        id: cloneName
        objectName: "cloneName"
        title: texts.cloneTitle
        hint: texts.name
        onAccepted: {
            if (profileActions.clone(screen.marked, name))
                screen.marked = list.count - 1
        }
    }
    NameCard {
        id: newName
        objectName: "newName"
        title: texts.renameTitle
        hint: texts.name
        onAccepted: profileActions.rename(screen.marked, name)
    }
    QuestionCard {
        id: removal
        objectName: "removal"
        title: texts.removeTitle
        text: texts.removeText.arg(screen.markedProfile ? screen.markedProfile.caption : "")
        answers: [texts.remove, texts.cancel]
        onAnswered: {
            if (index !== 0)
                return
            const row = screen.marked
            screen.guarded(function() { profileActions.remove(row) })
        }
    }
}
