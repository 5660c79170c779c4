// SPDX-License-Identifier: Apache-2.0
#include "host/burn/BurnElement.h"

#include <gst/base/base.h>
#include <gst/video/video-overlay-composition.h>
#include <gst/video/video.h>

#include <QImage>
#include <QtTest>

#include <atomic>
#include <mutex>
#include <stdexcept>

using namespace Velmar::Host;

namespace {

struct Unref
{
    void operator()(GstElement *element) const
    {
        gst_element_set_state(element, GST_STATE_NULL);
        gst_object_unref(element);
    }
    void operator()(GstSample *sample) const { gst_sample_unref(sample); }
};
using ElementPtr = std::unique_ptr<GstElement, Unref>;
using SamplePtr = std::unique_ptr<GstSample, Unref>;

/// Shows what it was given, and remembers the times at which it was asked.
class TestSource : public OverlaySource
{
public:
    void show(const QVector<OverlayItem> &items)
    {
        auto overlay = std::make_shared<OverlaySnapshot>();
        overlay->items = items;
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_overlay = overlay;
    }

    OverlaySnapshotPtr overlayAt(qint64 streamTimeNs) override
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_times.append(streamTimeNs);
        return m_overlay;
    }

    QVector<qint64> times() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_times;
    }

private:
    mutable std::mutex m_mutex;
    OverlaySnapshotPtr m_overlay = std::make_shared<OverlaySnapshot>();
    QVector<qint64> m_times;
};

class ThrowingSource : public OverlaySource
{
public:
    OverlaySnapshotPtr overlayAt(qint64) override { throw std::runtime_error("out of order"); }
};

OverlayItem box(int id, const QRect &rect, QRgb color, int opacity = 255)
{
    OverlayItem item;
    item.id = id;
    item.position = rect.topLeft();
    item.image = QImage(rect.size(), QImage::Format_ARGB32);
    item.image.fill(color);
    item.opacity = opacity;
    item.revision = quint64(id);
    return item;
}

/// A running pipeline and what came out of it: all buffers, held by the probe of its sink.
class Pipeline
{
public:
    explicit Pipeline(const char *description)
    {
        m_pipeline.reset(gst_parse_launch(description, nullptr));
        if (m_pipeline)
            m_burn.reset(gst_bin_get_by_name(GST_BIN(m_pipeline.get()), "burn"));
    }
    ~Pipeline()
    {
        if (m_pipeline)
            gst_element_set_state(m_pipeline.get(), GST_STATE_NULL);
        for (GstBuffer *buffer : qAsConst(m_buffers))
            gst_buffer_unref(buffer);
        if (m_caps)
            gst_caps_unref(m_caps);
    }
    Q_DISABLE_COPY(Pipeline)

    GstElement *burn() const { return m_burn.get(); }
    GstElement *element(const char *name) const // borrowed: the pipeline keeps it
    {
        GstElement *element = gst_bin_get_by_name(GST_BIN(m_pipeline.get()), name);
        gst_object_unref(element);
        return element;
    }

    /// Makes the sink say that it composes overlays itself.
    void announceComposition()
    {
        GstPad *pad = gst_element_get_static_pad(element("sink"), "sink");
        gst_pad_add_probe(
            pad, GST_PAD_PROBE_TYPE_QUERY_DOWNSTREAM,
            [](GstPad *, GstPadProbeInfo *info, gpointer) {
                GstQuery *query = GST_PAD_PROBE_INFO_QUERY(info);
                if (GST_QUERY_TYPE(query) != GST_QUERY_ALLOCATION)
                    return GST_PAD_PROBE_OK;
                gst_query_add_allocation_meta(query, GST_VIDEO_OVERLAY_COMPOSITION_META_API_TYPE,
                                              nullptr);
                return GST_PAD_PROBE_HANDLED;
            },
            nullptr, nullptr);
        gst_object_unref(pad);
    }

    /// Runs to the end of the stream. False after an error.
    bool run()
    {
        GstPad *pad = gst_element_get_static_pad(element("sink"), "sink");
        gst_pad_add_probe(
            pad, GST_PAD_PROBE_TYPE_BUFFER,
            [](GstPad *pad, GstPadProbeInfo *info, gpointer self) {
                auto *pipeline = static_cast<Pipeline *>(self);
                pipeline->m_buffers.append(gst_buffer_ref(GST_PAD_PROBE_INFO_BUFFER(info)));
                if (!pipeline->m_caps)
                    pipeline->m_caps = gst_pad_get_current_caps(pad);
                return GST_PAD_PROBE_OK;
            },
            this, nullptr);
        gst_object_unref(pad);
        gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING);
        GstBus *bus = gst_element_get_bus(m_pipeline.get());
        GstMessage *message = gst_bus_timed_pop_filtered(
            bus, 30 * GST_SECOND, GstMessageType(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
        const bool ended = message && GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS;
        if (message)
            gst_message_unref(message);
        gst_object_unref(bus);
        return ended;
    }

    const QVector<GstBuffer *> &buffers() const { return m_buffers; }
    GstCaps *caps() const { return m_caps; }

    /// One sample of a plane of buffer @p index.
    int sample(int index, int plane, int x, int y) const
    {
        GstVideoInfo info;
        GstVideoFrame frame;
        if (!gst_video_info_from_caps(&info, m_caps)
            || !gst_video_frame_map(&frame, &info, m_buffers.at(index), GST_MAP_READ))
            return -1;
        const auto *data = static_cast<const quint8 *>(GST_VIDEO_FRAME_PLANE_DATA(&frame, plane));
        const int value = data[y * GST_VIDEO_FRAME_PLANE_STRIDE(&frame, plane) + x];
        gst_video_frame_unmap(&frame);
        return value;
    }

private:
    ElementPtr m_pipeline;
    std::unique_ptr<GstElement, decltype(&gst_object_unref)> m_burn {nullptr, gst_object_unref};
    QVector<GstBuffer *> m_buffers;
    GstCaps *m_caps = nullptr;
};

bool isMarked(GstCaps *caps)
{
    return gst_caps_features_contains(gst_caps_get_features(caps, 0),
                                      GST_CAPS_FEATURE_META_GST_VIDEO_OVERLAY_COMPOSITION);
}

} // namespace

class tst_BurnElement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void burnsPixels_data();
    void burnsPixels();
    void streamTimes();
    void withoutSourceFramesPassUntouched();
    void hiddenOverlayCopiesNothing();
    void sharedFrameIsNotWrittenTo();
    void sourceCanBeTakenAway();
    void exceptionBecomesError();
    void otherFormatsAreRefused();
    void attachesComposition();
    void compositionIsKeptWhileNothingChanges();
    void markedCapsWithoutMetaAreBurned();
};

void tst_BurnElement::initTestCase()
{
    gst_init(nullptr, nullptr);
    QVERIFY(registerBurnElement());
}

void tst_BurnElement::burnsPixels_data()
{
    QTest::addColumn<QByteArray>("caps");
    QTest::addColumn<bool>("interleaved");
    QTest::addColumn<int>("y"); // of pure red
    QTest::addColumn<int>("u");
    QTest::addColumn<int>("v");
    const QByteArray hd("width=1280,height=720");
    const QByteArray sd("width=641,height=361");
    QTest::newRow("I420 hd") << "format=I420," + hd << false << 63 << 102 << 240;
    QTest::newRow("NV12 hd") << "format=NV12," + hd << true << 63 << 102 << 240;
    QTest::newRow("I420 sd") << "format=I420," + sd << false << 82 << 90 << 240;
    QTest::newRow("NV12 sd") << "format=NV12," + sd << true << 82 << 90 << 240;
    QTest::newRow("hd marked as 601")
        << "format=I420,colorimetry=bt601," + hd << false << 82 << 90 << 240;
    QTest::newRow("sd marked as 709")
        << "format=I420,colorimetry=bt709," + sd << false << 63 << 102 << 240;
    QTest::newRow("hd of unknown matrix")
        << "format=I420,colorimetry=2:0:0:0," + hd << false << 63 << 102 << 240;
    QTest::newRow("sd of unknown matrix")
        << "format=I420,colorimetry=2:0:0:0," + sd << false << 82 << 90 << 240;
    QTest::newRow("full range") << "format=I420,colorimetry=1:4:0:0," + sd << false << 76 << 85
                                << 255;
}

void tst_BurnElement::burnsPixels()
{
    QFETCH(QByteArray, caps);
    QFETCH(bool, interleaved);
    QFETCH(int, y);
    QFETCH(int, u);
    QFETCH(int, v);
    const QByteArray source = "videotestsrc num-buffers=3 pattern=black ! video/x-raw," + caps;
    const auto source2 = std::make_shared<TestSource>();
    source2->show({box(1, QRect(101, 51, 40, 20), 0xffff0000)});
    Pipeline plain((source + " ! fakesink name=sink").constData());
    Pipeline burned((source + " ! xqosdburn name=burn ! fakesink name=sink").constData());
    setOverlaySource(burned.burn(), source2);
    QVERIFY(plain.run());
    QVERIFY(burned.run());
    QCOMPARE(burned.buffers().size(), 3);
    for (int i = 0; i < 3; ++i) {
        QVERIFY(std::abs(burned.sample(i, 0, 101, 51) - y) <= 1);
        QVERIFY(std::abs(burned.sample(i, 0, 140, 70) - y) <= 1);
        QCOMPARE(burned.sample(i, 0, 100, 51), plain.sample(i, 0, 100, 51));
        QCOMPARE(burned.sample(i, 0, 141, 70), plain.sample(i, 0, 141, 70));
        QCOMPARE(burned.sample(i, 0, 101, 50), plain.sample(i, 0, 101, 50));
        QCOMPARE(burned.sample(i, 0, 101, 71), plain.sample(i, 0, 101, 71));
        QVERIFY(std::abs(burned.sample(i, 1, interleaved ? 120 : 60, 30) - u) <= 1);
        QVERIFY(std::abs(burned.sample(i, interleaved ? 1 : 2, interleaved ? 121 : 60, 30) - v)
                <= 1);
        QCOMPARE(burned.sample(i, 1, 20, 20), plain.sample(i, 1, 20, 20));
    }
}

void tst_BurnElement::streamTimes()
{
    const auto source = std::make_shared<TestSource>();
    Pipeline pipeline(
        "videotestsrc num-buffers=3 ! video/x-raw,framerate=25/1,width=64,height=64 ! "
        "xqosdburn name=burn ! fakesink name=sink");
    setOverlaySource(pipeline.burn(), source);
    QVERIFY(pipeline.run());
    QCOMPARE(source->times(), QVector<qint64>({0, 40000000, 80000000}));
}

void tst_BurnElement::withoutSourceFramesPassUntouched()
{
    Pipeline pipeline("videotestsrc num-buffers=2 pattern=white ! video/x-raw,width=64,height=64 ! "
                      "xqosdburn name=burn ! fakesink name=sink");
    QVERIFY(pipeline.run());
    QCOMPARE(pipeline.buffers().size(), 2);
    QCOMPARE(pipeline.sample(0, 0, 10, 10), 235);
}

namespace {

/// Remembers the buffers that go into the element, and keeps them from being writable.
void holdInputs(GstElement *burn, QVector<GstBuffer *> *inputs)
{
    GstPad *pad = gst_element_get_static_pad(burn, "sink");
    gst_pad_add_probe(
        pad, GST_PAD_PROBE_TYPE_BUFFER,
        [](GstPad *, GstPadProbeInfo *info, gpointer inputs) {
            static_cast<QVector<GstBuffer *> *>(inputs)->append(
                gst_buffer_ref(GST_PAD_PROBE_INFO_BUFFER(info)));
            return GST_PAD_PROBE_OK;
        },
        inputs, nullptr);
    gst_object_unref(pad);
}

} // namespace

/// Off the picture, fully transparent or empty: the very buffer that came in goes out.
void tst_BurnElement::hiddenOverlayCopiesNothing()
{
    const auto source = std::make_shared<TestSource>();
    source->show(
        {box(1, QRect(64, 0, 10, 10), 0xffffffff), box(2, QRect(0, 0, 10, 10), 0xffffffff, 0)});
    QVector<GstBuffer *> inputs;
    Pipeline pipeline("videotestsrc num-buffers=2 ! video/x-raw,width=64,height=64 ! "
                      "xqosdburn name=burn ! fakesink name=sink");
    setOverlaySource(pipeline.burn(), source);
    holdInputs(pipeline.burn(), &inputs);
    QVERIFY(pipeline.run());
    QCOMPARE(inputs, pipeline.buffers());
    for (GstBuffer *buffer : qAsConst(inputs))
        gst_buffer_unref(buffer);
}

void tst_BurnElement::sharedFrameIsNotWrittenTo()
{
    const auto source = std::make_shared<TestSource>();
    source->show({box(1, QRect(0, 0, 10, 10), 0xffffffff)});
    QVector<GstBuffer *> inputs;
    Pipeline pipeline("videotestsrc num-buffers=1 pattern=black ! "
                      "video/x-raw,format=I420,width=64,height=64 ! "
                      "xqosdburn name=burn ! fakesink name=sink");
    setOverlaySource(pipeline.burn(), source);
    holdInputs(pipeline.burn(), &inputs);
    QVERIFY(pipeline.run());
    QCOMPARE(inputs.size(), 1);
    QCOMPARE(pipeline.sample(0, 0, 5, 5), 235);
    quint8 first = 0;
    gst_buffer_extract(inputs.first(), 0, &first, 1);
    QCOMPARE(int(first), 16);
    gst_buffer_unref(inputs.first());
}

void tst_BurnElement::sourceCanBeTakenAway()
{
    auto source = std::make_shared<TestSource>();
    source->show({box(1, QRect(0, 0, 10, 10), 0xffffffff)});
    Pipeline pipeline("videotestsrc num-buffers=1 pattern=black ! "
                      "video/x-raw,format=I420,width=64,height=64 ! "
                      "xqosdburn name=burn ! fakesink name=sink");
    const std::weak_ptr<TestSource> watch = source;
    setOverlaySource(pipeline.burn(), std::move(source));
    QVERIFY(!watch.expired());
    setOverlaySource(pipeline.burn(), nullptr);
    QVERIFY(watch.expired());
    QVERIFY(pipeline.run());
    QCOMPARE(pipeline.sample(0, 0, 5, 5), 16);
}

void tst_BurnElement::exceptionBecomesError()
{
    Pipeline pipeline("videotestsrc num-buffers=1 ! video/x-raw,width=64,height=64 ! "
                      "xqosdburn name=burn ! fakesink name=sink");
    setOverlaySource(pipeline.burn(), std::make_shared<ThrowingSource>());
    QVERIFY(!pipeline.run());
}

void tst_BurnElement::otherFormatsAreRefused()
{
    Pipeline pipeline("videotestsrc num-buffers=1 ! xqosdburn name=burn ! fakesink name=sink");
    GstPad *pad = gst_element_get_static_pad(pipeline.burn(), "sink");
    const auto accepts = [pad](const char *text) {
        GstCaps *caps = gst_caps_from_string(text);
        const bool accepted = gst_pad_query_accept_caps(pad, caps);
        gst_caps_unref(caps);
        return accepted;
    };
    QVERIFY(accepts("video/x-raw,format=I420,width=64,height=64,framerate=25/1"));
    QVERIFY(accepts("video/x-raw,format=NV12,width=64,height=64,framerate=25/1"));
    QVERIFY(!accepts("video/x-raw,format=BGRA,width=64,height=64,framerate=25/1"));
    // An overlay that is attached already would be lost on a next element that cannot compose.
    QVERIFY(!accepts("video/x-raw(memory:SystemMemory,meta:GstVideoOverlayComposition),"
                     "format=I420,width=64,height=64,framerate=25/1"));
    gst_object_unref(pad);
}

void tst_BurnElement::attachesComposition()
{
    const auto source = std::make_shared<TestSource>();
    source->show(
        {box(1, QRect(-4, 6, 20, 10), 0x80ff2040), box(2, QRect(30, 40, 8, 4), 0xff00ff00, 51)});
    QVector<GstBuffer *> inputs;
    Pipeline pipeline("videotestsrc num-buffers=2 pattern=black ! "
                      "video/x-raw,format=I420,width=64,height=64 ! "
                      "xqosdburn name=burn ! fakesink name=sink");
    setOverlaySource(pipeline.burn(), source);
    holdInputs(pipeline.burn(), &inputs);
    pipeline.announceComposition();
    QVERIFY(pipeline.run());
    QVERIFY(isMarked(pipeline.caps()));

    // The pixels are those that came in: not only equal, the same memory.
    QCOMPARE(gst_buffer_peek_memory(pipeline.buffers().first(), 0),
             gst_buffer_peek_memory(inputs.first(), 0));
    QCOMPARE(pipeline.sample(0, 0, 5, 8), 16);
    for (GstBuffer *buffer : qAsConst(inputs))
        gst_buffer_unref(buffer);

    const GstVideoOverlayCompositionMeta *meta
        = gst_buffer_get_video_overlay_composition_meta(pipeline.buffers().first());
    QVERIFY(meta);
    QCOMPARE(gst_video_overlay_composition_n_rectangles(meta->overlay), 2u);
    GstVideoOverlayRectangle *first = gst_video_overlay_composition_get_rectangle(meta->overlay, 0);
    gint x = 0;
    gint y = 0;
    guint width = 0;
    guint height = 0;
    gst_video_overlay_rectangle_get_render_rectangle(first, &x, &y, &width, &height);
    QCOMPARE(QRect(x, y, int(width), int(height)), QRect(0, 6, 16, 10)); // what lies on the picture
    QCOMPARE(gst_video_overlay_rectangle_get_global_alpha(first), 1.0f);
    QCOMPARE(int(gst_video_overlay_rectangle_get_flags(first)),
             int(GST_VIDEO_OVERLAY_FORMAT_FLAG_NONE));
    GstBuffer *pixels = gst_video_overlay_rectangle_get_pixels_unscaled_argb(
        first, GST_VIDEO_OVERLAY_FORMAT_FLAG_NONE);
    const GstVideoMeta *layout = gst_buffer_get_video_meta(pixels);
    QVERIFY(layout);
    QCOMPARE(layout->width, 16u);
    QCOMPARE(layout->height, 10u);
    QRgb pixel = 0;
    gst_buffer_extract(pixels, gsize(9 * layout->stride[0] + 15 * 4), &pixel, 4);
    QCOMPARE(pixel, QRgb(0x80ff2040));
    GstVideoOverlayRectangle *second
        = gst_video_overlay_composition_get_rectangle(meta->overlay, 1);
    QCOMPARE(gst_video_overlay_rectangle_get_global_alpha(second), 0.2f);
}

/// A receiver that uploads pictures knows them by these numbers.
void tst_BurnElement::compositionIsKeptWhileNothingChanges()
{
    class ChangingSource : public OverlaySource
    {
    public:
        OverlaySnapshotPtr overlayAt(qint64 streamTimeNs) override
        {
            if (streamTimeNs == 0 || streamTimeNs == 80000000) {
                auto next = std::make_shared<OverlaySnapshot>();
                next->items = {m_still, box(2, QRect(20, 20, 10, 10), 0xffffffff)};
                next->items.last().revision = quint64(streamTimeNs) + 2;
                m_overlay = next;
            }
            return m_overlay;
        }

    private:
        OverlayItem m_still = box(1, QRect(0, 0, 10, 10), 0xffffffff);
        OverlaySnapshotPtr m_overlay;
    };
    Pipeline pipeline("videotestsrc num-buffers=3 ! "
                      "video/x-raw,format=NV12,width=64,height=64,framerate=25/1 ! "
                      "xqosdburn name=burn ! fakesink name=sink");
    setOverlaySource(pipeline.burn(), std::make_shared<ChangingSource>());
    pipeline.announceComposition();
    QVERIFY(pipeline.run());
    QCOMPARE(pipeline.buffers().size(), 3);
    GstVideoOverlayComposition *overlays[3] = {};
    for (int i = 0; i < 3; ++i) {
        const auto *meta = gst_buffer_get_video_overlay_composition_meta(pipeline.buffers().at(i));
        QVERIFY(meta);
        overlays[i] = meta->overlay;
    }
    QCOMPARE(overlays[0], overlays[1]);
    QVERIFY(overlays[1] != overlays[2]);
    const auto number = [&](int overlay, guint rectangle) {
        return gst_video_overlay_rectangle_get_seqnum(
            gst_video_overlay_composition_get_rectangle(overlays[overlay], rectangle));
    };
    QCOMPARE(number(0, 0), number(2, 0));
    QVERIFY(number(0, 1) != number(2, 1));
}

/// Accepting any caps is no promise to compose: this sink would drop the meta-data.
void tst_BurnElement::markedCapsWithoutMetaAreBurned()
{
    const auto source = std::make_shared<TestSource>();
    source->show({box(1, QRect(0, 0, 10, 10), 0xffffffff)});
    Pipeline pipeline("videotestsrc num-buffers=1 pattern=black ! "
                      "video/x-raw,format=I420,width=64,height=64 ! "
                      "xqosdburn name=burn ! fakesink name=sink");
    setOverlaySource(pipeline.burn(), source);
    QVERIFY(pipeline.run());
    QVERIFY(!gst_buffer_get_video_overlay_composition_meta(pipeline.buffers().first()));
    QCOMPARE(pipeline.sample(0, 0, 5, 5), 235);
}

QTEST_GUILESS_MAIN(tst_BurnElement)

#include "tst_BurnElement.moc"
