// SPDX-License-Identifier: Apache-2.0
#include "bench/ChildProgram.h"
#include "bench/CpuClock.h"
#include "bench/FrameChain.h"
#include "bench/TextBoxes.h"
#include "host/burn/BurnElement.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QTemporaryFile>

#include <functional>

namespace {

constexpr int boxCount = 12;
constexpr int framesPerRun = 300;

// What every candidate draws: white text of 35 pixels on a black box of this opacity.
constexpr int boxAlpha = 150;

QSize frameSize(const benchmark::State &state)
{
    return state.range(0) == 720 ? QSize(1280, 720) : QSize(1920, 1080);
}

/// Pushes the same frames through @p chain and through a chain without overlay, and reports the CPU
/// time that the first took more. @p change brings the overlay to the next frame and counts.
void measure(benchmark::State &state, FrameChain &chain, const std::function<void()> &change)
{
    const QByteArray pixels = texturedFrame(frameSize(state));
    FrameChain bare(frameSize(state), {});
    chain.push(chain.makeFrame(pixels)); // negotiation and first drawing
    for (auto iteration : state) {
        GstBuffer *plain = bare.makeFrame(pixels);
        const double start = cpuSeconds();
        bare.push(plain);
        const double base = cpuSeconds() - start;
        GstBuffer *frame = chain.makeFrame(pixels);
        const double overlayStart = cpuSeconds();
        change();
        chain.push(frame);
        state.SetIterationTime(cpuSeconds() - overlayStart - base);
    }
}

void ours(benchmark::State &state)
{
    TextBoxes boxes(boxCount, boxAlpha);
    GstElement *burn = gst_element_factory_make("xqosdburn", nullptr);
    Velmar::Host::setOverlaySource(burn, boxes.scene());
    FrameChain chain(frameSize(state), {burn});
    const int changing = int(state.range(1));
    measure(state, chain, [&] { boxes.change(changing); });
    QCoreApplication::processEvents(); // what the scene queued for itself
}

void textOverlay(benchmark::State &state)
{
    QVector<GstElement *> overlays;
    for (int i = 0; i < boxCount; ++i) {
        GstElement *overlay = gst_element_factory_make("textoverlay", nullptr);
        if (!overlay)
            return state.SkipWithError("GStreamer's textoverlay is not installed");
        gst_util_set_object_arg(G_OBJECT(overlay), "halignment", "left");
        gst_util_set_object_arg(G_OBJECT(overlay), "valignment", "top");
        g_object_set(overlay, "font-desc", "DejaVu Sans Mono 35px", "shaded-background", TRUE,
                     "shading-value", guint(boxAlpha), "draw-shadow", FALSE, "draw-outline", FALSE,
                     "auto-resize", FALSE, "xpad", boxPosition(i).x(), "ypad", boxPosition(i).y(),
                     "text", boxText(0).toUtf8().constData(), nullptr);
        overlays.append(overlay);
    }
    FrameChain chain(frameSize(state), overlays);
    const int changing = int(state.range(1));
    int number = 0;
    measure(state, chain, [&] {
        if (changing == 0)
            return;
        const QByteArray text = boxText(++number).toUtf8();
        for (int i = 0; i < changing; ++i)
            g_object_set(overlays.at(i), "text", text.constData(), nullptr);
    });
}

/// One run of the ffmpeg program over @p frames raw frames of a file, with @p filter; its CPU time
/// [s].
double ffmpegSeconds(QSize size, const QByteArray &file, const QByteArray &filter, int frames)
{
    const QByteArray sizeText
        = QByteArray::number(size.width()) + 'x' + QByteArray::number(size.height());
    return cpuSecondsOf({"ffmpeg",
                         "-nostdin",
                         "-v",
                         "error",
                         "-threads",
                         "1",
                         "-filter_threads",
                         "1",
                         "-stream_loop",
                         "-1",
                         "-f",
                         "rawvideo",
                         "-pix_fmt",
                         "yuv420p",
                         "-s",
                         sizeText,
                         "-r",
                         "25",
                         "-i",
                         file,
                         "-frames:v",
                         QByteArray::number(frames),
                         "-vf",
                         filter,
                         "-f",
                         "null",
                         "-"});
}

void drawText(benchmark::State &state)
{
    const QSize size = frameSize(state);
    QTemporaryFile file;
    if (!file.open())
        return state.SkipWithError("no temporary file for the frames");
    const QByteArray pixels = texturedFrame(size);
    for (int i = 0; i < 4; ++i)
        file.write(pixels);
    file.flush();
    const QByteArray path = file.fileName().toUtf8();

    QByteArrayList filters;
    for (int i = 0; i < boxCount; ++i) {
        const QByteArray text = i < state.range(1)
            ? QByteArray("text='Distance %{eif\\:n\\:d\\:6} m'")
            : "expansion=none:text='" + boxText(0).toUtf8() + '\'';
        filters.append("drawtext=font='DejaVu Sans Mono':fontsize=35:fontcolor=white:box=1:"
                       "boxborderw=6:boxcolor=black@"
                       + QByteArray::number(boxAlpha / 255.0)
                       + ":x=" + QByteArray::number(boxPosition(i).x())
                       + ":y=" + QByteArray::number(boxPosition(i).y()) + ':' + text);
    }
    // Starting the program and loading fonts is no work on frames: a short run takes it away.
    constexpr int shortRun = 10;
    for (auto iteration : state) {
        double seconds = 0.0;
        for (const QByteArray &filter : {filters.join(','), QByteArray("null")}) {
            const double few = ffmpegSeconds(size, path, filter, shortRun);
            const double all = ffmpegSeconds(size, path, filter, shortRun + framesPerRun);
            if (few < 0 || all < 0)
                return state.SkipWithError("ffmpeg cannot be run");
            seconds = (all - few) - seconds;
        }
        state.SetIterationTime(-seconds / framesPerRun);
    }
}

void frames(benchmark::internal::Benchmark *benchmark, int iterations)
{
    benchmark->ArgNames({"height", "changing"})
        ->ArgsProduct({{720, 1080}, {0, 3, 12}})
        ->Iterations(iterations)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
}

} // namespace

BENCHMARK(ours)->Name("burn/ours")->Apply([](auto *benchmark) { frames(benchmark, framesPerRun); });
BENCHMARK(textOverlay)->Name("burn/textoverlay")->Apply([](auto *benchmark) {
    frames(benchmark, framesPerRun);
});
BENCHMARK(drawText)->Name("burn/drawtext")->Apply([](auto *benchmark) { frames(benchmark, 1); });
