// SPDX-License-Identifier: Apache-2.0
#include "host/burn/FrameBurner.h"

#include "tests/host/burn/TestFrame.h"

#include <QFont>
#include <QGuiApplication>
#include <QPainter>
#include <QtTest>

#include <cmath>

using namespace Velmar::Host;
using Layout = PlanarFrame::Layout;
using Matrix = PlanarFrame::Matrix;
using Range = PlanarFrame::Range;

namespace {

/// The definition of both standards, in full precision.
Yuv reference(QRgb color, Matrix matrix, Range range)
{
    const double kr = matrix == Matrix::Bt601 ? 0.299 : 0.2126;
    const double kb = matrix == Matrix::Bt601 ? 0.114 : 0.0722;
    const double r = qRed(color) / 255.0;
    const double g = qGreen(color) / 255.0;
    const double b = qBlue(color) / 255.0;
    const double y = kr * r + (1 - kr - kb) * g + kb * b;
    const double u = (b - y) / (2 * (1 - kb));
    const double v = (r - y) / (2 * (1 - kr));
    if (range == Range::Limited)
        return {16 + 219 * y, 128 + 224 * u, 128 + 224 * v};
    return {255 * y, std::min(255.0, 128 + 255 * u), std::min(255.0, 128 + 255 * v)};
}

OverlayItem item(int id, QPoint position, const QImage &image, quint64 revision = 1)
{
    OverlayItem result;
    result.id = id;
    result.position = position;
    result.image = image;
    result.revision = revision;
    return result;
}

QImage filled(QSize size, QRgb color)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(color); // the number as it is
    return image;
}

OverlaySnapshot snapshotOf(const QVector<OverlayItem> &items, const QRect &clip = QRect())
{
    OverlaySnapshot snapshot;
    snapshot.items = items;
    snapshot.clip = clip;
    return snapshot;
}

} // namespace

Q_DECLARE_METATYPE(Velmar::Host::PlanarFrame::Layout)
Q_DECLARE_METATYPE(Velmar::Host::PlanarFrame::Matrix)
Q_DECLARE_METATYPE(Velmar::Host::PlanarFrame::Range)

class tst_FrameBurner : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void colors_data();
    void colors();
    void places_data();
    void places();
    void opaqueBoxIsExact();
    void transparentPictureChangesNothing();
    void opacity_data();
    void opacity();
    void interleavedEqualsPlanar_data();
    void interleavedEqualsPlanar();
    void textHasNoFringe_data();
    void textHasNoFringe();
    void mixedPictureMatchesReference_data();
    void mixedPictureMatchesReference();
    void conversionsAreKept();
    void changedPictureEqualsNewOne_data();
    void changedPictureEqualsNewOne();
    void paintingOrder();
    void separateBoxesOfOnePicture();
};

void tst_FrameBurner::colors_data()
{
    QTest::addColumn<Matrix>("matrix");
    QTest::addColumn<Range>("range");
    QTest::newRow("601 limited") << Matrix::Bt601 << Range::Limited;
    QTest::newRow("601 full") << Matrix::Bt601 << Range::Full;
    QTest::newRow("709 limited") << Matrix::Bt709 << Range::Limited;
    QTest::newRow("709 full") << Matrix::Bt709 << Range::Full;
}

/// Every corner of the colour cube, grays and colours between them, within one step.
void tst_FrameBurner::colors()
{
    QFETCH(Matrix, matrix);
    QFETCH(Range, range);
    const int steps[] = {0, 1, 37, 64, 127, 128, 191, 254, 255};
    for (int red : steps) {
        for (int green : steps) {
            for (int blue : steps) {
                TestFrame frame(QSize(16, 4), Layout::I420, matrix, range);
                frame.fill({77, 99, 111});
                const QRgb color = qRgb(red, green, blue);
                FrameBurner burner;
                burner.burn(frame.planes(),
                            snapshotOf({item(1, QPoint(0, 0), filled(QSize(16, 4), color))}));
                const Yuv expected = reference(color, matrix, range);
                const auto close = [](int actual, double value) {
                    return std::abs(actual - std::lround(value)) <= 1;
                };
                for (int x = 0; x < 16; ++x) {
                    QVERIFY2(close(frame.y(x, x % 4), expected.y),
                             qPrintable(QStringLiteral("%1 y %2, not %3")
                                            .arg(QColor(color).name())
                                            .arg(frame.y(x, x % 4))
                                            .arg(expected.y)));
                }
                for (int x = 0; x < 8; ++x) {
                    QVERIFY2(close(frame.u(x, x % 2), expected.u)
                                 && close(frame.v(x, x % 2), expected.v),
                             qPrintable(QStringLiteral("%1 u %2 v %3, not %4 %5")
                                            .arg(QColor(color).name())
                                            .arg(frame.u(x, x % 2))
                                            .arg(frame.v(x, x % 2))
                                            .arg(expected.u)
                                            .arg(expected.v)));
                }
                if (red == green && green == blue) {
                    QCOMPARE(frame.u(0, 0), 128);
                    QCOMPARE(frame.v(0, 0), 128);
                }
            }
        }
    }
}

void tst_FrameBurner::places_data()
{
    QTest::addColumn<QSize>("frameSize");
    QTest::addColumn<QRect>("box");
    QTest::addColumn<QRect>("clip");

    const QSize even(64, 48);
    const QSize odd(63, 47);
    const QRect everywhere;
    QTest::newRow("even") << even << QRect(8, 6, 20, 10) << everywhere;
    QTest::newRow("odd x") << even << QRect(9, 6, 20, 10) << everywhere;
    QTest::newRow("odd y") << even << QRect(8, 7, 20, 10) << everywhere;
    QTest::newRow("odd place and size") << even << QRect(9, 7, 21, 11) << everywhere;
    QTest::newRow("even place, odd size") << even << QRect(8, 6, 21, 11) << everywhere;
    QTest::newRow("one pixel, upper left of its sample") << even << QRect(8, 6, 1, 1) << everywhere;
    QTest::newRow("one pixel, lower right") << even << QRect(9, 7, 1, 1) << everywhere;
    QTest::newRow("one column over two samples") << even << QRect(9, 6, 2, 10) << everywhere;
    QTest::newRow("off the left") << even << QRect(-5, 6, 20, 10) << everywhere;
    QTest::newRow("off the top") << even << QRect(8, -3, 20, 10) << everywhere;
    QTest::newRow("off the right") << even << QRect(55, 6, 20, 10) << everywhere;
    QTest::newRow("off the bottom") << even << QRect(8, 43, 20, 10) << everywhere;
    QTest::newRow("larger than the frame") << even << QRect(-3, -5, 90, 70) << everywhere;
    QTest::newRow("wholly off") << even << QRect(64, 6, 20, 10) << everywhere;
    QTest::newRow("wholly off, upper left") << even << QRect(-20, -10, 20, 10) << everywhere;
    QTest::newRow("odd frame, inside") << odd << QRect(9, 7, 21, 11) << everywhere;
    QTest::newRow("odd frame, last column and row") << odd << QRect(62, 46, 1, 1) << everywhere;
    QTest::newRow("odd frame, over the corner") << odd << QRect(50, 40, 30, 30) << everywhere;
    QTest::newRow("odd frame, all of it") << odd << QRect(0, 0, 63, 47) << everywhere;
    QTest::newRow("even clip") << even << QRect(8, 6, 20, 10) << QRect(12, 8, 10, 4);
    QTest::newRow("odd clip") << even << QRect(8, 6, 20, 10) << QRect(13, 9, 7, 5);
    QTest::newRow("clip beside the box") << even << QRect(8, 6, 20, 10) << QRect(40, 30, 10, 10);
    QTest::newRow("clip larger than the frame")
        << odd << QRect(50, 40, 30, 30) << QRect(-9, -9, 100, 100);
}

/// A gray box, opaque: each luma sample under it is the gray, each other one is as before; each
/// chroma sample is gray to the extent that the box covers its pixels.
void tst_FrameBurner::places()
{
    QFETCH(QSize, frameSize);
    QFETCH(QRect, box);
    QFETCH(QRect, clip);
    const QRgb gray = qRgb(120, 120, 120);

    for (Layout layout : {Layout::I420, Layout::NV12}) {
        TestFrame frame(frameSize, layout);
        frame.fillWithNoise();
        const TestFrame before = frame.clone();
        FrameBurner burner;
        burner.burn(frame.planes(),
                    snapshotOf({item(1, box.topLeft(), filled(box.size(), gray))}, clip));

        const QRect picture(QPoint(0, 0), frameSize);
        const QRect covered = (clip.isNull() ? box : box & clip) & picture;
        const int luma = int(std::lround(reference(gray, Matrix::Bt709, Range::Limited).y));
        for (int y = 0; y < frameSize.height(); ++y) {
            for (int x = 0; x < frameSize.width(); ++x) {
                if (!covered.contains(x, y))
                    QCOMPARE(frame.y(x, y), before.y(x, y));
                else
                    QVERIFY(std::abs(frame.y(x, y) - luma) <= 1);
            }
        }
        for (int y = 0; y < frame.chromaSize().height(); ++y) {
            for (int x = 0; x < frame.chromaSize().width(); ++x) {
                const QRect sample = QRect(2 * x, 2 * y, 2, 2) & picture;
                const QRect part = sample & covered;
                if (part.isEmpty()) {
                    QCOMPARE(frame.u(x, y), before.u(x, y));
                    QCOMPARE(frame.v(x, y), before.v(x, y));
                    continue;
                }
                const double share
                    = double(part.width() * part.height()) / (sample.width() * sample.height());
                const double u = share * 128 + (1 - share) * before.u(x, y);
                const double v = share * 128 + (1 - share) * before.v(x, y);
                QVERIFY2(std::abs(frame.u(x, y) - u) <= 1.5,
                         qPrintable(QStringLiteral("%1,%2: %3 not %4")
                                        .arg(x)
                                        .arg(y)
                                        .arg(frame.u(x, y))
                                        .arg(u)));
                QVERIFY(std::abs(frame.v(x, y) - v) <= 1.5);
            }
        }
        QVERIFY(frame.guardsEqual(before));
        QCOMPARE(burner.conversionCount(), covered.isEmpty() ? 0ull : 1ull);
    }
}

/// Alpha 255 leaves nothing of the frame, whatever was there.
void tst_FrameBurner::opaqueBoxIsExact()
{
    for (int level : {0, 1, 127, 128, 254, 255}) {
        TestFrame frame(QSize(64, 32), Layout::I420, Matrix::Bt709, Range::Full);
        frame.fillWithNoise();
        QImage image = filled(QSize(64, 32), qRgb(level, level, level));
        image.setPixel(0, 0, 0x0000ff00); // so that the blending path is taken for some rows
        image.setPixel(63, 31, 0x0000ff00);
        FrameBurner burner;
        burner.burn(frame.planes(), snapshotOf({item(1, QPoint(0, 0), image)}));
        for (int y = 0; y < 32; ++y)
            for (int x = 0; x < 64; ++x)
                if (QPoint(x, y) != QPoint(0, 0) && QPoint(x, y) != QPoint(63, 31))
                    QCOMPARE(frame.y(x, y), level);
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 32; ++x)
                if (QPoint(x, y) != QPoint(0, 0) && QPoint(x, y) != QPoint(31, 15))
                    QCOMPARE(frame.u(x, y), 128);
    }
}

void tst_FrameBurner::transparentPictureChangesNothing()
{
    for (Layout layout : {Layout::I420, Layout::NV12}) {
        TestFrame frame(QSize(64, 48), layout);
        frame.fillWithNoise();
        const TestFrame before = frame.clone();
        FrameBurner burner;
        OverlayItem hidden = item(2, QPoint(20, 20), filled(QSize(20, 10), 0xffffffff));
        hidden.opacity = 0;
        burner.burn(frame.planes(),
                    snapshotOf({item(1, QPoint(3, 3), filled(QSize(31, 21), 0x0000ff00)), hidden}));
        QVERIFY(frame == before);
    }
}

void tst_FrameBurner::opacity_data()
{
    QTest::addColumn<int>("alpha");
    QTest::addColumn<int>("opacity");
    QTest::newRow("opaque, half") << 255 << 128;
    QTest::newRow("opaque, a quarter") << 255 << 64;
    QTest::newRow("opaque, nearly nothing") << 255 << 1;
    QTest::newRow("half, half") << 128 << 128;
    QTest::newRow("half") << 128 << 255;
    QTest::newRow("a quarter, three quarters") << 64 << 191;
}

void tst_FrameBurner::opacity()
{
    QFETCH(int, alpha);
    QFETCH(int, opacity);
    const QRgb color = qRgba(230, 40, 90, alpha);
    const Yuv over = reference(color, Matrix::Bt709, Range::Limited);
    const Yuv under {60, 200, 80};
    const double share = alpha / 255.0 * opacity / 255.0;
    const auto close = [share](int actual, double under, double over) {
        return std::abs(actual - (under + share * (over - under))) <= 1.5;
    };
    for (Layout layout : {Layout::I420, Layout::NV12}) {
        TestFrame frame(QSize(64, 48), layout);
        frame.fill(under);
        OverlayItem box = item(1, QPoint(7, 5), filled(QSize(30, 20), color));
        box.opacity = opacity;
        FrameBurner burner;
        burner.burn(frame.planes(), snapshotOf({box}));
        for (int y = 5; y < 25; ++y)
            for (int x = 7; x < 37; ++x)
                QVERIFY(close(frame.y(x, y), under.y, over.y));
        for (int y = 3; y < 12; ++y) {
            for (int x = 4; x < 18; ++x) {
                QVERIFY(close(frame.u(x, y), under.u, over.u));
                QVERIFY(close(frame.v(x, y), under.v, over.v));
            }
        }
    }
}

namespace {

/// Text as an element draws it: antialiased, straight alpha, over the green that nobody should see.
QImage textPicture(const QColor &color, const QColor &box)
{
    QImage image(QSize(201, 43), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        painter.fillRect(QRect(0, 0, 190, 40), box);
        QFont font(QStringLiteral("DejaVu Sans Mono"));
        font.setPixelSize(35);
        painter.setFont(font);
        painter.setPen(color);
        painter.drawText(QRect(1, -1, 190, 40), Qt::AlignVCenter, QStringLiteral("12.5 m/s"));
    }
    image = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(row[x]) == 0)
                row[x] = 0x0000ff00;
    }
    return image;
}

} // namespace

void tst_FrameBurner::interleavedEqualsPlanar_data()
{
    QTest::addColumn<QPoint>("position");
    QTest::newRow("even") << QPoint(10, 4);
    QTest::newRow("odd") << QPoint(11, 5);
    QTest::newRow("off the frame") << QPoint(-51, -7);
}

void tst_FrameBurner::interleavedEqualsPlanar()
{
    QFETCH(QPoint, position);
    const QSize size(161, 61);
    TestFrame planar(size, Layout::I420);
    TestFrame interleaved(size, Layout::NV12);
    planar.fill({90, 60, 170});
    interleaved.fill({90, 60, 170});
    const QVector<OverlayItem> items {
        item(1, position, textPicture(Qt::yellow, QColor(10, 20, 200, 100)))};
    FrameBurner().burn(planar.planes(), snapshotOf(items));
    FrameBurner().burn(interleaved.planes(), snapshotOf(items));
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            QCOMPARE(interleaved.y(x, y), planar.y(x, y));
    for (int y = 0; y < planar.chromaSize().height(); ++y) {
        for (int x = 0; x < planar.chromaSize().width(); ++x) {
            QCOMPARE(interleaved.u(x, y), planar.u(x, y));
            QCOMPARE(interleaved.v(x, y), planar.v(x, y));
        }
    }
}

void tst_FrameBurner::textHasNoFringe_data()
{
    QTest::addColumn<QColor>("text");
    QTest::addColumn<QColor>("ground");
    QTest::addColumn<QPoint>("position");
    for (QPoint position : {QPoint(6, 4), QPoint(7, 5)}) {
        const char *place = position.x() & 1 ? "odd" : "even";
        QTest::addRow("blue on white, %s", place)
            << QColor(Qt::blue) << QColor(Qt::white) << position;
        QTest::addRow("blue on black, %s", place)
            << QColor(Qt::blue) << QColor(Qt::black) << position;
        QTest::addRow("blue on red, %s", place) << QColor(Qt::blue) << QColor(Qt::red) << position;
        QTest::addRow("thin blue on red, %s", place)
            << QColor(0, 0, 255, 90) << QColor(Qt::red) << position;
        QTest::addRow("white on red, %s", place)
            << QColor(Qt::white) << QColor(Qt::red) << position;
    }
}

/// Over one colour, text of another gives colours on the line between the two and nothing else.
void tst_FrameBurner::textHasNoFringe()
{
    QFETCH(QColor, text);
    QFETCH(QColor, ground);
    QFETCH(QPoint, position);
    const Yuv from = reference(ground.rgb(), Matrix::Bt709, Range::Limited);
    const Yuv to = reference(text.rgb(), Matrix::Bt709, Range::Limited);
    TestFrame frame(QSize(216, 52), Layout::I420);
    frame.fill(from);
    FrameBurner burner;
    burner.burn(frame.planes(),
                snapshotOf({item(1, position, textPicture(text, Qt::transparent))}));

    int changed = 0;
    for (int y = 0; y < frame.chromaSize().height(); ++y) {
        for (int x = 0; x < frame.chromaSize().width(); ++x) {
            // Distance from the line between both ends, and no way beyond either.
            const double du = to.u - from.u;
            const double dv = to.v - from.v;
            const double u = frame.u(x, y) - from.u;
            const double v = frame.v(x, y) - from.v;
            const double length = std::hypot(du, dv);
            const double along = (u * du + v * dv) / length;
            const double across = std::abs(u * dv - v * du) / length;
            QVERIFY2(across <= 1.5 && along >= -1.5 && along <= length + 1.5,
                     qPrintable(QStringLiteral("%1,%2: u %3 v %4, %5 beside the line")
                                    .arg(x)
                                    .arg(y)
                                    .arg(frame.u(x, y))
                                    .arg(frame.v(x, y))
                                    .arg(across)));
            changed += along > length / 4 * text.alphaF();
        }
    }
    QVERIFY(changed > 100); // there is text at all
}

void tst_FrameBurner::mixedPictureMatchesReference_data()
{
    QTest::addColumn<QColor>("text");
    QTest::addColumn<QColor>("box");
    QTest::addColumn<QPoint>("position");
    QTest::newRow("opaque box") << QColor(Qt::white) << QColor(0, 0, 255) << QPoint(6, 4);
    QTest::newRow("opaque box, odd") << QColor(Qt::white) << QColor(0, 0, 255) << QPoint(7, 5);
    QTest::newRow("translucent box")
        << QColor(255, 220, 0) << QColor(0, 60, 0, 128) << QPoint(7, 4);
    QTest::newRow("thin box") << QColor(255, 0, 0) << QColor(0, 0, 255, 20) << QPoint(6, 5);
    QTest::newRow("translucent text")
        << QColor(255, 0, 0, 90) << QColor(0, 255, 255, 60) << QPoint(7, 5);
}

/// Every sample against the straightforward computation in full precision.
void tst_FrameBurner::mixedPictureMatchesReference()
{
    QFETCH(QColor, text);
    QFETCH(QColor, box);
    QFETCH(QPoint, position);
    const QImage image = textPicture(text, box);
    TestFrame frame(QSize(216, 52), Layout::I420);
    frame.fillWithNoise();
    const TestFrame before = frame.clone();
    FrameBurner burner;
    burner.burn(frame.planes(), snapshotOf({item(1, position, image)}));

    const auto pixel = [&](int x, int y) {
        const QPoint p = QPoint(x, y) - position;
        return image.rect().contains(p) ? image.pixel(p) : QRgb(0);
    };
    for (int y = 0; y < 52; ++y) {
        for (int x = 0; x < 216; ++x) {
            const QRgb over = pixel(x, y);
            const double a = qAlpha(over) / 255.0;
            const double expected
                = a * reference(over, Matrix::Bt709, Range::Limited).y + (1 - a) * before.y(x, y);
            QVERIFY(std::abs(frame.y(x, y) - expected) <= 1.5);
        }
    }
    for (int y = 0; y < 26; ++y) {
        for (int x = 0; x < 108; ++x) {
            double a = 0;
            double u = 0;
            double v = 0;
            for (int i = 0; i < 4; ++i) {
                const QRgb over = pixel(2 * x + (i & 1), 2 * y + i / 2);
                const Yuv color = reference(over, Matrix::Bt709, Range::Limited);
                const double share = qAlpha(over) / 255.0 / 4;
                a += share;
                u += share * color.u;
                v += share * color.v;
            }
            u += (1 - a) * before.u(x, y);
            v += (1 - a) * before.v(x, y);
            QVERIFY2(std::abs(frame.u(x, y) - u) <= 2.0 && std::abs(frame.v(x, y) - v) <= 2.0,
                     qPrintable(QStringLiteral("%1,%2: %3 %4, not %5 %6")
                                    .arg(x)
                                    .arg(y)
                                    .arg(frame.u(x, y))
                                    .arg(frame.v(x, y))
                                    .arg(u)
                                    .arg(v)));
        }
    }
}

void tst_FrameBurner::conversionsAreKept()
{
    TestFrame frame(QSize(64, 48), Layout::I420);
    frame.fill({100, 128, 128});
    FrameBurner burner;
    const QImage white = filled(QSize(20, 10), 0xffffffff);
    OverlayItem first = item(1, QPoint(4, 4), white, 1);
    const OverlayItem second = item(2, QPoint(30, 20), white, 2);
    const auto conversionsFor
        = [&](const QVector<OverlayItem> &items, const QRect &clip = QRect()) {
              const quint64 before = burner.conversionCount();
              burner.burn(frame.planes(), snapshotOf(items, clip));
              return int(burner.conversionCount() - before);
          };

    QCOMPARE(conversionsFor({first, second}), 2);
    QCOMPARE(conversionsFor({first, second}), 0);
    first.position = QPoint(8, 6); // the same place on the chroma grid
    QCOMPARE(conversionsFor({first, second}), 0);
    QCOMPARE(frame.y(27, 15), 235); // and it did move
    first.position = QPoint(9, 6);
    QCOMPARE(conversionsFor({first, second}), 1);
    first.revision = 3;
    QCOMPARE(conversionsFor({first, second}), 1);
    first.opacity = 100;
    QCOMPARE(conversionsFor({first, second}), 1);
    QCOMPARE(conversionsFor({first, second}, QRect(0, 0, 20, 48)), 1);
    QCOMPARE(conversionsFor({first, second}), 2); // the clip again, and the second was forgotten
    QCOMPARE(conversionsFor({second}), 0);
    QCOMPARE(conversionsFor({first, second}), 1);

    TestFrame full(QSize(64, 48), Layout::I420, Matrix::Bt709, Range::Full);
    burner.burn(full.planes(), snapshotOf({first, second}));
    QCOMPARE(full.y(40, 25), 255);
}

void tst_FrameBurner::changedPictureEqualsNewOne_data()
{
    QTest::addColumn<QSize>("frameSize");
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<QRect>("clip");
    QTest::addColumn<int>("opacity");
    const QSize even(216, 52);
    const QSize odd(191, 41);
    QTest::newRow("even") << even << QPoint(6, 4) << QRect() << 255;
    QTest::newRow("odd") << even << QPoint(7, 5) << QRect() << 255;
    QTest::newRow("thin") << even << QPoint(7, 4) << QRect() << 90;
    QTest::newRow("off the upper left") << even << QPoint(-13, -5) << QRect() << 255;
    QTest::newRow("off an odd frame") << odd << QPoint(7, 5) << QRect() << 255;
    QTest::newRow("off an odd frame, thin") << odd << QPoint(6, 4) << QRect() << 120;
    QTest::newRow("clipped") << even << QPoint(6, 4) << QRect(21, 9, 120, 20) << 255;
}

/// Only what differs from the picture before is converted again; nobody may see that.
void tst_FrameBurner::changedPictureEqualsNewOne()
{
    QFETCH(QSize, frameSize);
    QFETCH(QPoint, position);
    QFETCH(QRect, clip);
    QFETCH(int, opacity);
    const QRect changes[]
        = {QRect(90, 10, 20, 25), QRect(0, 0, 1, 1),    QRect(200, 42, 1, 1), QRect(0, 20, 201, 1),
           QRect(33, 0, 1, 43),   QRect(101, 21, 1, 1), QRect(0, 0, 201, 43), QRect()};
    const QRgb colors[] = {0xffffffff, 0x80ff2010, 0x0000ff00, 0xff0000ff};
    for (Layout layout : {Layout::I420, Layout::NV12}) {
        FrameBurner burner;
        QImage image = textPicture(Qt::yellow, QColor(10, 20, 200, 255));
        quint64 revision = 0;
        for (QRgb color : colors) {
            for (const QRect &change : changes) {
                for (int y = change.top(); y <= change.bottom(); ++y)
                    for (int x = change.left(); x <= change.right(); ++x)
                        image.setPixel(x, y, color);
                OverlayItem changed = item(1, position, image, ++revision);
                changed.opacity = opacity;
                TestFrame frame(frameSize, layout);
                frame.fillWithNoise();
                TestFrame expected = frame.clone();
                burner.burn(frame.planes(), snapshotOf({changed}, clip));
                FrameBurner().burn(expected.planes(), snapshotOf({changed}, clip));
                // To the bit: a recording does not depend on when it was begun.
                for (int plane = 0; plane < 3; ++plane)
                    QCOMPARE(frame.largestDifference(expected, plane), 0);
            }
        }
    }
}

void tst_FrameBurner::paintingOrder()
{
    TestFrame frame(QSize(64, 48), Layout::I420);
    frame.fill({100, 128, 128});
    FrameBurner burner;
    const OverlayItem white = item(1, QPoint(4, 4), filled(QSize(20, 10), 0xffffffff));
    const OverlayItem black = item(2, QPoint(14, 4), filled(QSize(20, 10), 0xff000000));
    burner.burn(frame.planes(), snapshotOf({white, black}));
    QCOMPARE(frame.y(16, 8), 16);
    burner.burn(frame.planes(), snapshotOf({black, white}));
    QCOMPARE(frame.y(16, 8), 235);
}

/// Lines of different lengths with gaps between them: each is where it belongs, the gaps are bare.
void tst_FrameBurner::separateBoxesOfOnePicture()
{
    QImage image = filled(QSize(300, 90), 0x0000ff00);
    const QRect boxes[] = {QRect(0, 0, 300, 30), QRect(0, 30, 151, 15), QRect(20, 60, 201, 30)};
    for (const QRect &box : boxes)
        for (int y = box.top(); y <= box.bottom(); ++y)
            for (int x = box.left(); x <= box.right(); ++x)
                image.setPixel(x, y, 0xffffffff);
    for (QPoint position : {QPoint(0, 0), QPoint(5, 3)}) {
        TestFrame frame(QSize(320, 100), Layout::I420);
        frame.fillWithNoise();
        const TestFrame before = frame.clone();
        FrameBurner burner;
        burner.burn(frame.planes(), snapshotOf({item(1, position, image)}));
        for (int y = 0; y < 100; ++y) {
            for (int x = 0; x < 320; ++x) {
                const bool inBox
                    = std::any_of(std::begin(boxes), std::end(boxes), [&](const QRect &box) {
                          return box.translated(position).contains(x, y);
                      });
                QCOMPARE(frame.y(x, y), inBox ? 235 : before.y(x, y));
            }
        }
    }
}

QTEST_MAIN(tst_FrameBurner)

#include "tst_FrameBurner.moc"
