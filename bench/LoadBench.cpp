// SPDX-License-Identifier: Apache-2.0
#include "host/display/OverlayScene.h"
#include "host/platform/CatalogStore.h"

#include <videooverlay/display/CVideoOverlayCapabilities.h>
#include <videooverlay/display/CVideoOverlayControl.h>
#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/osd/COsdBuilder.h>
#include <videooverlay/profiles/Profile.h>

#include <benchmark/benchmark.h>

#include <QColor>
#include <QTemporaryDir>

using namespace Velmar::VideoOverlay;
using Velmar::CATManagement::CatalogStore;
using Velmar::Host::OverlayScene;

namespace {

void fill(Profile &profile, int records)
{
    for (int i = 0; i < records; ++i) {
        ElementParam record;
        record.insert(QStringLiteral("type"), int(CVideoOverlayElement::StaticText));
        record.insert(QStringLiteral("row"), i % 27);
        record.insert(QStringLiteral("col"), i % 40);
        record.insert(QStringLiteral("enabled"), true);
        record.insert(QStringLiteral("text"), QStringLiteral("text %1").arg(i));
        record.insert(QStringLiteral("textColor"), QColor(Qt::white));
        record.insert(QStringLiteral("backgroundColor"), QColor(Qt::blue));
        profile.elements().append(record);
    }
}

/// Replaces as many elements as it makes, as a switch between profiles does.
void loadOverlay(benchmark::State &state)
{
    OverlayScene scene(QSize(1920, 1080));
    CVideoOverlayCapabilities capabilities;
    capabilities.setBackend(&scene.capabilities());
    CVideoOverlayControl control;
    control.setBackend(&scene);
    CVideoOverlayManager manager(control, capabilities);
    scene.start();
    COsdBuilder *const builder = COsdBuilder::initialize(CatalogStore::instance(), manager);
    Profile profile;
    fill(profile, int(state.range(0)));
    builder->load(&profile);
    for (auto iteration : state)
        builder->load(&profile);
}

void loadFile(benchmark::State &state)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("profile.xml"));
    {
        Profile written;
        written.setPath(path);
        fill(written, int(state.range(0)));
        if (!written.save())
            state.SkipWithError("the profile cannot be written");
    }
    for (auto iteration : state) {
        Profile profile;
        benchmark::DoNotOptimize(profile.load(path));
    }
}

} // namespace

BENCHMARK(loadOverlay)
    ->Name("load/overlay")
    ->ArgName("records")
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(loadFile)
    ->Name("load/file")
    ->ArgName("records")
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond);
