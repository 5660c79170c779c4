// SPDX-License-Identifier: Apache-2.0
#include "host/commands/SnapshotCommand.h"

#include "host/commands/InterruptWatch.h"
#include "host/commands/OverlayMaker.h"
#include "host/commands/Report.h"
#include "host/display/PngFile.h"
#include "host/pipelines/FrameGrabber.h"
#include "host/pipelines/VideoErrors.h"

#include <QEventLoop>

namespace Velmar::Host {

namespace {

constexpr QSize DefaultSize {1920, 1080};

QImage overlayAlone(OverlayMaker &maker, qint64 ns, QSize size)
{
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    OverlayScene::paint(picture, *maker.at(ns, size).overlay);
    return picture;
}

/// The frame at the wanted time, with its overlay; null, and a text in @p error, on failure.
QImage overlayOnFrame(OverlayMaker &maker, const Options &options, InterruptWatch &interrupt,
                      QString *error)
{
    if (!initialiseVideo(error))
        return {};
    SourceSpec source = options.source;
    source.view = maker.cameraView();
    FrameGrabber grabber(source, options.atNs,
                         [&maker](qint64 ns, QSize size) { return maker.at(ns, size); });
    QImage picture;
    QEventLoop loop;
    QObject::connect(&grabber, &FrameGrabber::frameGrabbed, &loop, [&](const QImage &grabbed) {
        picture = grabbed;
        loop.quit();
    });
    QObject::connect(&grabber, &FrameGrabber::failed, &loop, [&](const QString &reason) {
        *error = reason;
        loop.quit();
    });
    QObject::connect(&grabber, &FrameGrabber::finished, &loop, &QEventLoop::quit);
    QObject::connect(&interrupt, &InterruptWatch::interrupted, &loop, &QEventLoop::quit);
    if (!grabber.start(error))
        return {};
    loop.exec();
    if (picture.isNull() && error->isEmpty())
        *error = QStringLiteral("%1: ends before that time").arg(options.source.name());
    return picture;
}

} // namespace

int runSnapshot(const Options &options)
{
    QString error;
    OverlayMaker maker;
    const QSize expected = options.source.size.isEmpty() ? DefaultSize : options.source.size;
    if (!maker.load(options, expected, &error))
        return reportError(error);
    InterruptWatch interrupt;
    const QImage picture = options.transparent ? overlayAlone(maker, options.atNs, expected)
                                               : overlayOnFrame(maker, options, interrupt, &error);
    if (interrupt.isInterrupted())
        return InterruptWatch::ExitStatus;
    if (!error.isEmpty() || !savePng(picture, options.outputPath, &error))
        return reportError(error);
    if (!options.quiet)
        report(options.outputPath);
    return 0;
}

} // namespace Velmar::Host
