// SPDX-License-Identifier: Apache-2.0
#include "host/display/OverlayScene.h"
#include "host/feed/ValueFeed.h"

#include <platform/shared/CLocaleSupport.h>
#include <videooverlay/captions/TemplateCaptionResolver.h>
#include <videooverlay/display/CVideoOverlayCapabilities.h>
#include <videooverlay/display/CVideoOverlayControl.h>
#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/display/VideoOverlaySettings.h>
#include <videooverlay/osd/COsdValueDatasource.h>
#include <videooverlay/units/SpeedUnitsConverter.h>

#include <benchmark/benchmark.h>

#include <QColor>
#include <QCoreApplication>

using namespace Velmar::VideoOverlay;
using Velmar::Host::OverlayScene;
using Velmar::Host::SceneCapabilities;
using Velmar::Host::ValueFeed;
using Velmar::Shared::CLocaleSupport;

namespace {

/// A prime, so that an element never gets the value again that it shows.
constexpr int differentValues = 997;

/// Takes every element and never its picture: what is left is the chain in front of it.
class NoPictures : public CAbstractVideoOverlayControlBackend
{
public:
    bool isReady() override { return true; }
    bool isActive() override { return true; }
    bool displayElement(CVideoOverlayElement &) override { return true; }
    bool deleteElement(CVideoOverlayElement &) override { return true; }
    void setPaintMargins(const QRectF &) override { }
    bool videoOverlayEnabled() override { return true; }
    void setVideoOverlayEnabled(bool) override { }
    void prepareOverlay() override { }
};

/// Live texts on a display, wired as a host does it.
class LiveTexts
{
public:
    LiveTexts(CAbstractVideoOverlayControlBackend &display, int count)
    {
        m_capabilities.setBackend(&m_grid);
        m_control.setBackend(&display);
        m_manager.registerElementAccessor(&m_feed);
        m_manager.setVideoOverlayEnabled(true);
        m_manager.getSettings()->calculateSettings();
        for (int i = 0; i < count; ++i) {
            m_names.append(QStringLiteral("V%1").arg(i));
            addText(i);
        }
        // The first value of an element changes its size, which costs more than every later one.
        for (int i = 0; i < count; ++i)
            setNextValue();
    }

    ~LiveTexts() { m_manager.removeElements(); }

    LiveTexts(const LiveTexts &) = delete;
    LiveTexts &operator=(const LiveTexts &) = delete;

    /// The next element in turn gets another value.
    void setNextValue()
    {
        m_number = (m_number + 1) % differentValues;
        m_feed.setValue(m_names.at(m_turn), m_number / 100.0);
        m_turn = (m_turn + 1) % m_names.size();
    }

    CVideoOverlayText *text(int index)
    {
        return qobject_cast<CVideoOverlayText *>(m_manager.getElement(index));
    }

    VideoOverlaySettings *grid() const { return m_manager.getSettings(); }

private:
    void addText(int index)
    {
        ElementParam record;
        record.insert(QStringLiteral("type"), int(CVideoOverlayElement::SystemText));
        record.insert(QStringLiteral("row"), index % 27);
        record.insert(QStringLiteral("col"), index / 27);
        record.insert(QStringLiteral("enabled"), true);
        record.insert(QStringLiteral("textColor"), QColor(Qt::white));
        record.insert(QStringLiteral("backgroundColor"), QColor(Qt::black));
        record.insert(QStringLiteral("captionEnabled"), true);
        record.insert(QStringLiteral("max_width"), 12);
        record.insert(QStringLiteral("unit"), CLocaleSupport::speedUnits_m_per_min);
        record.insert(ElementParam::NAME_COLUMNBOUND, m_names.at(index));
        record.insert(ElementParam::NAME_COLUMNCAPTION, QStringLiteral("Speed"));
        CVideoOverlayText *const text = m_manager.createText(record);
        auto *datasource = new COsdValueDatasource({}, text, record); // a child of the element
        datasource->setUnitProvider(&m_converter);
    }

    SceneCapabilities m_grid {QSize(1920, 1080)};
    SpeedUnitsConverter m_converter;
    ValueFeed m_feed;
    CVideoOverlayCapabilities m_capabilities;
    CVideoOverlayControl m_control;
    CVideoOverlayManager m_manager {m_control, m_capabilities};
    QStringList m_names;
    int m_number = 0;
    int m_turn = 0;
};

void valueToPicture(benchmark::State &state)
{
    OverlayScene scene(QSize(1920, 1080));
    scene.start();
    LiveTexts texts(scene, int(state.range(0)));
    scene.flush();
    const quint64 before = scene.renderCount();
    quint64 values = 0;
    for (auto iteration : state) {
        texts.setNextValue();
        scene.flush();
        // No event loop runs here, and each flush leaves an event behind.
        if (++values % 1024 == 0)
            QCoreApplication::removePostedEvents(&scene);
    }
    if (scene.renderCount() - before != values || scene.snapshot()->items.size() != state.range(0))
        state.SkipWithError("not every value became a picture");
}

void valueToDisplay(benchmark::State &state)
{
    NoPictures display;
    LiveTexts texts(display, int(state.range(0)));
    for (auto iteration : state)
        texts.setNextValue();
}

/// The same texts as above on an element alone.
void pictureAlone(benchmark::State &state)
{
    NoPictures display;
    LiveTexts texts(display, 1);
    CVideoOverlayText *const shown = texts.text(0);
    QStringList lines;
    for (int i = 0; i < differentValues; ++i) {
        texts.setNextValue();
        lines.append(shown->text());
    }
    CVideoOverlayText element;
    element.setSettings(texts.grid());
    element.setTextColor(Qt::white);
    element.setBackgroundColor(Qt::black);
    int number = 0;
    for (auto iteration : state) {
        element.setText(lines.at(number = (number + 1) % differentValues));
        benchmark::DoNotOptimize(element.getElement().getImage().constBits());
    }
}

} // namespace

BENCHMARK(valueToPicture)
    ->Name("chain/picture")
    ->ArgName("elements")
    ->Arg(1)
    ->Arg(30)
    ->Arg(300)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(valueToDisplay)
    ->Name("chain/display")
    ->ArgName("elements")
    ->Arg(1)
    ->Arg(30)
    ->Arg(300)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(pictureAlone)->Name("chain/element")->Unit(benchmark::kMicrosecond);
