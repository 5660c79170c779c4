// SPDX-License-Identifier: Apache-2.0
#include "host/piperun/PipeRunRenderer.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <vector>

using Velmar::Host::PipeRunRenderer;
using Velmar::Host::PlanarFrame;
using View = PipeRunRenderer::View;

namespace {

constexpr std::uint8_t Guard = 0xee;

/// A frame with its memory. Each plane's lines are @p padding bytes longer than the picture's.
class Picture
{
public:
    Picture(int width, int height, int padding = 0,
            PlanarFrame::Layout layout = PlanarFrame::Layout::I420)
    {
        m_frame.layout = layout;
        m_frame.width = width;
        m_frame.height = height;
        const bool planar = layout == PlanarFrame::Layout::I420;
        for (int i = 0; i < (planar ? 3 : 2); ++i) {
            m_frame.strides[i] = lineBytes(i) + padding + (padding ? 2 * i : 0);
            m_planes[i].assign(std::size_t(m_frame.strides[i]) * std::size_t(lines(i)), Guard);
            m_frame.planes[i] = m_planes[i].data();
        }
    }

    PlanarFrame &frame() { return m_frame; }

    int lineBytes(int plane) const
    {
        if (plane == 0)
            return m_frame.width;
        const int half = (m_frame.width + 1) / 2;
        return m_frame.layout == PlanarFrame::Layout::I420 ? half : 2 * half;
    }

    int lines(int plane) const { return plane == 0 ? m_frame.height : (m_frame.height + 1) / 2; }

    /// The bytes of a plane without what lies beside the picture.
    QByteArray pixels(int plane) const
    {
        QByteArray bytes;
        for (int y = 0; y < lines(plane); ++y)
            bytes.append(line(plane, y), lineBytes(plane));
        return bytes;
    }

    QByteArray all() const { return pixels(0) + pixels(1) + pixels(2); }

    /// Whether nothing was written beside the picture.
    bool guardsStand() const
    {
        for (int plane = 0; plane < 3 && m_frame.planes[plane]; ++plane) {
            for (int y = 0; y < lines(plane); ++y) {
                for (int x = lineBytes(plane); x < m_frame.strides[plane]; ++x) {
                    if (std::uint8_t(line(plane, y)[x]) != Guard)
                        return false;
                }
            }
        }
        return true;
    }

    int luma(int x, int y) const { return std::uint8_t(line(0, y)[x]); }

    double meanLuma(const QRect &area) const
    {
        double sum = 0.0;
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x)
                sum += luma(x, y);
        }
        return sum / (area.width() * area.height());
    }

private:
    const char *line(int plane, int y) const
    {
        return reinterpret_cast<const char *>(m_planes[plane].data())
            + std::ptrdiff_t(y) * m_frame.strides[plane];
    }

    PlanarFrame m_frame;
    std::vector<std::uint8_t> m_planes[3];
};

QByteArray rendered(PipeRunRenderer &renderer, const View &view)
{
    Picture picture(192, 108);
    renderer.render(picture.frame(), view);
    return picture.all();
}

} // namespace

class tst_PipeRunRenderer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pictureFollowsFromSeedAndView_data()
    {
        QTest::addColumn<double>("distance");
        QTest::addColumn<double>("pan");
        QTest::newRow("between joints") << 2.7 << 5.0;
        QTest::newRow("on a joint") << 2.0 << 0.0;
        QTest::newRow("a joint at the end of sight") << 2.4 << 0.0;
        QTest::newRow("just before that") << 2.38 << 0.0;
        QTest::newRow("looking back") << 2.9 << 180.0;
        QTest::newRow("looking sideways") << 2.0 << 90.0;
    }

    void pictureFollowsFromSeedAndView()
    {
        QFETCH(double, distance);
        QFETCH(double, pan);
        const View view {distance, pan, -3.0, 1.25};
        PipeRunRenderer one(7);
        const QByteArray first = rendered(one, view);

        // Whatever was drawn before, here two parts of the pipe that take the place in memory.
        rendered(one, {distance + 5.0, 180.0, 0.0, 0.0});
        rendered(one, {distance + 8.0, 0.0, 0.0, 0.0});
        QVERIFY(rendered(one, view) == first);

        PipeRunRenderer other(8);
        QVERIFY(rendered(other, view) != first);
    }

    void everyPartOfTheViewCounts_data()
    {
        QTest::addColumn<double>("distance");
        QTest::addColumn<double>("pan");
        QTest::addColumn<double>("tilt");
        QTest::addColumn<double>("time");
        QTest::newRow("distance") << 2.71 << 0.0 << 0.0 << 1.0;
        QTest::newRow("pan") << 2.7 << 1.0 << 0.0 << 1.0;
        QTest::newRow("tilt") << 2.7 << 0.0 << 1.0 << 1.0;
        QTest::newRow("time") << 2.7 << 0.0 << 0.0 << 1.04;
    }

    void everyPartOfTheViewCounts()
    {
        QFETCH(double, distance);
        QFETCH(double, pan);
        QFETCH(double, tilt);
        QFETCH(double, time);
        const QByteArray before = rendered(m_renderer, {2.7, 0.0, 0.0, 1.0});
        QVERIFY(rendered(m_renderer, {distance, pan, tilt, time}) != before);
    }

    void jointsComeNearer_data()
    {
        QTest::addColumn<double>("distance");
        QTest::addColumn<double>("ahead"); ///< [m] to the next joint
        QTest::newRow("0.60 m") << 0.40 << 0.60;
        QTest::newRow("0.50 m") << 0.50 << 0.50;
        QTest::newRow("0.40 m") << 0.60 << 0.40;
        QTest::newRow("0.30 m") << 0.70 << 0.30;
        QTest::newRow("0.30 m before another joint") << 1.70 << 0.30;
    }

    /// Along the middle line, the darkest places left and right are as far from each other as the
    /// perspective of a joint at that distance wants.
    void jointsComeNearer()
    {
        QFETCH(double, distance);
        QFETCH(double, ahead);
        const int width = 960;
        const int height = 540;
        Picture picture(width, height);
        m_renderer.render(picture.frame(), {distance, 0.0, 0.0, 0.0});

        const double radius
            = PipeRunRenderer::focalLength(width, height) * PipeRunRenderer::PipeRadiusM / ahead;
        const auto darkest = [&](double from, double to) {
            int best = 0;
            double least = 1000.0;
            for (int x = int(from); x <= int(to); ++x) {
                const double mean = picture.meanLuma(QRect(x, height / 2 - 4, 1, 9));
                if (mean < least) {
                    least = mean;
                    best = x;
                }
            }
            return best;
        };
        const double centre = width / 2;
        const int left = darkest(centre - 1.2 * radius, centre - 0.8 * radius);
        const int right = darkest(centre + 0.8 * radius, centre + 1.2 * radius);

        const double seen = (right - left) / 2.0;
        QVERIFY2(std::abs(seen - radius) < 0.03 * radius,
                 qPrintable(QStringLiteral("%1 px, expected %2").arg(seen).arg(radius)));
        // It is a dark gap between brighter walls.
        for (int x : {left, right}) {
            const QRect gap(x, height / 2 - 4, 1, 9);
            const int side = x < centre ? -1 : 1;
            QVERIFY(picture.meanLuma(gap) + 25
                    < picture.meanLuma(gap.translated(side * int(0.12 * radius), 0)));
            QVERIFY(picture.meanLuma(gap) + 25
                    < picture.meanLuma(gap.translated(-side * int(0.12 * radius), 0)));
        }
    }

    void lightFallsOffAhead()
    {
        Picture picture(480, 270);
        m_renderer.render(picture.frame(), {0.5, 0.0, 0.0, 0.0});
        const double ahead = picture.meanLuma(QRect(238, 132, 4, 4));
        const double between = picture.meanLuma(QRect(270, 132, 10, 4));
        const double near = picture.meanLuma(QRect(380, 132, 20, 4));
        QVERIFY2(ahead < 45 && ahead + 20 < between && between + 20 < near,
                 qPrintable(QStringLiteral("%1 %2 %3").arg(ahead).arg(between).arg(near)));
    }

    void lateralIn()
    {
        int count = 0;
        for (int metre = -5; metre < 60; ++metre) {
            const PipeRunRenderer::Lateral lateral = PipeRunRenderer::lateralIn(2, metre);
            if (!lateral.exists)
                continue;
            ++count;
            QVERIFY(metre >= 1);
            // Whole, between the joints.
            QVERIFY(lateral.distanceM - lateral.radiusM > metre + 0.1);
            QVERIFY(lateral.distanceM + lateral.radiusM < metre + 0.9);
            QVERIFY(lateral.clockHours == 2.0 || lateral.clockHours == 10.0);
        }
        QVERIFY2(count >= 5 && count <= 10, qPrintable(QString::number(count)));
    }

    /// Turned towards a lateral, the camera looks into the dark; turned the other way, at a wall.
    void cameraTurnsToLateral()
    {
        const PipeRunRenderer::Lateral lateral = PipeRunRenderer::lateralIn(2, 3);
        QVERIFY(lateral.exists);
        const double angle = lateral.clockHours / 12.0 * 2.0 * M_PI;
        const double x = PipeRunRenderer::PipeRadiusM * std::sin(angle);
        const double y = PipeRunRenderer::PipeRadiusM * std::cos(angle) + 0.012;
        const double ahead = 0.14;
        View view;
        view.distanceM = lateral.distanceM - ahead;
        view.panDeg = std::atan2(x, ahead) * 180.0 / M_PI;
        view.tiltDeg = std::atan2(y, std::hypot(x, ahead)) * 180.0 / M_PI;

        PipeRunRenderer renderer(2);
        Picture picture(320, 180);
        const QRect middle(150, 82, 20, 16);
        renderer.render(picture.frame(), view);
        const double opening = picture.meanLuma(middle);
        view.panDeg = -view.panDeg;
        renderer.render(picture.frame(), view);
        const double wall = picture.meanLuma(middle);
        QVERIFY2(opening < 60 && wall > 100,
                 qPrintable(QStringLiteral("%1 %2").arg(opening).arg(wall)));
    }

    void memoryLayout_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<int>("padding");
        QTest::newRow("whole blocks") << 64 << 32 << 0;
        QTest::newRow("cut blocks") << 70 << 38 << 0;
        QTest::newRow("odd strides") << 70 << 38 << 5;
        QTest::newRow("odd size") << 71 << 39 << 3;
        QTest::newRow("smaller than a block") << 2 << 2 << 1;
        QTest::newRow("one pixel") << 1 << 1 << 7;
        QTest::newRow("narrow") << 2 << 300 << 0;
    }

    /// All pixels are written, the same ones whatever the strides are, and nothing beside them.
    void memoryLayout()
    {
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(int, padding);
        const View view {0.5, 0.0, 0.0, 0.0};
        Picture tight(width, height);
        m_renderer.render(tight.frame(), view);
        Picture padded(width, height, padding);
        m_renderer.render(padded.frame(), view);
        QVERIFY(padded.guardsStand());
        QCOMPARE(padded.all(), tight.all());
        for (int plane = 0; plane < 3; ++plane)
            QVERIFY(!tight.pixels(plane).contains(char(Guard))); // brighter than anything drawn

        Picture interleaved(width, height, padding, PlanarFrame::Layout::NV12);
        m_renderer.render(interleaved.frame(), view);
        QVERIFY(interleaved.guardsStand());
        QCOMPARE(interleaved.pixels(0), tight.pixels(0));
        QByteArray both;
        const QByteArray blue = tight.pixels(1);
        const QByteArray red = tight.pixels(2);
        for (int i = 0; i < blue.size(); ++i)
            both.append(blue.at(i)).append(red.at(i));
        QCOMPARE(interleaved.pixels(1), both);
    }

    void range()
    {
        const View view {0.5, 0.0, 0.0, 0.0};
        Picture limited(96, 54);
        m_renderer.render(limited.frame(), view);
        Picture full(96, 54);
        full.frame().range = PlanarFrame::Range::Full;
        m_renderer.render(full.frame(), view);
        for (int y = 0; y < 54; ++y) {
            for (int x = 0; x < 96; ++x) {
                const int luma = limited.luma(x, y);
                QVERIFY(luma >= 16 && luma <= 235);
                QVERIFY(std::abs(full.luma(x, y) - (luma - 16) * 255.0 / 219.0) <= 1.2);
            }
        }
    }

    void strangeViews_data()
    {
        QTest::addColumn<double>("distance");
        QTest::addColumn<double>("pan");
        QTest::addColumn<double>("tilt");
        QTest::addColumn<double>("time");
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const double infinite = std::numeric_limits<double>::infinity();
        QTest::newRow("before the manhole") << -3.3 << 0.0 << 0.0 << 0.0;
        QTest::newRow("not a number") << nan << nan << nan << nan;
        QTest::newRow("infinite") << infinite << -infinite << infinite << infinite;
        QTest::newRow("huge") << 1e300 << 1e300 << -1e300 << 1e300;
        QTest::newRow("a day") << 4000.0 << 0.0 << 0.0 << 86400.0;
        QTest::newRow("backwards") << 5.0 << 180.0 << 0.0 << 0.0;
        QTest::newRow("up") << 5.0 << 0.0 << 90.0 << 0.0;
        QTest::newRow("negative time") << 5.0 << 0.0 << 0.0 << -5.0;
    }

    void strangeViews()
    {
        QFETCH(double, distance);
        QFETCH(double, pan);
        QFETCH(double, tilt);
        QFETCH(double, time);
        Picture picture(160, 90, 3);
        m_renderer.render(picture.frame(), {distance, pan, tilt, time});
        QVERIFY(picture.guardsStand());
        // Something is seen of the pipe in every direction.
        QVERIFY(picture.meanLuma(QRect(0, 0, 160, 90)) > 30);
    }

    void emptyFrame()
    {
        PlanarFrame frame;
        m_renderer.render(frame, {}); // touches no memory, there is none
        QCOMPARE(frame.planes[0], static_cast<std::uint8_t *>(nullptr));
    }

private:
    PipeRunRenderer m_renderer {7};
};

QTEST_GUILESS_MAIN(tst_PipeRunRenderer)
#include "tst_PipeRunRenderer.moc"
