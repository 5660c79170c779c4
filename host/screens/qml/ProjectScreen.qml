// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import "."

/// The project and its inspections; language and units.
RowLayout {
    id: screen

    spacing: Theme.gap

    component Heading: AppText {
        font.pixelSize: Theme.titleFont
        font.bold: true
    }

    ColumnLayout {
        Layout.fillWidth: true
        Layout.fillHeight: true
        Layout.margins: Theme.gap
        spacing: Theme.gap
        Heading { text: texts.project }
        ListView {
            id: files
            objectName: "projectFiles"
            Layout.fillWidth: true
            Layout.preferredHeight: 210
            clip: true
            spacing: Theme.gap / 2
            model: project.files
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar { }
            delegate: AppButton {
                objectName: "projectFile" + index
                width: files.width - 16
                align: Text.AlignLeft
                text: modelData.name
                checked: project.path === modelData.path
                symbol: checked ? "\u2713" : ""
                onClicked: {
                    if (!checked)   // opening it anew would end its inspection
                        project.open(modelData.path)
                }
            }
            AppText {
                anchors.centerIn: parent
                visible: files.count === 0
                text: texts.noProjects
                color: Theme.muted
            }
        }
        AppButton {
            objectName: "projectNew"
            symbol: "+"
            text: texts.newProject
            onClicked: newProject.open()
        }
        Heading { text: texts.inspection }
        ListView {
            id: inspections
            objectName: "inspections"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            spacing: Theme.gap / 2
            model: project.inspections
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar { }
            delegate: AppButton {
                objectName: "inspection" + index
                width: inspections.width - 16
                align: Text.AlignLeft
                text: modelData.name + (modelData.detail === "" ? "" : "  \u2013  " + modelData.detail)
                checked: project.inspectionIndex === index
                symbol: checked ? "\u2713" : ""
                onClicked: project.startInspection(index)
            }
            AppText {
                anchors.centerIn: parent
                visible: inspections.count === 0
                text: texts.openFirst
                color: Theme.muted
            }
        }
    }
    ColumnLayout {
        Layout.preferredWidth: 380
        Layout.maximumWidth: 380
        Layout.alignment: Qt.AlignTop
        Layout.margins: Theme.gap
        spacing: 2 * Theme.gap
        Heading { text: texts.settings }
        ChoiceRow {
            objectName: "language"
            Layout.fillWidth: true
            label: texts.language
            choices: ["Deutsch", "English"]
            current: project.language === "de" ? 0 : 1
            onChosen: project.language = index === 0 ? "de" : "en"
        }
        ChoiceRow {
            objectName: "units"
            Layout.fillWidth: true
            label: texts.units
            choices: [texts.metric, texts.imperial]
            current: project.imperial ? 1 : 0
            onChosen: project.imperial = index === 1
        }
    }
    Card {
        id: newProject

        // In the language of the screens, until the operator has chosen another.
        property int catalog: Math.max(0, project.catalogs.findIndex(function(item) {
            return item.id.indexOf(project.language === "de" ? "-DEU" : "-ENG") >= 0
        }))

        width: 760
        onOpened: {
            projectName.text = ""
            sectionName.text = ""
            projectName.forceActiveFocus()
        }
        contentItem: ColumnLayout {
            spacing: Theme.gap
            Heading { text: texts.newProject }
            AppField {
                id: projectName
                objectName: "projectName"
                Layout.fillWidth: true
                maximumLength: 60
                placeholderText: texts.projectName
            }
            AppField {
                id: sectionName
                objectName: "sectionName"
                Layout.fillWidth: true
                maximumLength: 60
                placeholderText: texts.sectionName
            }
            ChoiceRow {
                objectName: "catalog"
                Layout.fillWidth: true
                label: texts.catalog
                choices: project.catalogs.map(function(item) { return item.name })
                current: newProject.catalog
                onChosen: newProject.catalog = index
            }
            RowLayout {
                Layout.alignment: Qt.AlignRight
                spacing: Theme.gap
                AppButton {
                    text: texts.cancel
                    onClicked: newProject.close()
                }
                AppButton {
                    objectName: "projectCreate"
                    text: texts.create
                    fill: Theme.accent
                    ink: Theme.accentInk
                    enabled: projectName.text.trim() !== "" && sectionName.text.trim() !== ""
                    onClicked: {
                        const choice = project.catalogs[newProject.catalog]
                        if (project.create(projectName.text, sectionName.text, choice ? choice.id : ""))
                            newProject.close()
                    }
                }
            }
        }
    }
}
