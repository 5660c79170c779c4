// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/xqvideooverlay_export.h"

#include <QFont>
#include <QMutex>
#include <QObject>
#include <QRectF>
#include <QString>

namespace Velmar::VideoOverlay {

class CVideoOverlayCapabilities;

/// The grid of character cells, centred in the video picture, on which the elements stand: column
/// and row count, picture size and font, and the cell size and margins that follow from them.
/// Lengths are pixels of the picture. A refused value changes nothing. Changed in the GUI thread;
/// may be read in others, each value for itself.
class XQVIDEOOVERLAY_EXPORT VideoOverlaySettings : public QObject
{
    Q_OBJECT
public:
    /// Takes the picture size from @p capabilities, which is not owned and must outlive this
    /// object. A substituted overlay font is logged.
    explicit VideoOverlaySettings(CVideoOverlayCapabilities &capabilities,
                                  QObject *parent = nullptr);
    ~VideoOverlaySettings() override;

    /// The font of the grid; its advance is the width of a cell.
    QFont font() const;
    double
    leftMargin() const;       ///< left edge of the grid; negative when it is wider than the picture
    double topMargin() const; ///< top edge of the grid; negative when it is taller than the picture
    double colWidth() const;  ///< width of one cell; 0 before there is a picture
    double rowHeight() const; ///< height of one cell; 0 before there is a picture
    int width() const;        ///< of the picture
    int height() const;       ///< of the picture
    QRectF marginRect() const; ///< the area that the grid covers

    /// Stores both counts as soon as @e one of them is within the display's limits, which lets a
    /// valid row count carry any column count with it and the other way round. Kept so.
    /// False, and nothing changes, when neither is; otherwise the grid is computed and
    /// settingsChanged emitted, also for the counts that it has.
    bool setGrid(int rows, int columns);
    /// The same rule, and the same signal, for the picture size [px].
    bool setResolution(int width, int height);
    /// Refuses a font that does not ask for fixed pitch. True for the current font, without a
    /// signal; another one is taken and settingsChanged emitted.
    bool setFont(const QFont &font);
    /// Takes the picture size from the capabilities; computes and announces nothing.
    void applyVideoSettings();

Q_SIGNALS:
    /// Cell size and margins were computed, changed or not; also while there is no picture, when
    /// they stay as they were.
    void settingsChanged();
    /// A limit of the display was enforced. Not logged as well.
    void settingsError(QString errMsg);

public Q_SLOTS:
    /// Computes cell size and margins and emits settingsChanged, always.
    void calculateSettings();
    /// Takes the new picture size and lowers the counts that the display no longer allows:
    /// settingsError for each, then settingsChanged, always.
    void onCapabilitiesChanged();

private:
    /// Whether it was larger.
    bool lower(int &count, int maximum);

    CVideoOverlayCapabilities &m_capabilities;
    int m_columns = 54;
    int m_rows = 27;
    int m_width = 0;
    int m_height = 0;
    QFont m_font;
    double m_colWidth = 0.0;
    double m_rowHeight = 0.0;
    double m_leftMargin = 0.0;
    double m_topMargin = 0.0;
    /// Guards every field above. Held for nothing else: not while the display is asked, and not
    /// while a signal is emitted, because receivers take locks that come before this one.
    mutable QMutex m_mutex;
};

} // namespace Velmar::VideoOverlay
