// SPDX-License-Identifier: Apache-2.0
#include "host/display/OverlayScene.h"

#include <QMetaObject>
#include <QPainter>
#include <QtMath>

#include <algorithm>
#include <atomic>

namespace Velmar::Host {

using VideoOverlay::CVideoOverlayElement;
using VideoOverlay::RenderedElement;

namespace {

constexpr int columns = 54;
constexpr int rows = 27;

/// One sequence for all scenes, so that a view can tell pictures apart without knowing whose they
/// are.
quint64 nextRevision()
{
    static std::atomic<quint64> revision {0};
    return ++revision;
}

/// Video stores colour for two lines and columns together: a box that starts between them tints its
/// neighbours. So pictures stand on even pixels, in every view alike.
int evenPixel(double position)
{
    // A profile may name any column. From here on one place is as far off as another, and the
    // picture that stands there can still be measured.
    constexpr double farthest = 1 << 29;
    return 2 * qRound(std::clamp(position, -farthest, farthest) / 2.0);
}

/// The smallest rectangle between even pixels that holds @p margins.
QRect evenRect(const QRectF &margins)
{
    const QPoint topLeft(2 * qFloor(margins.left() / 2.0), 2 * qFloor(margins.top() / 2.0));
    const QPoint end(2 * qCeil(margins.right() / 2.0), 2 * qCeil(margins.bottom() / 2.0));
    return QRect(topLeft, end - QPoint(1, 1));
}

/// Only texts follow the transparency setting; pictures bring their own alpha.
int opacityOf(const CVideoOverlayElement &element)
{
    switch (element.type()) {
    case CVideoOverlayElement::FreePicture:
    case CVideoOverlayElement::Watermark:
        return 255;
    default:
        return qRound(255 * (100 - std::clamp(element.transparency(), 0, 100)) / 100.0);
    }
}

} // namespace

SceneCapabilities::SceneCapabilities(QSize imageSize, QObject *parent)
    : CAbstractVideoOverlayCapabilitiesBackend(parent)
    , m_imageSize(imageSize)
{
}

int SceneCapabilities::maximumColumnCount()
{
    return columns;
}

int SceneCapabilities::maximumRowCount()
{
    return rows;
}

int SceneCapabilities::imageWidth()
{
    return m_imageSize.width();
}

int SceneCapabilities::imageHeight()
{
    return m_imageSize.height();
}

void SceneCapabilities::setImageSize(QSize imageSize)
{
    const QSize old = std::exchange(m_imageSize, imageSize);
    if (old.width() != imageSize.width())
        Q_EMIT imageWidthChanged();
    if (old.height() != imageSize.height())
        Q_EMIT imageHeightChanged();
}

OverlayScene::OverlayScene(QSize imageSize, QObject *parent)
    : CAbstractVideoOverlayControlBackend(parent)
    , m_capabilities(imageSize)
    , m_snapshot(std::make_shared<OverlaySnapshot>())
{
}

OverlayScene::~OverlayScene() = default;

SceneCapabilities &OverlayScene::capabilities()
{
    return m_capabilities;
}

void OverlayScene::start()
{
    if (m_ready)
        return;
    m_ready = true;
    Q_EMIT initialized();
}

void OverlayScene::stop()
{
    if (!m_ready)
        return;
    m_ready = false;
    clear();
    publish();
    Q_EMIT finalized();
}

bool OverlayScene::isReady()
{
    return m_ready;
}

bool OverlayScene::isActive()
{
    return m_ready && m_capabilities.imageWidth() > 0 && m_capabilities.imageHeight() > 0;
}

bool OverlayScene::displayElement(CVideoOverlayElement &element)
{
    Entry &entry = m_entries[&element];
    if (!entry.element) {
        // Also at the address of one that died: its entry left with it.
        entry.element = &element;
        connect(&element, &QObject::destroyed, this, [this, key = &element] { forget(key); });
    }
    if (entry.markedAt < 0) {
        entry.markedAt = m_marked.size();
        m_marked.append(&element);
        requestFlush();
    }
    return true;
}

bool OverlayScene::deleteElement(CVideoOverlayElement &element)
{
    if (!m_entries.contains(&element))
        return false;
    disconnect(&element, nullptr, this, nullptr);
    forget(&element);
    return true;
}

void OverlayScene::setPaintMargins(const QRectF &margins)
{
    if (m_margins == margins)
        return;
    m_margins = margins;
    m_changed = true;
    requestFlush();
}

bool OverlayScene::videoOverlayEnabled()
{
    return m_enabled;
}

void OverlayScene::setVideoOverlayEnabled(bool enabled)
{
    if (m_enabled == enabled)
        return;
    m_enabled = enabled;
    m_changed = true;
    requestFlush();
    Q_EMIT videoOverlayEnabledChanged();
}

void OverlayScene::prepareOverlay()
{
    clear(); // nothing of an earlier run of the display comes back
    requestFlush();
}

void OverlayScene::flush()
{
    m_flushQueued = false;
    // Taking a picture calls into the element only, which cannot mark another one.
    QVector<Entry *> changed;
    for (CVideoOverlayElement *key : qAsConst(m_marked)) {
        Entry *const entry = key ? &m_entries[key] : nullptr;
        if (entry && take(*entry) && entry->shownAt >= 0)
            changed.append(entry);
    }
    m_marked.clear();
    if (m_changed)
        publish();
    else if (!changed.isEmpty())
        publishChanged(changed);
}

OverlaySnapshotPtr OverlayScene::snapshot() const
{
    const std::lock_guard lock(m_snapshotMutex);
    return m_snapshot;
}

OverlaySnapshotPtr OverlayScene::overlayAt(qint64 streamTimeNs)
{
    Q_UNUSED(streamTimeNs) // a live display shows what is newest
    return snapshot();
}

void OverlayScene::paint(QImage &picture) const
{
    paint(picture, *snapshot());
}

void OverlayScene::paint(QImage &picture, const OverlaySnapshot &overlay)
{
    if (picture.isNull() || overlay.items.isEmpty())
        return;
    QPainter painter(&picture);
    if (!overlay.clip.isNull())
        painter.setClipRect(overlay.clip);
    for (const OverlayItem &item : overlay.items) {
        painter.setOpacity(item.opacity / 255.0);
        painter.drawImage(item.position, item.image);
    }
}

CVideoOverlayElement *OverlayScene::elementOfType(CVideoOverlayElement::Type type) const
{
    for (const Entry &entry : m_entries) {
        if (entry.element && entry.element->type() == type)
            return entry.element;
    }
    return nullptr;
}

quint64 OverlayScene::renderCount() const
{
    return m_renderCount;
}

void OverlayScene::requestFlush()
{
    if (m_flushQueued)
        return;
    m_flushQueued = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (m_flushQueued) // not when somebody could not wait
                flush();
        },
        Qt::QueuedConnection);
}

void OverlayScene::forget(CVideoOverlayElement *element)
{
    const auto found = m_entries.find(element);
    if (found == m_entries.end())
        return;
    if (found->markedAt >= 0)
        m_marked[found->markedAt] = nullptr; // the others keep their places
    m_entries.erase(found);
    m_changed = true;
    requestFlush();
}

void OverlayScene::clear()
{
    for (auto it = m_entries.cbegin(); it != m_entries.cend(); ++it)
        disconnect(it.key(), nullptr, this, nullptr);
    m_entries.clear();
    m_marked.clear();
    m_changed = true;
}

bool OverlayScene::take(Entry &entry)
{
    entry.markedAt = -1;
    const CVideoOverlayElement &element = *entry.element;
    const bool visible = element.visible();
    m_changed |= visible != entry.visible;
    entry.visible = visible;
    if (!visible)
        return false; // shown again, it is announced again

    const RenderedElement rendered = element.getElement();
    ++m_renderCount;
    OverlayItem item = entry.item;
    item.id = rendered.id();
    item.position = QPoint(evenPixel(rendered.x()), evenPixel(rendered.y()));
    item.opacity = opacityOf(element);
    const QImage image = rendered.getImage();
    if (rendered.repaint() && image.cacheKey() != entry.sourceKey) {
        entry.sourceKey = image.cacheKey();
        const QImage finished = image.convertToFormat(QImage::Format_ARGB32);
        // A text draws a new picture each time, often of the same letters.
        if (finished != item.image) {
            item.image = finished;
            item.revision = nextRevision();
        }
    }
    if (item == entry.item)
        return false;
    m_changed |= item.id != entry.item.id; // it has another place among the others
    entry.item = item;
    m_changed |= isShown(entry) != (entry.shownAt >= 0);
    return true;
}

bool OverlayScene::isShown(const Entry &entry) const
{
    return m_ready && m_enabled && entry.visible && !entry.item.image.isNull()
        && entry.item.opacity > 0;
}

void OverlayScene::publishChanged(const QVector<Entry *> &changed)
{
    auto next = std::make_shared<OverlaySnapshot>(*snapshot());
    for (const Entry *entry : changed)
        next->items[entry->shownAt] = entry->item;
    next->revision = nextRevision();
    {
        const std::lock_guard lock(m_snapshotMutex);
        m_snapshot = std::move(next);
    }
    Q_EMIT published();
}

void OverlayScene::publish()
{
    m_changed = false;
    auto next = std::make_shared<OverlaySnapshot>();
    QVector<Entry *> shown;
    for (Entry &entry : m_entries) {
        entry.shownAt = -1;
        if (isShown(entry))
            shown.append(&entry);
    }
    // Elements are painted in the order in which they were made: their ids count up.
    std::sort(shown.begin(), shown.end(),
              [](const Entry *a, const Entry *b) { return a->item.id < b->item.id; });
    next->items.reserve(shown.size());
    for (Entry *entry : qAsConst(shown)) {
        entry->shownAt = next->items.size();
        next->items.append(entry->item);
    }
    if (!m_margins.isEmpty())
        next->clip = evenRect(m_margins);
    {
        const std::lock_guard lock(m_snapshotMutex);
        if (m_snapshot->items == next->items && m_snapshot->clip == next->clip)
            return;
        next->revision = nextRevision();
        m_snapshot = std::move(next);
    }
    Q_EMIT published();
}

} // namespace Velmar::Host
