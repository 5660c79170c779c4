// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/elements/CVideoOverlayElement.h"
#include "videooverlay/xqvideooverlay_export.h"

#include <QColor>
#include <QFont>
#include <QFontMetrics>
#include <QStringList>

namespace Velmar::VideoOverlay {

/// A text box over the video: breaks its text into lines that end at the grid's right margin, takes
/// its size from them and paints each line into a box of its own. The font comes from the grid.
class XQVIDEOOVERLAY_EXPORT CVideoOverlayText : public CVideoOverlayElement
{
    Q_OBJECT
    // clang-format off
    /// The whole text, paragraphs separated by line feeds.
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    /// Colour of the letters, with its own alpha.
    Q_PROPERTY(QColor textColor READ textColor WRITE setTextColor NOTIFY textColorChanged)
    /// Colour of the box behind each line, with its own alpha.
    Q_PROPERTY(QColor backgroundColor READ backgroundColor WRITE setBackgroundColor NOTIFY backgroundColorChanged)
    /// The font, taken from the grid.
    Q_PROPERTY(QFont font READ font NOTIFY fontChanged)
    // clang-format on

public:
    /// An empty text in the default font, without colours.
    explicit CVideoOverlayText(QObject *parent = nullptr);
    ~CVideoOverlayText() override;

    QString unit() override;
    void setUnit(const QString &unit) override;
    /// As renderText().
    void renderInto(QImage &image) const override;
    /// The element with a new picture of width x height pixels, ARGB32 with straight alpha. Null,
    /// and a line in the log when it begins, while that would take more than 512 MiB.
    RenderedElement getElement() const override;
    ElementParam getAllProperties() const override;
    /// The text counts only while no data column is bound to the element.
    ElementParam getChangedProperties() const override;

    QString text() const; ///< paragraphs separated by line feeds
    /// Typesets, so that widthChanged and heightChanged may come before textChanged; inside
    /// widthChanged the old height still stands.
    void setText(const QString &text);
    QColor textColor() const;       ///< invalid, painted as black, until set
    QColor backgroundColor() const; ///< invalid, painted as black, until set
    /// The default font until onSettingsChanged() takes the grid's.
    QFont font() const;
    int alignment() const; ///< Qt::Alignment flags as a number; 1 (left) at first

    /// "LEFT", "RIGHT" or "CENTER", to the letter; anything else is left.
    /// Always emits alignmentChanged.
    void setAlignment(const QString &alignment);

    /// Follows the grid's font from now on and takes it at once; calling it again does not follow
    /// twice. Does nothing without a grid.
    void onSettingsChanged();
    /// Takes the grid's font and emits fontChanged, always. Does not typeset: the lines stay as
    /// they were broken until the text changes or typeset() is called.
    void updateFontsFromSettings();

    /// Paints the lines into @p image: what lies outside the boxes becomes transparent green, every
    /// line stands on a box of the background colour, empty lines keep their row without a box.
    /// ARGB32 gets correct straight alpha for every pair of colours. An empty text, or an image
    /// that cannot be painted on, leaves a null image.
    void renderText(QImage &image) const;

Q_SIGNALS:
    /// Another text, typeset already.
    void textChanged();
    /// Repeats the base's, as columnChanged, visibleChanged and idChanged do: the base's setters
    /// emit theirs and this class passes them on. Connecting to either counts every change once.
    void rowChanged();
    /// The grid's font was taken, another one or not.
    void fontChanged();
    void columnChanged();  ///< as rowChanged
    void visibleChanged(); ///< as rowChanged
    /// Another colour of the boxes.
    void backgroundColorChanged(QColor newColor);
    /// Another colour of the letters.
    void textColorChanged(QColor newColor);
    void idChanged(); ///< as rowChanged
    /// The alignment was set, to another one or not.
    void alignmentChanged();

public Q_SLOTS:
    /// Emits backgroundColorChanged when it differs.
    void setBackgroundColor(QColor newColor);
    /// Emits textColorChanged when it differs.
    void setTextColor(QColor newColor);
    /// Breaks the text into lines and sets width and height from them. Without a grid the
    /// paragraphs stay whole and the height is 0.
    void typeset();

private:
    QImage newPicture() const; ///< of this size, nothing painted; null when there is none

    QString m_text;
    QStringList m_lines;
    QString m_unit;
    QColor m_textColor;
    QColor m_backgroundColor;
    QFont m_font;
    QFontMetrics m_fontMetrics {m_font};
    int m_alignment = Qt::AlignLeft;
    QMetaObject::Connection m_gridConnection; ///< following the font of the grid
    mutable bool m_isTooLarge = false;        ///< for a picture, which was logged
};

} // namespace Velmar::VideoOverlay
