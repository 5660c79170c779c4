// SPDX-License-Identifier: Apache-2.0
// Compiled by tst_layout only to have the compiler print the layout of these classes. The derived
// classes bring their virtual tables into this file.
#include "videooverlay/display/CAbstractVideoOverlayCapabilitiesBackend.h"
#include "videooverlay/display/CAbstractVideoOverlayControlBackend.h"
#include "videooverlay/display/CVideoOverlayCapabilities.h"
#include "videooverlay/display/CVideoOverlayControl.h"
#include "videooverlay/display/VideoOverlaySettings.h"
#include "videooverlay/elements/CVideoOverlayElement.h"
#include "videooverlay/elements/CVideoOverlayImage.h"
#include "videooverlay/elements/CVideoOverlayText.h"
#include "videooverlay/elements/ElementParam.h"
#include "videooverlay/elements/RenderedElement.h"

using namespace Velmar::VideoOverlay;

struct ElementLayout : CVideoOverlayElement
{
};
struct TextLayout : CVideoOverlayText
{
};
struct ImageLayout : CVideoOverlayImage
{
};
struct SettingsLayout : VideoOverlaySettings
{
    using VideoOverlaySettings::VideoOverlaySettings;
};
struct CapabilitiesLayout : CVideoOverlayCapabilities
{
};
struct ControlLayout : CVideoOverlayControl
{
};
struct CapabilitiesBackendLayout : CAbstractVideoOverlayCapabilitiesBackend
{
    int maximumColumnCount() override { return 0; }
    int maximumRowCount() override { return 0; }
    int imageWidth() override { return 0; }
    int imageHeight() override { return 0; }
};
struct ControlBackendLayout : CAbstractVideoOverlayControlBackend
{
    bool isReady() override { return false; }
    bool isActive() override { return false; }
    bool displayElement(CVideoOverlayElement &) override { return false; }
    bool deleteElement(CVideoOverlayElement &) override { return false; }
    void setPaintMargins(const QRectF &) override { }
    bool videoOverlayEnabled() override { return false; }
    void setVideoOverlayEnabled(bool) override { }
    void prepareOverlay() override { }
};

void makeAll(CVideoOverlayCapabilities &capabilities)
{
    const ElementLayout element;
    const TextLayout text;
    const ImageLayout image;
    const SettingsLayout settings(capabilities);
    const CapabilitiesLayout other;
    const ControlLayout control;
    const CapabilitiesBackendLayout capabilitiesBackend;
    const ControlBackendLayout controlBackend;
    const RenderedElement rendered;
    const ElementParam param;
}
