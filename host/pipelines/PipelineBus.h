// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <gst/gst.h>

#include <atomic>

namespace Velmar::Host {

/// What a pipeline has to say, brought from its threads to the one this lives in, whose event loop
/// delivers it: nobody needs to run GLib's.
class PipelineBus : public QObject
{
    Q_OBJECT
public:
    explicit PipelineBus(QObject *parent = nullptr);
    ~PipelineBus() override;

    /// From now on, until detach(). @p pipeline is kept alive that long.
    void attach(GstElement *pipeline);
    /// Nothing is announced any more, not even what waits already. To be called once the pipeline's
    /// threads have stopped.
    void detach();

    /// Sets @p failed at once, in the thread that reports it, when @p element reports an error. To
    /// be called before the pipeline starts; both must last until detach().
    void watch(const GstElement *element, std::atomic<bool> *failed);

    /// Descriptions of the plugins that were asked for in vain, each once.
    const QStringList &missingPlugins() const { return m_missing; }
    /// Why no video came from @p source, in one line.
    QString noVideoText(const QString &source) const;

Q_SIGNALS:
    void failed(GstMessage *error); ///< the message is there as long as the signal lasts
    void ended();                   ///< everything went through the pipeline

private:
    void onMessage(GstMessage *message);

    static GstBusSyncReply handleMessage(GstBus *bus, GstMessage *message, gpointer user);

    GstElement *m_pipeline = nullptr;         ///< a reference of ours; null: not attached
    const GstElement *m_watched = nullptr;    ///< not owned
    std::atomic<bool> *m_hasFailed = nullptr; ///< of that element; not owned
    QStringList m_missing;
};

} // namespace Velmar::Host
