// SPDX-License-Identifier: Apache-2.0
#include "host/piperun/PipeRunSource.h"

#include <gst/video/video.h>

#include <QtTest>

#include <memory>
#include <stdexcept>
#include <vector>

using Velmar::Host::PipeRunRenderer;
using Velmar::Host::PlanarFrame;
using Velmar::Host::registerPipeRunSource;
using Velmar::Host::setDistanceFunction;
using Velmar::Host::setViewFunction;

namespace {

struct Unref
{
    void operator()(gpointer object) const { gst_object_unref(object); }
};

/// "xqosdpiperun ! <caps> ! fakesink", with what arrived at the sink.
class Run
{
public:
    struct Frame
    {
        GstClockTime time = GST_CLOCK_TIME_NONE;
        GstClockTime duration = GST_CLOCK_TIME_NONE;
        bool pooled = false;
        QByteArray bytes;
    };

    explicit Run(const QString &properties,
                 const QString &caps
                 = QStringLiteral("video/x-raw,width=64,height=36,framerate=25/1"))
    {
        const QString description
            = QStringLiteral("xqosdpiperun name=source %1 ! capsfilter caps=\"%2\" ! "
                             "fakesink name=sink sync=false signal-handoffs=true")
                  .arg(properties, caps);
        m_pipeline.reset(gst_parse_launch(description.toUtf8().constData(), nullptr));
        m_source.reset(gst_bin_get_by_name(GST_BIN(m_pipeline.get()), "source"));
        m_sink.reset(gst_bin_get_by_name(GST_BIN(m_pipeline.get()), "sink"));
        g_signal_connect(m_sink.get(), "handoff", G_CALLBACK(onHandoff), this);
    }

    ~Run() { gst_element_set_state(m_pipeline.get(), GST_STATE_NULL); }

    GstElement *source() const { return m_source.get(); }
    GstElement *pipeline() const { return m_pipeline.get(); }

    /// Plays to the end; false after an error, whose text is kept.
    bool play()
    {
        gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING);
        GstBus *bus = gst_element_get_bus(m_pipeline.get());
        GstMessage *message = gst_bus_timed_pop_filtered(
            bus, 60 * GST_SECOND, GstMessageType(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
        const bool ended = message && GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS;
        if (message && !ended) {
            GError *error = nullptr;
            gchar *debug = nullptr;
            gst_message_parse_error(message, &error, &debug);
            m_error = QString::fromUtf8(debug);
            g_error_free(error);
            g_free(debug);
        }
        if (message)
            gst_message_unref(message);
        gst_object_unref(bus);
        return ended;
    }

    /// Goes to PAUSED, with the first frame at the sink.
    bool preroll()
    {
        gst_element_set_state(m_pipeline.get(), GST_STATE_PAUSED);
        return gst_element_get_state(m_pipeline.get(), nullptr, nullptr, 60 * GST_SECOND)
            == GST_STATE_CHANGE_SUCCESS;
    }

    QString error() const { return m_error; }
    const std::vector<Frame> &frames() const { return m_frames; } ///< only after play()

    /// The caps on the wire, while there are any.
    GstVideoInfo info(QString *colorimetry = nullptr) const
    {
        GstPad *pad = gst_element_get_static_pad(m_sink.get(), "sink");
        GstCaps *caps = gst_pad_get_current_caps(pad);
        GstVideoInfo info;
        gst_video_info_init(&info);
        if (caps && gst_video_info_from_caps(&info, caps) && colorimetry) {
            *colorimetry = QString::fromUtf8(
                gst_structure_get_string(gst_caps_get_structure(caps, 0), "colorimetry"));
        }
        if (caps)
            gst_caps_unref(caps);
        gst_object_unref(pad);
        return info;
    }

private:
    static void onHandoff(GstElement *, GstBuffer *buffer, GstPad *, Run *self)
    {
        Frame frame;
        frame.time = GST_BUFFER_PTS(buffer);
        frame.duration = GST_BUFFER_DURATION(buffer);
        frame.pooled = buffer->pool != nullptr;
        GstMapInfo map;
        if (gst_buffer_map(buffer, &map, GST_MAP_READ)) {
            frame.bytes = QByteArray(reinterpret_cast<const char *>(map.data), int(map.size));
            gst_buffer_unmap(buffer, &map);
        }
        self->m_frames.push_back(frame);
    }

    std::unique_ptr<GstElement, Unref> m_pipeline;
    std::unique_ptr<GstElement, Unref> m_source;
    std::unique_ptr<GstElement, Unref> m_sink;
    std::vector<Frame> m_frames;
    QString m_error;
};

/// The bytes that the renderer draws for a 64 x 36 frame.
QByteArray expected(guint seed, const PipeRunRenderer::View &view)
{
    QByteArray bytes(64 * 36 * 3 / 2, '\0');
    auto *data = reinterpret_cast<std::uint8_t *>(bytes.data());
    PlanarFrame frame;
    frame.width = 64;
    frame.height = 36;
    frame.planes[0] = data;
    frame.planes[1] = data + 64 * 36;
    frame.planes[2] = data + 64 * 36 * 5 / 4;
    frame.strides[0] = 64;
    frame.strides[1] = 32;
    frame.strides[2] = 32;
    PipeRunRenderer(seed).render(frame, view);
    return bytes;
}

} // namespace

class tst_PipeRunSource : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        gst_init(nullptr, nullptr);
        QVERIFY(registerPipeRunSource());
        QVERIFY(registerPipeRunSource()); // again, which changes nothing
    }

    void framesAreTimed_data()
    {
        QTest::addColumn<QString>("rate");
        QTest::addColumn<int>("numerator");
        QTest::addColumn<int>("denominator");
        QTest::newRow("25") << QStringLiteral("25/1") << 25 << 1;
        QTest::newRow("29.97") << QStringLiteral("30000/1001") << 30000 << 1001;
        QTest::newRow("one in two seconds") << QStringLiteral("1/2") << 1 << 2;
    }

    /// No frame is missing, none overlaps, nothing drifts, and the stream ends when it should.
    void framesAreTimed()
    {
        QFETCH(QString, rate);
        QFETCH(int, numerator);
        QFETCH(int, denominator);
        Run run(QStringLiteral("num-buffers=7"),
                QStringLiteral("video/x-raw,width=32,height=18,framerate=") + rate);
        QVERIFY2(run.play(), qPrintable(run.error()));
        QCOMPARE(run.frames().size(), std::size_t(7));
        GstClockTime next = 0;
        for (std::size_t i = 0; i < run.frames().size(); ++i) {
            const Run::Frame &frame = run.frames()[i];
            QCOMPARE(frame.time, next);
            QCOMPARE(
                frame.time,
                GstClockTime(i * GST_SECOND * std::size_t(denominator) / std::size_t(numerator)));
            next = frame.time + frame.duration;
            QCOMPARE(frame.bytes.size(), sizeOfFrame(32, 18));
        }
    }

    void capsByDefault()
    {
        Run run(QStringLiteral("num-buffers=1"), QStringLiteral("video/x-raw"));
        QVERIFY(run.preroll());
        QString colorimetry;
        const GstVideoInfo info = run.info(&colorimetry);
        QCOMPARE(GST_VIDEO_INFO_FORMAT(&info), GST_VIDEO_FORMAT_I420);
        QCOMPARE(GST_VIDEO_INFO_WIDTH(&info), 1920);
        QCOMPARE(GST_VIDEO_INFO_HEIGHT(&info), 1080);
        QCOMPARE(GST_VIDEO_INFO_FPS_N(&info), 25);
        QCOMPARE(GST_VIDEO_INFO_FPS_D(&info), 1);
        QCOMPARE(colorimetry, QStringLiteral("bt709"));
    }

    void capsOffered_data()
    {
        QTest::addColumn<QString>("caps");
        QTest::addColumn<bool>("offered");
        QTest::newRow("smallest") << QStringLiteral("width=2,height=2") << true;
        QTest::newRow("largest") << QStringLiteral("width=16384,height=16384") << true;
        QTest::newRow("odd width") << QStringLiteral("width=33,height=18") << false;
        QTest::newRow("odd height") << QStringLiteral("width=32,height=17") << false;
        QTest::newRow("other format") << QStringLiteral("format=NV12") << false;
        QTest::newRow("no frame rate") << QStringLiteral("framerate=0/1") << false;
        QTest::newRow("other colours") << QStringLiteral("colorimetry=bt601") << false;
    }

    void capsOffered()
    {
        QFETCH(QString, caps);
        QFETCH(bool, offered);
        GstElement *source = gst_element_factory_make("xqosdpiperun", nullptr);
        QVERIFY(source);
        GstPad *pad = gst_element_get_static_pad(source, "src");
        GstCaps *ours = gst_pad_query_caps(pad, nullptr);
        GstCaps *theirs
            = gst_caps_from_string((QStringLiteral("video/x-raw,") + caps).toUtf8().constData());
        const bool meet = gst_caps_can_intersect(ours, theirs) == TRUE;
        gst_caps_unref(theirs);
        gst_caps_unref(ours);
        gst_object_unref(pad);
        gst_object_unref(source);
        QCOMPARE(meet, offered);
    }

    void seedSelectsThePipe()
    {
        Run byDefault(QStringLiteral("num-buffers=1"));
        guint seed = 0;
        g_object_get(byDefault.source(), "seed", &seed, nullptr);
        QCOMPARE(seed, 2U);
        QVERIFY2(byDefault.play(), qPrintable(byDefault.error()));
        QCOMPARE(byDefault.frames().at(0).bytes, expected(2, {}));

        Run other(QStringLiteral("num-buffers=1 seed=4294967295"));
        g_object_get(other.source(), "seed", &seed, nullptr);
        QCOMPARE(seed, 4294967295U);
        QVERIFY2(other.play(), qPrintable(other.error()));
        QCOMPARE(other.frames().at(0).bytes, expected(4294967295U, {}));
        QVERIFY(other.frames().at(0).bytes != byDefault.frames().at(0).bytes);
    }

    void drivesByDefault()
    {
        Run run(QStringLiteral("num-buffers=3"));
        QVERIFY2(run.play(), qPrintable(run.error()));
        QCOMPARE(run.frames().at(2).bytes, expected(2, {0.12 * 0.08, 0.0, 0.0, 0.08}));
    }

    void distanceFunction()
    {
        Run run(QStringLiteral("num-buffers=3"));
        std::vector<qint64> asked;
        setDistanceFunction(run.source(), [&asked](qint64 streamTimeNs) {
            asked.push_back(streamTimeNs);
            return 2.0 + double(streamTimeNs) * 1e-9;
        });
        QVERIFY2(run.play(), qPrintable(run.error()));
        QCOMPARE(asked, (std::vector<qint64> {0, 40000000, 80000000}));
        QCOMPARE(run.frames().at(1).bytes, expected(2, {2.04, 0.0, 0.0, 0.04}));
    }

    void distanceFunctionTakenAway()
    {
        Run run(QStringLiteral("num-buffers=1"));
        setDistanceFunction(run.source(), [](qint64) { return 2.0; });
        setDistanceFunction(run.source(), {});
        QVERIFY2(run.play(), qPrintable(run.error()));
        QCOMPARE(run.frames().at(0).bytes, expected(2, {}));
    }

    void viewFunction()
    {
        Run run(QStringLiteral("num-buffers=2"));
        setViewFunction(run.source(), [](qint64) {
            return PipeRunRenderer::View {3.34, -42.9, 24.5, 999.0};
        });
        QVERIFY2(run.play(), qPrintable(run.error()));
        // The time in the view is the stream's, not the function's.
        QCOMPARE(run.frames().at(1).bytes, expected(2, {3.34, -42.9, 24.5, 0.04}));
    }

    void functionsAreReleased()
    {
        auto token = std::make_shared<int>(0);
        {
            Run run(QStringLiteral("num-buffers=1"));
            setDistanceFunction(run.source(), [token](qint64) { return double(*token); });
            QVERIFY2(run.play(), qPrintable(run.error()));
            QCOMPARE(token.use_count(), 2L);
        }
        QTRY_COMPARE(token.use_count(), 1L); // its thread may be the last to let go
    }

    void exceptionsStopThePipeline_data()
    {
        QTest::addColumn<bool>("standard");
        QTest::addColumn<QString>("text");
        QTest::newRow("standard") << true << QStringLiteral("cannot draw the frame: derailed");
        QTest::newRow("anything") << false << QStringLiteral("cannot draw the frame");
    }

    void exceptionsStopThePipeline()
    {
        QFETCH(bool, standard);
        QFETCH(QString, text);
        Run run(QStringLiteral("num-buffers=9"));
        setDistanceFunction(run.source(), [standard](qint64 streamTimeNs) -> double {
            if (streamTimeNs < 80000000)
                return 0.0;
            if (standard)
                throw std::runtime_error("derailed");
            throw 7;
        });
        QVERIFY(!run.play());
        QVERIFY2(run.error().endsWith(text), qPrintable(run.error()));
        QCOMPARE(run.frames().size(), std::size_t(2));
    }

    void framesComeFromAPool()
    {
        Run run(QStringLiteral("num-buffers=4"));
        QVERIFY2(run.play(), qPrintable(run.error()));
        for (const Run::Frame &frame : run.frames())
            QVERIFY(frame.pooled);
    }

    void playsAgainFromTheBeginning()
    {
        Run run(QStringLiteral("num-buffers=2"));
        QVERIFY2(run.play(), qPrintable(run.error()));
        gst_element_set_state(run.pipeline(), GST_STATE_NULL);
        QVERIFY2(run.play(), qPrintable(run.error()));
        QCOMPARE(run.frames().size(), std::size_t(4));
        QCOMPARE(run.frames().at(2).time, GstClockTime(0));
        QCOMPARE(run.frames().at(2).bytes, run.frames().at(0).bytes);
    }

    void duration_data()
    {
        QTest::addColumn<QString>("properties");
        QTest::addColumn<qint64>("duration"); ///< [ns], -1: unknown
        QTest::newRow("known") << QStringLiteral("num-buffers=50") << qint64(2000000000);
        QTest::newRow("endless") << QString() << qint64(-1);
    }

    void duration()
    {
        QFETCH(QString, properties);
        QFETCH(qint64, duration);
        Run run(properties);
        QVERIFY(run.preroll());
        gint64 answer = -1;
        QVERIFY(gst_element_query_duration(run.pipeline(), GST_FORMAT_TIME, &answer));
        QCOMPARE(qint64(answer), duration);
    }

    void cannotSeek()
    {
        Run run(QStringLiteral("num-buffers=50"));
        QVERIFY(run.preroll());
        GstQuery *query = gst_query_new_seeking(GST_FORMAT_TIME);
        gboolean seekable = TRUE;
        QVERIFY(gst_element_query(run.source(), query));
        gst_query_parse_seeking(query, nullptr, &seekable, nullptr, nullptr);
        gst_query_unref(query);
        QVERIFY(!seekable);
        QVERIFY(!gst_element_seek_simple(run.pipeline(), GST_FORMAT_TIME, GST_SEEK_FLAG_FLUSH,
                                         GST_SECOND));
    }

private:
    /// [bytes] with the gaps at the ends of the lines.
    static int sizeOfFrame(int width, int height)
    {
        GstVideoInfo info;
        gst_video_info_set_format(&info, GST_VIDEO_FORMAT_I420, guint(width), guint(height));
        return int(GST_VIDEO_INFO_SIZE(&info));
    }
};

QTEST_GUILESS_MAIN(tst_PipeRunSource)
#include "tst_PipeRunSource.moc"
