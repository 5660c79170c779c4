// SPDX-License-Identifier: Apache-2.0
#include "host/cli/CheckCommand.h"

#include "host/check/ProfileCheck.h"
#include "host/cli/Report.h"
#include "host/display/GridFit.h"
#include "host/display/OverlayScene.h"
#include "host/feed/SystemValues.h"
#include "host/platform/CatalogStore.h"
#include "host/platform/TranslationStore.h"

#include <platform/templates/CCatalogTemplate.h>
#include <platform/templates/CProgramView.h>
#include <platform/templates/CTemplateColumn.h>
#include <platform/translation/CTranslator.h>
#include <videooverlay/display/CVideoOverlayCapabilities.h>
#include <videooverlay/display/VideoOverlaySettings.h>

#include <QDir>
#include <QFile>
#include <QSet>

namespace Velmar::Host {

namespace {

constexpr QSize PictureSize {1920, 1080}; // the size that layouts are made for

/// "TABLE.COLUMN" of every column of every installed catalog.
QSet<QString> catalogColumns()
{
    QSet<QString> columns;
    auto &store = CATManagement::CatalogStore::instance();
    for (const QString &id : store.catalogIds()) {
        if (!store.loadTemplate(id))
            continue;
        const auto catalog = store.getTemplateFromCache(id);
        for (int i = 0; i < catalog->programViewCount(); ++i) {
            const Templates::CProgramView *view = catalog->programView(i);
            for (int j = 0; view && j < view->columnCount(); ++j)
                columns.insert(view->column(j)->tableKey() + QLatin1Char('.')
                               + view->column(j)->key());
        }
    }
    return columns;
}

/// The longest caption that a value has in any language that has captions.
QString longestCaption(const QString &name)
{
    const QString context = QStringLiteral("Velmar.Corvane.App.OsdSystemTextCaption");
    auto &store = Translation::TranslationStore::instance();
    const QLocale before = store.locale();
    QString longest;
    for (const QLocale &locale : store.availableLocales()) {
        store.setLocale(locale);
        const QString caption
            = Translation::CTranslator::instance()->txt(context, name, QString(), {});
        if (caption.size() > longest.size())
            longest = caption;
    }
    store.setLocale(before);
    return longest;
}

QSizeF cellSize()
{
    SceneCapabilities backend(PictureSize);
    VideoOverlay::CVideoOverlayCapabilities capabilities;
    capabilities.setBackend(&backend);
    VideoOverlay::VideoOverlaySettings grid(capabilities);
    fitGrid(grid);
    return QSizeF(grid.colWidth(), grid.rowHeight());
}

QStringList filesOf(const QString &path)
{
    if (!QFileInfo(path).isDir())
        return {path};
    QStringList files;
    const QDir directory(path);
    for (const QString &name : directory.entryList({QStringLiteral("*.xml")}, QDir::Files))
        files.append(directory.filePath(name));
    return files;
}

} // namespace

int runCheck(const Options &options)
{
    ProfileCheckContext context;
    context.cell = cellSize();
    context.knowsValue = [](const QString &name) { return SystemValues::find(name) != nullptr; };
    context.knowsColumn
        = [columns = catalogColumns()](const QString &table, const QString &column) {
              return columns.contains(table + QLatin1Char('.') + column);
          };
    context.captionOf = longestCaption;
    int status = 0;
    for (const QString &path : options.files) {
        for (const QString &name : filesOf(path)) {
            QFile file(name);
            if (!file.open(QIODevice::ReadOnly)) {
                status = reportError(QStringLiteral("%1: %2").arg(name, file.errorString()));
                continue;
            }
            const QVector<ProfileFinding> findings = checkProfile(file.readAll(), context);
            for (const ProfileFinding &finding : findings) {
                report(QStringLiteral("%1:%2:%3: %4")
                           .arg(name, QString::number(finding.line),
                                QString::number(finding.column), finding.reason));
                status = FailureStatus;
            }
        }
    }
    return status;
}

} // namespace Velmar::Host
