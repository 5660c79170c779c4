// SPDX-License-Identifier: Apache-2.0
#include "bench/TextBoxes.h"

using Velmar::Host::OverlayScene;
using Velmar::VideoOverlay::CVideoOverlayElement;
using Velmar::VideoOverlay::CVideoOverlayText;
using Velmar::VideoOverlay::VideoOverlaySettings;

QString boxText(int number)
{
    return QStringLiteral("Distance %1 m").arg(number, 6, 10, QLatin1Char('0'));
}

QPoint boxPosition(int index)
{
    return QPoint(41 + index % 2 * 640, 37 + index / 2 * 110);
}

TextBoxes::TextBoxes(int count, int backgroundAlpha)
    : m_scene(std::make_shared<OverlayScene>(QSize(1920, 1080)))
{
    m_capabilities.setBackend(&m_scene->capabilities());
    m_control.setBackend(m_scene.get());
    m_settings = std::make_unique<VideoOverlaySettings>(m_capabilities);
    m_settings->calculateSettings();
    m_scene->start();
    for (int i = 0; i < count; ++i) {
        auto text = std::make_unique<CVideoOverlayText>();
        CVideoOverlayText &element = *text;
        const auto show = [this, &element] { m_control.displayElement(element); };
        connect(&element, &CVideoOverlayElement::widthChanged, this, show);
        connect(&element, &CVideoOverlayElement::heightChanged, this, show);
        connect(&element, &CVideoOverlayText::textChanged, this, show);
        connect(&element, &CVideoOverlayText::visibleChanged, this, show);
        element.setId(i);
        element.setType(CVideoOverlayElement::SystemText);
        element.setSettings(m_settings.get());
        element.setTransparency(0);
        element.setTextColor(Qt::white);
        element.setBackgroundColor(QColor(0, 0, 0, backgroundAlpha));
        element.setPosition(boxPosition(i).x(), boxPosition(i).y());
        element.setText(boxText(0));
        element.setEnabled(true);
        m_texts.push_back(std::move(text));
    }
    m_scene->flush();
}

TextBoxes::~TextBoxes()
{
    m_control.setBackend(nullptr);
    m_capabilities.setBackend(nullptr);
}

void TextBoxes::change(int changing)
{
    if (changing == 0)
        return;
    ++m_number;
    for (int i = 0; i < changing; ++i)
        m_texts[size_t(i)]->setText(boxText(m_number));
    m_scene->flush();
}

std::shared_ptr<OverlayScene> TextBoxes::scene() const
{
    return m_scene;
}
