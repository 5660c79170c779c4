// SPDX-License-Identifier: Apache-2.0
#include <videooverlay/display/CAbstractVideoOverlayCapabilitiesBackend.h>
#include <videooverlay/display/CAbstractVideoOverlayControlBackend.h>
#include <videooverlay/display/CVideoOverlayCapabilities.h>
#include <videooverlay/display/CVideoOverlayControl.h>
#include <videooverlay/display/VideoOverlaySettings.h>
#include <videooverlay/elements/CVideoOverlayText.h>

#include <QGuiApplication>
#include <QImage>

#include <cstdio>

using namespace Velmar::VideoOverlay;

namespace {

class Capabilities : public CAbstractVideoOverlayCapabilitiesBackend
{
public:
    int maximumColumnCount() override { return 54; }
    int maximumRowCount() override { return 27; }
    int imageWidth() override { return 1920; }
    int imageHeight() override { return 1080; }
};

class Display : public CAbstractVideoOverlayControlBackend
{
public:
    bool isReady() override { return true; }
    bool isActive() override { return true; }
    bool displayElement(CVideoOverlayElement &element) override
    {
        shown = element.getElement();
        return true;
    }
    bool deleteElement(CVideoOverlayElement &) override
    {
        shown = RenderedElement();
        return true;
    }
    void setPaintMargins(const QRectF &margins) override { area = margins; }
    bool videoOverlayEnabled() override { return on; }
    void setVideoOverlayEnabled(bool enabled) override { on = enabled; }
    void prepareOverlay() override { }

    RenderedElement shown;
    QRectF area;
    bool on = false;
};

int failures = 0;

void check(bool condition, const char *what)
{
    if (condition)
        return;
    ++failures;
    std::fprintf(stderr, "consumer: %s\n", what);
}

} // namespace

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);

    Capabilities capabilitiesBackend;
    CVideoOverlayCapabilities capabilities;
    capabilities.setBackend(&capabilitiesBackend);
    Display display;
    CVideoOverlayControl control;
    control.setBackend(&display);
    VideoOverlaySettings settings(capabilities);
    Q_EMIT display.initialized();
    control.setPaintMargins(settings.marginRect());
    check(control.controlActive(), "the control is not active");
    check(display.on, "the overlay was not switched on");
    check(display.area.width() > 1000.0, "the grid has no width");

    CVideoOverlayText text;
    text.setSettings(&settings);
    text.setId(7);
    text.setTextColor(Qt::white);
    text.setBackgroundColor(Qt::blue);
    text.setEnabled(true);
    text.setText(QStringLiteral("Speed: 4.2 m/min"));
    check(control.displayElement(text), "the display refused the text");

    const QImage picture = display.shown.getImage();
    check(display.shown.id() == 7 && display.shown.visible(), "another element was shown");
    check(picture.size() == QSize(int(text.width()), int(text.height())), "the size differs");
    check(picture.height() == int(settings.rowHeight()), "the text is not one row high");
    int blue = 0;
    int white = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            blue += picture.pixel(x, y) == qRgb(0, 0, 255) ? 1 : 0;
            white += picture.pixel(x, y) == qRgb(255, 255, 255) ? 1 : 0;
        }
    }
    check(blue > 1000, "the picture has no box");
    check(white > 100, "the picture has no letters");

    check(control.deleteElement(text), "the display did not let the text go");
    if (failures == 0)
        std::printf("consumer: ok, %d x %d pixels\n", picture.width(), picture.height());
    return failures == 0 ? 0 : 1;
}
