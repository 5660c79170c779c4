// SPDX-License-Identifier: Apache-2.0
#include "host/commands/CheckCommand.h"

#include "host/check/InstalledRules.h"
#include "host/check/ProfileCheck.h"
#include "host/commands/Report.h"
#include "host/display/GridFit.h"
#include "host/display/OverlayScene.h"
#include "host/platform/TranslationStore.h"

#include <platform/translation/CTranslator.h>
#include <videooverlay/display/CVideoOverlayCapabilities.h>
#include <videooverlay/display/VideoOverlaySettings.h>
#include <videooverlay/profiles/ProfilesManager.h>

#include <QDir>
#include <QFile>

namespace Velmar::Host {

namespace {

constexpr QSize PictureSize {1920, 1080}; // the size that layouts are made for

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

/// Profiles that are to be delivered name their pictures from where they lie themselves; one in use
/// would be looked for in whatever folder the program happens to run.
QString pictureDirectory(const QString &profile)
{
    const QString directory = QFileInfo(profile).canonicalPath();
    const QString inUse = QDir(VideoOverlay::ProfilesManager::profilesDirectory()).canonicalPath();
    return directory == inUse ? QString() : directory;
}

} // namespace

int runCheck(const Options &options)
{
    const CatalogColumns columns = CatalogColumns::installed();
    ProfileCheckContext context;
    context.rules = installedRules(columns);
    context.cell = cellSize();
    context.captionOf = [&columns](const QString &table, const QString &name) {
        return table.isEmpty() ? longestCaption(name) : columns.longestCaption(table, name);
    };
    int status = 0;
    for (const QString &path : options.files) {
        for (const QString &name : filesOf(path)) {
            QFile file(name);
            if (!file.open(QIODevice::ReadOnly)) {
                status = reportError(QStringLiteral("%1: %2").arg(name, file.errorString()));
                continue;
            }
            context.directory = pictureDirectory(name);
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
