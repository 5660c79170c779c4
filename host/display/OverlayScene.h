// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/display/OverlaySnapshot.h"

#include <videooverlay/display/CAbstractVideoOverlayCapabilitiesBackend.h>
#include <videooverlay/display/CAbstractVideoOverlayControlBackend.h>
#include <videooverlay/elements/CVideoOverlayElement.h>

#include <QHash>
#include <QPointer>
#include <QRectF>
#include <QSize>
#include <QVector>

#include <mutex>

namespace Velmar::Host {

/// Tells the library what this display allows: 54 x 27 cells on a picture of a given size.
class SceneCapabilities : public VideoOverlay::CAbstractVideoOverlayCapabilitiesBackend
{
    Q_OBJECT
public:
    explicit SceneCapabilities(QSize imageSize, QObject *parent = nullptr);

    int maximumColumnCount() override;
    int maximumRowCount() override;
    int imageWidth() override;
    int imageHeight() override;

    /// Announces the sides that changed, once both are stored.
    void setImageSize(QSize imageSize);

private:
    QSize m_imageSize;
};

/// The reference display: a table of finished pictures that any number of views read, in any
/// thread.
///
/// An element that is announced is only marked; its picture is taken once per turn of the event
/// loop, because one change of a text is announced up to three times. A hidden element costs
/// nothing until it is shown. What is shown is published as an immutable snapshot.
class OverlayScene : public VideoOverlay::CAbstractVideoOverlayControlBackend, public OverlaySource
{
    Q_OBJECT
public:
    explicit OverlayScene(QSize imageSize, QObject *parent = nullptr);
    ~OverlayScene() override;

    SceneCapabilities &capabilities();

    /// The display comes up and says so, or goes down and says so.
    void start();
    void stop();

    bool isReady() override;
    bool isActive() override;
    bool displayElement(VideoOverlay::CVideoOverlayElement &element) override;
    bool deleteElement(VideoOverlay::CVideoOverlayElement &element) override;
    void setPaintMargins(const QRectF &margins) override;
    bool videoOverlayEnabled() override;
    void setVideoOverlayEnabled(bool enabled) override;
    void prepareOverlay() override;

    /// Takes the pictures of all marked elements and publishes them now, instead of at the next
    /// turn of the event loop. For callers that need the overlay of an exact moment. GUI thread
    /// only.
    void flush();

    /// What is shown now. Callable from every thread; never null.
    OverlaySnapshotPtr snapshot() const;
    OverlaySnapshotPtr overlayAt(qint64 streamTimeNs) override;

    /// Draws what is shown now onto @p picture.
    void paint(QImage &picture) const;
    static void paint(QImage &picture, const OverlaySnapshot &overlay);

    /// One of the elements that were announced and not deleted since; null when there is none. For
    /// elements that their manager does not hand out. GUI thread only.
    VideoOverlay::CVideoOverlayElement *
    elementOfType(VideoOverlay::CVideoOverlayElement::Type type) const;

    quint64 renderCount() const; ///< pictures taken from elements so far

Q_SIGNALS:
    void published(); ///< snapshot() is another one now

private:
    /// What the table keeps of one element.
    struct Entry
    {
        QPointer<VideoOverlay::CVideoOverlayElement> element;
        bool marked = false; ///< its picture must be taken
        bool visible = false;
        qint64 sourceKey = 0; ///< tells whether a picture element still hands out the same picture
        OverlayItem item;
    };

    void requestFlush();
    void forget(VideoOverlay::CVideoOverlayElement *element);
    void clear();
    void take(Entry &entry);
    void publish();

    SceneCapabilities m_capabilities;
    bool m_ready = false;
    bool m_enabled = false;
    bool m_flushQueued = false;
    bool m_changed = false; ///< what is published may no longer be what is shown
    QRectF m_margins;
    quint64 m_renderCount = 0;
    QHash<VideoOverlay::CVideoOverlayElement *, Entry> m_entries;
    QVector<VideoOverlay::CVideoOverlayElement *> m_marked; ///< keys of the marked entries

    mutable std::mutex m_snapshotMutex; ///< guards the pointer below, not what it points to
    OverlaySnapshotPtr m_snapshot;
};

} // namespace Velmar::Host
