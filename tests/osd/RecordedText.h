// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/elements/CVideoOverlayText.h"

#include <QStringList>

#include <utility>

namespace Velmar::Test {

/// A text that writes down, in order, every signal that one of its setters emits, with the value
/// that it then has, and every call of the virtual setUnit(). Its values differ from those of an
/// empty record, so that every setter is seen.
class RecordedText : public VideoOverlay::CVideoOverlayText
{
public:
    RecordedText()
    {
        using Base = VideoOverlay::CVideoOverlayElement;
        using Text = VideoOverlay::CVideoOverlayText;
        setId(17);
        setRow(50);
        setColumn(51);
        setMaxLineNumber(52);
        Base::setCaption(QStringLiteral("before"));
        connect(this, &Base::typeChanged, this, [this] {
            note("type", int(type()));
            recordAtType = getParamObject();
        });
        connect(this, &Base::idChanged, this, [this] { note("id", id()); });
        connect(this, &Base::rowChanged, this, [this] { note("row", row()); });
        connect(this, &Base::columnChanged, this, [this] { note("column", column()); });
        connect(this, &Base::enabledChanged, this, [this] { note("enabled", enabled()); });
        connect(this, &Base::maxlinenumberChanged, this,
                [this] { note("maxLineNumber", getMaxLineNumber()); });
        connect(this, &Base::timeoutChanged, this, [this] { note("timeout", timeout()); });
        connect(this, &Base::captionVisibleChanged, this,
                [this] { note("captionVisible", captionVisible()); });
        connect(this, &Base::captionChanged, this, [this] { note("caption", caption()); });
        connect(this, &Base::visibleChanged, this, [this] { note("visible", visible()); });
        connect(this, &Base::unitChanged, this,
                [this] { note("unit", VideoOverlay::CVideoOverlayText::unit()); });
        connect(this, &Text::alignmentChanged, this, [this] { note("alignment", alignment()); });
        connect(this, &Text::textChanged, this, [this] { note("text", text()); });
        connect(this, &Text::backgroundColorChanged, this, [this](const QColor &color) {
            note("background", color.isValid() ? color.name() : QStringLiteral("invalid"));
        });
        connect(this, &Text::textColorChanged, this, [this](const QColor &color) {
            note("foreground", color.isValid() ? color.name() : QStringLiteral("invalid"));
        });
    }

    void setUnit(const QString &newUnit) override
    {
        note("setUnit", newUnit);
        CVideoOverlayText::setUnit(newUnit);
    }

    QStringList take() { return std::exchange(m_entries, {}); }

    VideoOverlay::ElementParam recordAtType; ///< the element's record when its type was set

private:
    void note(const char *what, const QVariant &value)
    {
        m_entries.append(QString::fromLatin1(what) + QLatin1Char(' ') + value.toString());
    }

    QStringList m_entries;
};

} // namespace Velmar::Test
