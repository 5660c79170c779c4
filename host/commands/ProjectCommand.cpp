// SPDX-License-Identifier: Apache-2.0
#include "host/commands/ProjectCommand.h"

#include "host/commands/Report.h"
#include "host/inspection/ProjectSession.h"

#include <platform/directories/CApplicationDirectories.h>

#include <QDir>

namespace Velmar::Host {

namespace {

QString demoFile()
{
    return QDir(CApplicationDirectories::readonlyConfigDirectory())
        .filePath(QStringLiteral("demo/project/demo.json"));
}

QString text(const ProjectSession::RecordPointer &record, const char *column)
{
    return record->readValue(QString::fromLatin1(column)).toString();
}

} // namespace

int runProject(const Options &options)
{
    ProjectSession project;
    if (options.createDemo
        && !project.createDemo(options.projectPath, demoFile(), options.catalogId))
        return reportError(project.errorText());
    if (!project.open(options.projectPath))
        return reportError(project.errorText());
    const auto record = project.project();
    report(QStringLiteral("%1 %2, catalog %3")
               .arg(text(record, "PRJ_Number"), text(record, "PRJ_Name"),
                    text(record, "PRJ_CatalogId")));
    if (!project.hasTemplate())
        reportWarning(QStringLiteral("%1: its catalog is not installed").arg(options.projectPath));
    for (const auto &inspection : project.inspections()) {
        const auto object = inspection->parentObject();
        report(
            QStringLiteral("  inspection %1: %2 %3, %4")
                .arg(text(inspection, "INS_Number"), text(inspection, "INS_Date"),
                     text(inspection, "INS_Time"),
                     object ? object->readValue(QStringLiteral("OBJ_Key")).toString() : QString()));
    }
    return 0;
}

} // namespace Velmar::Host
