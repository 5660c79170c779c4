// SPDX-License-Identifier: Apache-2.0

// Draws the pictures of the demonstration: make_pictures <directory>. The build does not need it,
// because the pictures are kept beside it; it is here so that they can be changed.
//
//   g++ -std=c++17 -fPIC make_pictures.cpp -o make_pictures
//       $(pkg-config --cflags --libs Qt5Gui) && QT_QPA_PLATFORM=offscreen ./make_pictures .

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPainterPathStroker>

#include <cmath>
#include <cstdio>

namespace {

constexpr double Pi = 3.14159265358979323846;

/// Drawn large and scaled down: smoother edges than the painter's own, and soft shadows for free.
constexpr int Oversampling = 4;

QImage canvas(QSize size)
{
    QImage image(size * Oversampling, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QImage finished(const QImage &image, QSize size)
{
    return image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_ARGB32);
}

/// Fills @p path with @p colour over a dark outline that fades outwards, so that it can be read on
/// any ground.
void drawOutlined(QPainter &painter, const QPainterPath &path, const QColor &colour, double reach)
{
    constexpr int Rings = 6;
    for (int i = Rings; i >= 1; --i) {
        painter.setPen(QPen(QColor(0, 0, 0, 30), 2.0 * reach * i / Rings, Qt::SolidLine,
                            Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(path);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawPath(path);
}

QPainterPath stroke(const QPainterPath &path, double width)
{
    QPainterPathStroker stroker;
    stroker.setWidth(width);
    stroker.setCapStyle(Qt::RoundCap);
    stroker.setJoinStyle(Qt::RoundJoin);
    return stroker.createStroke(path).simplified();
}

QPainterPath ring(QPointF centre, double radius, double width)
{
    QPainterPath circle;
    circle.addEllipse(centre, radius, radius);
    return stroke(circle, width);
}

/// A point at @p hours of the clock.
QPointF atClock(QPointF centre, double radius, double hours)
{
    const double angle = hours / 12.0 * 2.0 * Pi;
    return centre + QPointF(radius * std::sin(angle), -radius * std::cos(angle));
}

QImage watermark()
{
    const QSize size(360, 90);
    QImage image = canvas(size);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(Oversampling, Oversampling);
    painter.setOpacity(0.72);

    // The mark: a pipe seen from inside, with its joints.
    const QPointF centre(44, 45);
    QPainterPath mark = ring(centre, 30, 5);
    mark.addPath(ring(centre, 18, 3.5));
    mark.addPath(ring(centre, 9, 2.5));
    mark.addEllipse(centre, 2.5, 2.5);

    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(33);
    font.setBold(true);
    QPainterPath name;
    name.setFillRule(Qt::WindingFill);
    name.addText(0, 0, font, QStringLiteral("XqVideoOverlay"));
    const QRectF bounds = name.boundingRect();
    const QRectF room(88, 0, size.width() - 88 - 10, size.height());
    const double scale = std::min(1.0, room.width() / bounds.width());
    QTransform place;
    place.translate(room.left(), room.center().y());
    place.scale(scale, scale);
    place.translate(-bounds.left(), -bounds.center().y());

    QPainterPath all = mark;
    all.setFillRule(Qt::WindingFill);
    all.addPath(place.map(name));
    drawOutlined(painter, all, Qt::white, 3.5);
    painter.end();
    return finished(image, size);
}

QImage crossSection()
{
    const QSize size(160, 160);
    QImage image = canvas(size);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(Oversampling, Oversampling);
    const QPointF centre(80, 80);

    // Soft ground, so that the thin parts stand out.
    QRadialGradient shade(centre, 78);
    shade.setColorAt(0.0, QColor(0, 0, 0, 110));
    shade.setColorAt(0.85, QColor(0, 0, 0, 110));
    shade.setColorAt(1.0, QColor(0, 0, 0, 0));
    painter.setPen(Qt::NoPen);
    painter.setBrush(shade);
    painter.drawEllipse(centre, 78, 78);

    // The water in the sole.
    QPainterPath bore;
    bore.addEllipse(centre, 43, 43);
    QPainterPath below;
    below.addRect(0, 108, 160, 60);
    painter.setBrush(QColor(90, 175, 235, 215));
    painter.drawPath(bore.intersected(below));

    drawOutlined(painter, ring(centre, 46, 6), Qt::white, 2.0);

    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(17);
    font.setBold(true);
    for (int hour = 1; hour <= 12; ++hour) {
        if (hour % 3 != 0) {
            QPainterPath tick;
            tick.moveTo(atClock(centre, 54, hour));
            tick.lineTo(atClock(centre, 60, hour));
            drawOutlined(painter, stroke(tick, 2.5), Qt::white, 1.5);
            continue;
        }
        QPainterPath figure;
        figure.setFillRule(Qt::WindingFill);
        figure.addText(0, 0, font, QString::number(hour));
        figure.translate(atClock(centre, 64, hour) - figure.boundingRect().center());
        drawOutlined(painter, figure, hour == 12 ? QColor(255, 205, 60) : QColor(Qt::white), 1.8);
    }

    // Where the camera is: a lens with its beam upwards.
    QPainterPath beam;
    beam.moveTo(centre);
    beam.lineTo(atClock(centre, 38, 11.2));
    beam.arcTo(QRectF(centre.x() - 38, centre.y() - 38, 76, 76), 114, -48);
    beam.closeSubpath();
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 205, 60, 120));
    painter.drawPath(beam);
    QPainterPath lens;
    lens.addEllipse(centre, 7, 7);
    drawOutlined(painter, lens, QColor(255, 205, 60), 2.0);
    painter.end();
    return finished(image, size);
}

bool save(const QImage &image, const QString &path)
{
    if (image.save(path, "PNG"))
        return true;
    std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
    return false;
}

} // namespace

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_pictures <directory>\n");
        return 2;
    }
    const QString directory = QString::fromLocal8Bit(argv[1]);
    const bool saved = save(watermark(), directory + QStringLiteral("/watermark.png"))
        && save(crossSection(), directory + QStringLiteral("/picture.png"));
    return saved ? 0 : 1;
}
