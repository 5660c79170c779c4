// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/display/OverlayScene.h"

#include <videooverlay/display/CVideoOverlayCapabilities.h>
#include <videooverlay/display/CVideoOverlayControl.h>
#include <videooverlay/display/VideoOverlaySettings.h>
#include <videooverlay/elements/CVideoOverlayText.h>

#include <QObject>

#include <memory>
#include <vector>

/// The text of a measured box: 17 characters, another one for each number.
QString boxText(int number);

/// Where box @p index stands [px]; a dozen fits on 1280 x 720.
QPoint boxPosition(int index);

/// Text elements of the library on a scene, wired as a host does it.
class TextBoxes : public QObject
{
    Q_OBJECT
public:
    TextBoxes(int count, int backgroundAlpha);
    ~TextBoxes() override;

    /// Gives the first @p changing boxes another text and publishes the result.
    void change(int changing);
    std::shared_ptr<Velmar::Host::OverlayScene> scene() const;

private:
    std::shared_ptr<Velmar::Host::OverlayScene> m_scene;
    Velmar::VideoOverlay::CVideoOverlayCapabilities m_capabilities;
    Velmar::VideoOverlay::CVideoOverlayControl m_control;
    std::unique_ptr<Velmar::VideoOverlay::VideoOverlaySettings> m_settings;
    std::vector<std::unique_ptr<Velmar::VideoOverlay::CVideoOverlayText>> m_texts;
    int m_number = 0;
};
