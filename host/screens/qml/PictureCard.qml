// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import Qt.labs.folderlistmodel 2.15
import "."

/// Chooses a picture file, and shows it before it is taken.
Card {
    id: card

    property string chosen: ""      ///< path
    property alias folder: files.folder

    width: 1000
    height: Math.min(680, room)
    onAboutToShow: chosen = ""

    // Not the layout itself: a longer path would make it as small as it can be.
    contentItem: Item {
        ColumnLayout {
            anchors.fill: parent
            spacing: Theme.gap
            RowLayout {
                spacing: Theme.gap
                AppText {
                    text: texts.choosePicture
                    font.pixelSize: Theme.titleFont
                    font.bold: true
                }
                AppText {
                    objectName: "pictureFolder"
                    Layout.fillWidth: true
                    text: decodeURIComponent(files.folder.toString().replace("file://", ""))
                    color: Theme.muted
                    elide: Text.ElideLeft
                    wrapMode: Text.NoWrap   // elides at the end only, if at all, otherwise
                    maximumLineCount: 1
                    horizontalAlignment: Text.AlignRight
                }
                AppButton {
                    objectName: "pictureUp"
                    symbol: "\u25B2"
                    text: texts.folderUp
                    enabled: files.parentFolder.toString() !== ""
                    onClicked: files.folder = files.parentFolder
                }
            }
            RowLayout {
                Layout.fillWidth: true
                Layout.fillHeight: true
                spacing: Theme.gap
                ListView {
                    id: list
                    objectName: "pictureList"
                    Layout.fillHeight: true
                    Layout.preferredWidth: 440
                    clip: true
                    spacing: 4
                    boundsBehavior: Flickable.StopAtBounds
                    ScrollBar.vertical: ScrollBar { }
                    model: FolderListModel {
                        id: files
                        nameFilters: ["*.png", "*.jpg", "*.jpeg", "*.bmp"]
                        caseSensitive: false
                        showDirsFirst: true
                    }
                    delegate: AppButton {
                        objectName: "picture" + fileName
                        width: list.width - 16
                        align: Text.AlignLeft
                        text: fileName
                        symbol: fileIsDir ? "\u25B7" : checked ? "\u2713" : ""
                        checked: card.chosen === filePath
                        onClicked: {
                            if (fileIsDir)
                                files.folder = fileURL
                            else
                                card.chosen = filePath
                        }
                    }
                    AppText {
                        anchors.centerIn: parent
                        visible: list.count === 0
                        text: texts.noPictures
                        color: Theme.muted
                    }
                }
                Rectangle {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    color: Theme.ground
                    border.width: 1
                    border.color: Theme.line
                    Image {
                        objectName: "picturePreview"
                        anchors { fill: parent; margins: Theme.gap }
                        fillMode: Image.PreserveAspectFit
                        asynchronous: true
                        sourceSize: Qt.size(480, 480)
                        source: card.chosen === "" ? "" : "image://preview/" + encodeURIComponent(card.chosen)
                    }
                    AppText {
                        anchors.centerIn: parent
                        visible: card.chosen === ""
                        text: texts.noPreview
                        color: Theme.muted
                    }
                }
            }
            RowLayout {
                Layout.alignment: Qt.AlignRight
                spacing: Theme.gap
                AppButton {
                    text: texts.cancel
                    onClicked: card.close()
                }
                AppButton {
                    objectName: "pictureAdd"
                    text: texts.add
                    fill: Theme.accent
                    ink: Theme.accentInk
                    enabled: card.chosen !== ""
                    onClicked: {
                        if (editor.addPicture(card.chosen))
                            card.close()
                    }
                }
            }
        }
    }
}
