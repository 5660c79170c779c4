// SPDX-License-Identifier: Apache-2.0
#include "bench/TextBoxes.h"

#include <benchmark/benchmark.h>

#include <QFontMetrics>
#include <QPainter>

using Velmar::Host::SceneCapabilities;
using Velmar::VideoOverlay::CVideoOverlayCapabilities;
using Velmar::VideoOverlay::CVideoOverlayText;
using Velmar::VideoOverlay::VideoOverlaySettings;

namespace {

/// The grid of a 1080p picture, which gives the font.
struct Grid
{
    SceneCapabilities backend {QSize(1920, 1080)};
    CVideoOverlayCapabilities capabilities;
    std::unique_ptr<VideoOverlaySettings> settings;

    Grid()
    {
        capabilities.setBackend(&backend);
        settings = std::make_unique<VideoOverlaySettings>(capabilities);
        settings->calculateSettings();
    }
};

void elementToPicture(benchmark::State &state)
{
    const Grid grid;
    CVideoOverlayText element;
    element.setSettings(grid.settings.get());
    element.setTextColor(Qt::white);
    element.setBackgroundColor(QColor(0, 0, 0, int(state.range(0))));
    int number = 0;
    for (auto iteration : state) {
        element.setText(boxText(++number));
        benchmark::DoNotOptimize(element.getElement().getImage().constBits());
    }
}

void barePainter(benchmark::State &state)
{
    const Grid grid;
    const QFont font = grid.settings->font();
    const QColor background(0, 0, 0, int(state.range(0)));
    const QRect box(0, 0, QFontMetrics(font).horizontalAdvance(boxText(0)),
                    int(grid.settings->rowHeight()));
    QImage image(box.size(), QImage::Format_ARGB32_Premultiplied);
    int number = 0;
    for (auto iteration : state) {
        const QString text = boxText(++number);
        image.fill(background);
        QPainter painter(&image);
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(box, Qt::AlignLeft | Qt::AlignVCenter, text);
        painter.end();
        benchmark::DoNotOptimize(image.constBits());
    }
}

} // namespace

BENCHMARK(elementToPicture)
    ->Name("text/element")
    ->ArgName("box alpha")
    ->Arg(255)
    ->Arg(150)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(barePainter)
    ->Name("text/painter")
    ->ArgName("box alpha")
    ->Arg(255)
    ->Arg(150)
    ->Unit(benchmark::kMicrosecond);
