// SPDX-License-Identifier: Apache-2.0
#include "host/pipelines/PipelineBus.h"

#include "host/pipelines/GstRef.h"

#include <gst/pbutils/pbutils.h>

namespace Velmar::Host {

PipelineBus::PipelineBus(QObject *parent)
    : QObject(parent)
{
}

PipelineBus::~PipelineBus()
{
    detach();
}

void PipelineBus::attach(GstElement *pipeline)
{
    detach();
    m_missing.clear();
    m_pipeline = GST_ELEMENT(gst_object_ref(pipeline));
    const ObjectRef<GstBus> bus(gst_element_get_bus(m_pipeline));
    gst_bus_set_sync_handler(bus.get(), handleMessage, this, nullptr);
}

void PipelineBus::detach()
{
    if (!m_pipeline)
        return;
    const ObjectRef<GstBus> bus(gst_element_get_bus(m_pipeline));
    gst_bus_set_sync_handler(bus.get(), nullptr, nullptr, nullptr);
    gst_object_unref(m_pipeline);
    m_pipeline = nullptr;
    m_watched = nullptr;
    m_hasFailed = nullptr;
}

void PipelineBus::watch(const GstElement *element, std::atomic<bool> *failed)
{
    m_watched = element;
    m_hasFailed = failed;
}

QString PipelineBus::noVideoText(const QString &source) const
{
    return m_missing.isEmpty()
        ? QStringLiteral("%1: is not a video: it holds no picture").arg(source)
        : QStringLiteral("%1: cannot be decoded; not installed: %2")
              .arg(source, m_missing.join(QStringLiteral(", ")));
}

GstBusSyncReply PipelineBus::handleMessage(GstBus *, GstMessage *message, gpointer user)
{
    auto *self = static_cast<PipelineBus *>(user);
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR && self->m_hasFailed
        && GST_MESSAGE_SRC(message) == GST_OBJECT_CAST(self->m_watched))
        *self->m_hasFailed = true;
    switch (GST_MESSAGE_TYPE(message)) {
    case GST_MESSAGE_ERROR:
    case GST_MESSAGE_EOS:
    case GST_MESSAGE_ELEMENT:
        QMetaObject::invokeMethod(
            self, [self, held = shareMessage(message)] { self->onMessage(held.get()); },
            Qt::QueuedConnection);
        break;
    default:
        break;
    }
    gst_message_unref(message); // a handler that drops a message owns it
    return GST_BUS_DROP;
}

void PipelineBus::onMessage(GstMessage *message)
{
    if (!m_pipeline)
        return;
    if (gst_is_missing_plugin_message(message)) {
        const GStringRef text(gst_missing_plugin_message_get_description(message));
        const QString description = QString::fromUtf8(text.get());
        if (!m_missing.contains(description))
            m_missing.append(description);
    } else if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) {
        Q_EMIT failed(message);
    } else if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS) {
        Q_EMIT ended();
    }
}

} // namespace Velmar::Host
