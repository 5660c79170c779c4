// SPDX-License-Identifier: Apache-2.0
#include "host/commands/RecordCommand.h"

#include "host/commands/InterruptWatch.h"
#include "host/commands/OverlayMaker.h"
#include "host/commands/ProgressLine.h"
#include "host/commands/Report.h"
#include "host/display/PngFile.h"
#include "host/feed/LiveInput.h"
#include "host/pipelines/RecordPipeline.h"
#include "host/pipelines/VideoErrors.h"

#include <QEventLoop>
#include <QTimer>

#include <algorithm>

#include <unistd.h>

namespace Velmar::Host {

namespace {

constexpr int ProgressIntervalMs = 200;
constexpr double NsPerSecond = 1e9;
constexpr QSize DefaultSize {1920, 1080};

bool openInput(const Options &options, LiveInput *input, OverlayMaker *maker, QString *error)
{
    if (!options.inputSocket.isEmpty() && !input->listen(options.inputSocket, error))
        return false;
    if (options.inputFromPipe)
        input->readFrom(STDIN_FILENO);
    if (options.inputFromPipe || !options.inputSocket.isEmpty())
        maker->expectLiveValues();
    return true;
}

} // namespace

int runRecord(const Options &options)
{
    QString error;
    if (!initialiseVideo(&error))
        return reportError(error);
    OverlayMaker maker;
    const QSize expected = options.source.size.isEmpty() ? DefaultSize : options.source.size;
    if (!maker.load(options, expected, &error))
        return reportError(error);
    SourceSpec source = options.source;
    source.view = maker.cameraView();

    InterruptWatch interrupt;
    ProgressLine progress(options.quiet ? ProgressLine::Mode::Off : ProgressLine::Mode::Terminal);
    LiveInput input;
    QObject::connect(
        &input, &LiveInput::valueRead,
        [&maker](const QString &name, const QVariant &value) { maker.setLiveValue(name, value); });
    QObject::connect(&input, &LiveInput::problemFound, [&progress](const QString &text) {
        progress.clear();
        reportWarning(text);
    });
    if (!openInput(options, &input, &maker, &error))
        return reportError(error);
    RecordPipeline pipeline(source, {options.outputPath, options.encoder, options.bitrateKbit},
                            [&maker](qint64 ns, QSize size) { return maker.at(ns, size); });
    pipeline.setRange(0, options.durationNs);
    if (!options.pngPath.isEmpty())
        pipeline.grabFrame(options.pngAtNs);

    QEventLoop loop;
    QString failure;
    bool pngWritten = options.pngPath.isEmpty();
    QObject::connect(&pipeline, &RecordPipeline::finished, &loop, &QEventLoop::quit);
    QObject::connect(&pipeline, &RecordPipeline::failed, &loop, [&](const QString &reason) {
        failure = reason;
        loop.quit();
    });
    QObject::connect(&pipeline, &RecordPipeline::warned, &loop, [&](const QString &text) {
        progress.clear();
        reportWarning(text);
    });
    QObject::connect(&pipeline, &RecordPipeline::frameGrabbed, &loop, [&](const QImage &picture) {
        pngWritten = true;
        if (!savePng(picture, options.pngPath, &failure))
            pipeline.stop();
    });
    QObject::connect(&interrupt, &InterruptWatch::interrupted, &pipeline, &RecordPipeline::stop);
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
        progress.show(pipeline.frameCount(), pipeline.positionNs(), pipeline.durationNs());
    });

    if (!pipeline.start(&error))
        return reportError(error);
    timer.start(ProgressIntervalMs);
    loop.exec();
    timer.stop();
    const double seconds = progress.seconds();
    progress.clear();

    const int frames = pipeline.frameCount();
    if (!failure.isEmpty())
        return reportError(failure);
    if (frames == 0 && !interrupt.isInterrupted())
        return reportError(QStringLiteral("%1: holds no frame").arg(source.name()));
    if (!options.quiet && frames > 0) {
        report(QStringLiteral("%1: %2 frames, %3 s, %4 fps, %5")
                   .arg(options.outputPath, QString::number(frames),
                        QString::number(pipeline.positionNs() / NsPerSecond, 'f', 2),
                        QString::number(frames / std::max(seconds, 1e-3), 'f', 1),
                        QString::fromUtf8(pipeline.encoderName())));
        if (!options.pngPath.isEmpty() && pngWritten)
            report(options.pngPath);
    }
    if (interrupt.isInterrupted())
        return InterruptWatch::ExitStatus;
    if (!pngWritten)
        return reportError(QStringLiteral("%1: not written: the recording ended before that frame")
                               .arg(options.pngPath));
    return 0;
}

} // namespace Velmar::Host
