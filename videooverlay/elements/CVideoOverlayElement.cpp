// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/elements/CVideoOverlayElement.h"

#include "videooverlay/ToInt_p.h"
#include "videooverlay/display/VideoOverlaySettings.h"

#include <QEvent>
#include <QMutexLocker>

#include <utility>

namespace Velmar::VideoOverlay {

CVideoOverlayElement::CVideoOverlayElement(QObject *parent)
    : QObject(parent)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &CVideoOverlayElement::handleTimeout);
}

CVideoOverlayElement::~CVideoOverlayElement() = default;

CVideoOverlayElement::EditLock::EditLock(CVideoOverlayElement *element)
    : m_group(element->m_groupMutex)
    , m_own(&element->m_mutex)
    , m_element(element)
{
    ++m_element->m_runningEdits;
}

CVideoOverlayElement::EditLock::~EditLock()
{
    m_element->endUse();
}

CVideoOverlayElement::Use::Use(CVideoOverlayElement &element)
    : m_element(&element)
{
    QMutexLocker lock(&m_element->m_mutex);
    ++m_element->m_runningEdits;
}

CVideoOverlayElement::Use::~Use()
{
    if (!m_element)
        return;
    QMutexLocker lock(&m_element->m_mutex);
    m_element->endUse();
}

bool CVideoOverlayElement::isBusy() const
{
    QMutexLocker lock(&m_mutex);
    return m_runningEdits > 0;
}

void CVideoOverlayElement::endUse()
{
    if (--m_runningEdits == 0 && std::exchange(m_deleteWhenIdle, false))
        deleteLater();
}

bool CVideoOverlayElement::event(QEvent *event)
{
    if (event->type() == QEvent::DeferredDelete) {
        QMutexLocker lock(&m_mutex);
        if (m_runningEdits > 0) {
            m_deleteWhenIdle = true;
            return true;
        }
    }
    return QObject::event(event);
}

double CVideoOverlayElement::height()
{
    QMutexLocker lock(&m_mutex);
    return m_height;
}

double CVideoOverlayElement::width()
{
    QMutexLocker lock(&m_mutex);
    return m_width;
}

QString CVideoOverlayElement::unit()
{
    return QString();
}

void CVideoOverlayElement::setUnit(const QString &unit)
{
    Q_UNUSED(unit)
}

void CVideoOverlayElement::renderInto(QImage &image) const
{
    Q_UNUSED(image)
}

RenderedElement CVideoOverlayElement::getElement() const
{
    QMutexLocker lock(&m_mutex);
    return RenderedElement(m_id, m_type, m_x, m_y, visible());
}

ElementParam CVideoOverlayElement::getAllProperties() const
{
    QMutexLocker lock(&m_mutex);
    ElementParam all = m_params;
    const ElementParam changed = getChangedProperties();
    // Not QHash::unite: it would keep both values of a key.
    for (auto it = changed.cbegin(); it != changed.cend(); ++it)
        all.insert(it.key(), it.value());
    return all;
}

ElementParam CVideoOverlayElement::getChangedProperties() const
{
    QMutexLocker lock(&m_mutex);
    ElementParam changed;
    const auto compareInt = [&](const QString &key, int live) {
        if (m_params.value(key).toInt() != live)
            changed.insert(key, live);
    };
    const auto compareBool = [&](const QString &key, bool live) {
        if (m_params.value(key).toBool() != live)
            changed.insert(key, live);
    };
    compareInt(QStringLiteral("col"), m_column);
    compareInt(QStringLiteral("row"), m_row);
    compareBool(QStringLiteral("enabled"), m_enabled);
    compareInt(QStringLiteral("timeout"), m_timeout);
    compareBool(QStringLiteral("captionEnabled"), m_captionVisible);
    compareInt(QStringLiteral("maxLineNumber"), m_maxLineNumber);
    return changed;
}

void CVideoOverlayElement::applyChangesToOrigParams()
{
    const EditLock lock(this);
    m_params = getAllProperties();
}

int CVideoOverlayElement::id() const
{
    QMutexLocker lock(&m_mutex);
    return m_id;
}

void CVideoOverlayElement::setId(int id)
{
    const EditLock lock(this);
    if (m_id == id)
        return;
    m_id = id;
    Q_EMIT idChanged();
}

int CVideoOverlayElement::row() const
{
    QMutexLocker lock(&m_mutex);
    return m_row;
}

void CVideoOverlayElement::setRow(int row)
{
    const EditLock lock(this);
    if (m_row == row)
        return;
    m_row = row;
    Q_EMIT rowChanged();
}

int CVideoOverlayElement::column() const
{
    QMutexLocker lock(&m_mutex);
    return m_column;
}

void CVideoOverlayElement::setColumn(int column)
{
    const EditLock lock(this);
    if (m_column == column)
        return;
    m_column = column;
    Q_EMIT columnChanged();
}

double CVideoOverlayElement::x() const
{
    QMutexLocker lock(&m_mutex);
    return m_x;
}

double CVideoOverlayElement::y() const
{
    QMutexLocker lock(&m_mutex);
    return m_y;
}

int CVideoOverlayElement::wholeX() const
{
    return toInt(x());
}

int CVideoOverlayElement::wholeY() const
{
    return toInt(y());
}

void CVideoOverlayElement::setPosition(double x, double y)
{
    m_x = x;
    m_y = y;
}

void CVideoOverlayElement::setHeight(double height)
{
    const EditLock lock(this);
    if (m_height == height)
        return;
    m_height = height;
    Q_EMIT heightChanged();
}

void CVideoOverlayElement::setWidth(double width)
{
    const EditLock lock(this);
    if (m_width == width)
        return;
    m_width = width;
    Q_EMIT widthChanged();
}

bool CVideoOverlayElement::visible() const
{
    QMutexLocker lock(&m_mutex);
    return m_enabled && m_visible && !m_temporaryHide;
}

void CVideoOverlayElement::setVisible(bool visible)
{
    const EditLock lock(this);
    if (m_visible == visible)
        return;
    m_visible = visible;
    if (visible)
        startTimer();
    else
        stopTimer();
    Q_EMIT visibleChanged();
}

bool CVideoOverlayElement::enabled() const
{
    QMutexLocker lock(&m_mutex);
    return m_enabled;
}

void CVideoOverlayElement::setEnabled(bool enabled)
{
    const EditLock lock(this);
    if (m_enabled == enabled)
        return;
    m_enabled = enabled;
    determineVisibility();
    Q_EMIT enabledChanged();
    Q_EMIT visibleChanged();
}

bool CVideoOverlayElement::captionVisible() const
{
    QMutexLocker lock(&m_mutex);
    return m_captionVisible;
}

void CVideoOverlayElement::setCaptionVisible(bool visible)
{
    const EditLock lock(this);
    if (m_captionVisible == visible)
        return;
    m_captionVisible = visible;
    Q_EMIT captionVisibleChanged();
}

QString CVideoOverlayElement::caption() const
{
    QMutexLocker lock(&m_mutex);
    return m_caption;
}

void CVideoOverlayElement::setCaption(const QString &caption)
{
    const EditLock lock(this);
    if (m_caption == caption)
        return;
    m_caption = caption;
    Q_EMIT captionChanged();
}

CVideoOverlayElement::Type CVideoOverlayElement::type() const
{
    QMutexLocker lock(&m_mutex);
    return m_type;
}

void CVideoOverlayElement::setType(Type type)
{
    const EditLock lock(this);
    m_type = type;
    Q_EMIT typeChanged();
}

int CVideoOverlayElement::timeout() const
{
    QMutexLocker lock(&m_mutex);
    return m_timeout;
}

void CVideoOverlayElement::setTimeout(int timeoutSeconds)
{
    const EditLock lock(this);
    if (m_timeout == timeoutSeconds)
        return;
    m_timeout = timeoutSeconds;
    determineVisibility();
    Q_EMIT timeoutChanged();
}

bool CVideoOverlayElement::timeoutDisabled() const
{
    QMutexLocker lock(&m_mutex);
    return m_timeoutDisabled;
}

void CVideoOverlayElement::setTimeoutDisabled(bool disabled)
{
    const EditLock lock(this);
    if (m_timeoutDisabled == disabled)
        return;
    m_timeoutDisabled = disabled;
    Q_EMIT timeoutDisabledChanged();
}

int CVideoOverlayElement::getMaxLineNumber() const
{
    QMutexLocker lock(&m_mutex);
    return m_maxLineNumber;
}

void CVideoOverlayElement::setMaxLineNumber(int lines)
{
    const EditLock lock(this);
    if (m_maxLineNumber == lines)
        return;
    m_maxLineNumber = lines;
    Q_EMIT maxlinenumberChanged();
}

int CVideoOverlayElement::transparency() const
{
    QMutexLocker lock(&m_mutex);
    return m_transparency;
}

void CVideoOverlayElement::setTransparency(int transparency)
{
    const EditLock lock(this);
    if (m_transparency == transparency)
        return;
    m_transparency = transparency;
    Q_EMIT transparencyChanged();
}

bool CVideoOverlayElement::canDelete() const
{
    QMutexLocker lock(&m_mutex);
    const auto it = m_params.constFind(QStringLiteral("canDelete"));
    return it == m_params.cend() || it->toBool();
}

void CVideoOverlayElement::setTemporaryHide(bool hide)
{
    const EditLock lock(this);
    m_temporaryHide = hide;
    Q_EMIT visibleChanged();
}

VideoOverlaySettings *CVideoOverlayElement::settings() const
{
    QMutexLocker lock(&m_mutex);
    return m_settings;
}

QSize CVideoOverlayElement::pixelSize() const
{
    QMutexLocker lock(&m_mutex);
    return QSize(toInt(m_width), toInt(m_height));
}

void CVideoOverlayElement::setSettings(VideoOverlaySettings *settings)
{
    const EditLock lock(this);
    if (m_settings == settings)
        return;
    if (m_settings) // whatever followed the old grid stops doing so
        disconnect(m_settings, nullptr, this, nullptr);
    m_settings = settings;
    Q_EMIT settingsChanged();
}

void CVideoOverlayElement::setParamObject(const ElementParam &param)
{
    QMutexLocker lock(&m_mutex);
    m_params = param;
}

ElementParam CVideoOverlayElement::getParamObject() const
{
    QMutexLocker lock(&m_mutex);
    return m_params;
}

ElementParam &CVideoOverlayElement::getParamObjectRef()
{
    QMutexLocker lock(&m_mutex);
    return m_params;
}

void CVideoOverlayElement::storeParam(const QString &key, const QVariant &value)
{
    QMutexLocker lock(&m_mutex);
    m_params.insert(key, value);
}

} // namespace Velmar::VideoOverlay
