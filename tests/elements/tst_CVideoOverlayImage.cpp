// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/elements/CVideoOverlayImage.h"

#include "tests/support/LockProbe.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"
#include "tests/support/PictureFiles.h"
#include "tests/support/SignalJournal.h"

#include <QDataStream>
#include <QFile>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <functional>
#include <limits>

using Velmar::Test::LockProbe;
using Velmar::Test::methodsOf;
using Velmar::Test::propertiesOf;
using Velmar::Test::SignalJournal;
using Velmar::Test::waitsForLock;
using Velmar::Test::writeBlackPixmap;
using Velmar::Test::writePngHeader;
using Velmar::VideoOverlay::CVideoOverlayElement;
using Velmar::VideoOverlay::CVideoOverlayImage;
using Velmar::VideoOverlay::ElementParam;
using Velmar::VideoOverlay::RenderedElement;

using Action = std::function<void(CVideoOverlayImage &)>;
Q_DECLARE_METATYPE(Action)

namespace {

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

/// A picture in which every pixel differs from its neighbours.
QImage pattern(int width, int height, QImage::Format format = QImage::Format_ARGB32)
{
    QImage image(width, height, format);
    image.fill(Qt::black);
    for (int y = 0; y < std::min(height, 64); ++y) {
        for (int x = 0; x < std::min(width, 64); ++x)
            image.setPixel(x, y, qRgba(x * 4, y * 4, (x + y) * 2, 255));
    }
    return image;
}

QImage placeholder()
{
    return QImage(QStringLiteral(":/general/image_too_large.png"));
}

} // namespace

class tst_CVideoOverlayImage : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;

    QString path(const char *name) const { return m_directory.filePath(QString::fromLatin1(name)); }

    /// A picture file of 40 x 30 pixels.
    QString goodFile(const char *name = "good.png") const
    {
        const QString file = path(name);
        return pattern(40, 30).save(file) ? file : QString();
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_directory.isValid()); }

    void metaObject()
    {
        QCOMPARE(propertiesOf(CVideoOverlayImage::staticMetaObject),
                 QStringList({QStringLiteral("QString imageSrc write imageSrcChanged()"),
                              QStringLiteral("int imageSrcWidth imageSrcWidthChanged(int)"),
                              QStringLiteral("int imageSrcHeight imageSrcHeightChanged(int)"),
                              QStringLiteral("double scaleFactor write scaleFactorChanged()")}));
        QCOMPARE(methodsOf(CVideoOverlayImage::staticMetaObject),
                 QStringList({QStringLiteral("signal imageSrcChanged()"),
                              QStringLiteral("signal imageSrcWidthChanged(int)"),
                              QStringLiteral("signal imageSrcHeightChanged(int)"),
                              QStringLiteral("signal scaleFactorChanged()")}));
        const QMetaObject &meta = CVideoOverlayImage::staticMetaObject;
        const auto parameters = [&](const char *signature) {
            return meta.method(meta.indexOfSignal(signature)).parameterNames();
        };
        QCOMPARE(parameters("imageSrcWidthChanged(int)"), QList<QByteArray>({"width"}));
        QCOMPARE(parameters("imageSrcHeightChanged(int)"), QList<QByteArray>({"height"}));
    }

    void initialValues()
    {
        CVideoOverlayImage element;
        QCOMPARE(element.imageSrc(), QString());
        QCOMPARE(element.scaleFactor(), 1.0);
        QCOMPARE(element.imageSrcWidth(), 0);
        QCOMPARE(element.imageSrcHeight(), 0);
        QVERIFY(element.getElement().getImage().isNull());
        QVERIFY(element.createScaledImage().isNull());
        element.setUnit(QStringLiteral("m"));
        QCOMPARE(element.unit(), QString());
    }

    // --- loading

    void loadsAFile()
    {
        const QString file = goodFile();
        LockProbe<CVideoOverlayImage> element;
        SignalJournal journal(element, CVideoOverlayImage::staticMetaObject);
        bool alwaysLocked = true;
        journal.setObserver(
            [&](const QString &) { alwaysLocked = alwaysLocked && element.isLocked(); });
        element.setImageSrc(file);
        QCOMPARE(journal.take(),
                 words("widthChanged heightChanged imageSrcChanged imageSrcWidthChanged(40) "
                       "imageSrcHeightChanged(30) captionChanged"));
        QVERIFY(alwaysLocked);
        QCOMPARE(element.imageSrc(), file);
        QCOMPARE(element.caption(), file);
        QCOMPARE(element.imageSrcWidth(), 40);
        QCOMPARE(element.imageSrcHeight(), 30);
        QCOMPARE(element.width(), 40.0);
        QCOMPARE(element.height(), 30.0);
        QCOMPARE(element.getElement().getImage().convertToFormat(QImage::Format_ARGB32),
                 pattern(40, 30));

        element.setImageSrc(file); // the same path: silent
        QCOMPARE(journal.take(), QStringList());
        QVERIFY(element.setProperty("imageSrc", goodFile("other.png"))); // writable, same size
        QCOMPARE(journal.take(),
                 words("imageSrcChanged imageSrcWidthChanged(40) imageSrcHeightChanged(30) "
                       "captionChanged"));
    }

    void samePathIsNotReadAgain()
    {
        const QString file = goodFile("replaced.png");
        CVideoOverlayImage element;
        element.setImageSrc(file);
        QVERIFY(pattern(10, 10).save(file));
        element.setImageSrc(file);
        QCOMPARE(element.imageSrcWidth(), 40);
    }

    void emptyPathOfANewElementIsNoChange()
    {
        CVideoOverlayImage element;
        SignalJournal journal(element, CVideoOverlayImage::staticMetaObject);
        element.setImageSrc(QString());
        QCOMPARE(journal.take(), QStringList());
    }

    void pictureUnderAWrongName()
    {
        const QString file = path("a picture.txt");
        QVERIFY(pattern(40, 30).save(file, "PNG"));
        CVideoOverlayImage element;
        element.setImageSrc(file);
        QCOMPARE(element.imageSrcWidth(), 40);
    }

    void filesThatCannotBeLoaded_data()
    {
        QTest::addColumn<QString>("file");

        QTest::newRow("missing") << path("missing.png");
        QTest::newRow("empty path") << QString();
        QTest::newRow("directory") << m_directory.path();

        QFile notAPicture(path("text.png"));
        QVERIFY(notAPicture.open(QIODevice::WriteOnly));
        notAPicture.write("Inspection of Mill Street, 12 m\n");
        QTest::newRow("not a picture") << notAPicture.fileName();

        QFile empty(path("empty.png"));
        QVERIFY(empty.open(QIODevice::WriteOnly));
        QTest::newRow("empty file") << empty.fileName();

        const QString truncated = goodFile("truncated.png");
        QVERIFY(QFile::resize(truncated, QFileInfo(truncated).size() / 2));
        QTest::newRow("truncated") << truncated;
        const QString headless = goodFile("headless.png");
        QVERIFY(QFile::resize(headless, 12));
        QTest::newRow("truncated in the header") << headless;

        const QString claims = path("claims.png");
        QVERIFY(writePngHeader(claims, QSize(50000, 50000)));
        QTest::newRow("header claims 50000 x 50000") << claims;

        QFile flat(path("flat.gif"));
        QVERIFY(flat.open(QIODevice::WriteOnly));
        flat.write(QByteArray::fromHex("474946383961"
                                       "0a000000000000"
                                       "2c000000000a0000000002003b"));
        QTest::newRow("no height") << flat.fileName();

        QFile topDown(path("topdown.bmp"));
        QVERIFY(topDown.open(QIODevice::WriteOnly));
        QDataStream out(&topDown);
        out.setByteOrder(QDataStream::LittleEndian);
        out.writeRawData("BM", 2);
        out << quint32(454) << quint32(0) << quint32(54) << quint32(40) << qint32(13000)
            << qint32(-13000) << quint16(1) << quint16(24);
        for (int i = 0; i < 6; ++i)
            out << quint32(0);
        topDown.write(QByteArray(400, '\xff'));
        QTest::newRow("top-down, needs more than 512 MiB") << topDown.fileName();

        const QString monster = path("monster.ppm");
        QVERIFY(writeBlackPixmap(monster, QSize(16384, 8193), true));
        QTest::newRow("needs more than 512 MiB") << monster;
    }

    void filesThatCannotBeLoaded()
    {
        QFETCH(QString, file);
        CVideoOverlayImage element;
        element.setImageSrc(goodFile());
        const QImage before = element.getElement().getImage();
        SignalJournal journal(element, CVideoOverlayImage::staticMetaObject);
        element.setImageSrc(file);

        // path and caption change, the picture stays
        QCOMPARE(journal.take(),
                 words("imageSrcChanged imageSrcWidthChanged(40) imageSrcHeightChanged(30) "
                       "captionChanged"));
        QCOMPARE(element.imageSrc(), file);
        QCOMPARE(element.caption(), file);
        QCOMPARE(element.width(), 40.0);
        QCOMPARE(element.height(), 30.0);
        QCOMPARE(element.getElement().getImage().cacheKey(), before.cacheKey());
    }

    void firstFileCannotBeLoaded()
    {
        CVideoOverlayImage element;
        SignalJournal journal(element, CVideoOverlayImage::staticMetaObject);
        element.setImageSrc(path("missing.png"));
        QCOMPARE(journal.take(),
                 words("imageSrcChanged imageSrcWidthChanged(0) imageSrcHeightChanged(0) "
                       "captionChanged"));
        QVERIFY(element.getElement().getImage().isNull());
    }

    /// The limits apply to the scaled size, so the guard of the memory must let this through.
    void largeFileWithASmallFactor()
    {
        const QString file = path("large.pgm");
        QVERIFY(writeBlackPixmap(file, QSize(11000, 11000), false)); // 484 MiB, counted as it is
        CVideoOverlayImage element;
        element.setScaleFactor(0.1);
        element.setImageSrc(file);
        QCOMPARE(element.imageSrcWidth(), 11000);
        QCOMPARE(element.width(), 1100.0);
        QCOMPARE(element.height(), 1100.0);
    }

    void readersWaitForTheLock_data()
    {
        QTest::addColumn<Action>("read");
        const auto row = [](const char *name, const Action &read) { QTest::newRow(name) << read; };
        row("imageSrc", [](CVideoOverlayImage &e) { e.imageSrc(); });
        row("imageSrcWidth", [](CVideoOverlayImage &e) { e.imageSrcWidth(); });
        row("imageSrcHeight", [](CVideoOverlayImage &e) { e.imageSrcHeight(); });
        row("scaleFactor", [](CVideoOverlayImage &e) { e.scaleFactor(); });
        row("getElement", [](CVideoOverlayImage &e) { e.getElement(); });
        row("createScaledImage", [](CVideoOverlayImage &e) { e.createScaledImage(); });
        row("setScaleFactor", [](CVideoOverlayImage &e) { e.setScaleFactor(1.0); });
    }

    void readersWaitForTheLock()
    {
        QFETCH(Action, read);
        CVideoOverlayImage element;
        QVERIFY(waitsForLock(element, read));
    }

    // --- pictures made elsewhere

    void setImage()
    {
        LockProbe<CVideoOverlayImage> element;
        element.setImageSrc(goodFile());
        SignalJournal journal(element, CVideoOverlayImage::staticMetaObject);
        bool alwaysLocked = true;
        journal.setObserver(
            [&](const QString &) { alwaysLocked = alwaysLocked && element.isLocked(); });
        const QImage picture = pattern(20, 10);
        element.setImage(picture);
        QCOMPARE(journal.take(),
                 words("widthChanged heightChanged imageSrcChanged imageSrcWidthChanged(20) "
                       "imageSrcHeightChanged(10)"));
        QVERIFY(alwaysLocked);
        QCOMPARE(element.imageSrc(), goodFile()); // path and caption stay
        QCOMPARE(element.caption(), goodFile());

        element.setImage(picture); // no equality test
        QCOMPARE(journal.take(),
                 words("imageSrcChanged imageSrcWidthChanged(20) imageSrcHeightChanged(10)"));
        element.setImage(QImage());
        QCOMPARE(journal.take(),
                 words("widthChanged heightChanged imageSrcChanged imageSrcWidthChanged(0) "
                       "imageSrcHeightChanged(0)"));
        QVERIFY(element.getElement().getImage().isNull());
    }

    // --- scaling

    void setScaleFactor()
    {
        LockProbe<CVideoOverlayImage> element;
        element.setImage(pattern(100, 60));
        SignalJournal journal(element, CVideoOverlayImage::staticMetaObject);
        bool alwaysLocked = true;
        journal.setObserver(
            [&](const QString &) { alwaysLocked = alwaysLocked && element.isLocked(); });
        element.setScaleFactor(0.5);
        element.setScaleFactor(0.5);
        QCOMPARE(journal.take(), words("widthChanged heightChanged scaleFactorChanged"));
        QVERIFY(alwaysLocked);
        QCOMPARE(element.scaleFactor(), 0.5);
        QCOMPARE(element.width(), 50.0);
        QCOMPARE(element.height(), 30.0);
        QCOMPARE(element.imageSrcWidth(), 100); // of the source
        QVERIFY(element.setProperty("scaleFactor", 2.0));
        QCOMPARE(element.width(), 200.0);
    }

    void scaledSize_data()
    {
        QTest::addColumn<QSize>("source");
        QTest::addColumn<double>("factor");
        QTest::addColumn<QSize>("scaled"); // empty: null; -1: the placeholder

        constexpr double infinity = std::numeric_limits<double>::infinity();
        constexpr double nan = std::numeric_limits<double>::quiet_NaN();
        const QSize tooLarge(-1, -1);
        const QSize null(0, 0);

        QTest::newRow("1000 x 700 by 3.0") << QSize(1000, 700) << 3.0 << tooLarge;
        QTest::newRow("1000 x 700 by 2.9") << QSize(1000, 700) << 2.9 << tooLarge;
        QTest::newRow("1000 x 700 by 2.5") << QSize(1000, 700) << 2.5 << QSize(2500, 1750);
        QTest::newRow("exactly 3000 wide") << QSize(1500, 10) << 2.0 << QSize(3000, 20);
        QTest::newRow("3000 wide unscaled") << QSize(3000, 10) << 1.0 << QSize(3000, 10);
        QTest::newRow("3001 wide unscaled") << QSize(3001, 10) << 1.0 << tooLarge;
        QTest::newRow("a fraction more than 3000 wide") << QSize(1001, 10) << 3.0 << tooLarge;
        QTest::newRow("exactly 2000 high") << QSize(10, 1000) << 2.0 << QSize(20, 2000);
        QTest::newRow("2000 high unscaled") << QSize(10, 2000) << 1.0 << QSize(10, 2000);
        QTest::newRow("2001 high unscaled") << QSize(10, 2001) << 1.0 << tooLarge;
        QTest::newRow("a fraction more than 2000 high") << QSize(10, 1001) << 1.999 << tooLarge;
        QTest::newRow("large with a small factor") << QSize(4000, 3000) << 0.5 << QSize(2000, 1500);
        QTest::newRow("truncated, not rounded") << QSize(100, 100) << 0.29 << QSize(28, 28);
        QTest::newRow("aspect ratio ignored") << QSize(100, 33) << 0.5 << QSize(50, 16);
        QTest::newRow("zero") << QSize(100, 100) << 0.0 << null;
        QTest::newRow("negative") << QSize(100, 100) << -1.0 << null;
        QTest::newRow("not a number") << QSize(100, 100) << nan << null;
        QTest::newRow("infinite") << QSize(100, 100) << infinity << tooLarge;
        QTest::newRow("minus infinite") << QSize(100, 100) << -infinity << null;
        QTest::newRow("less than a pixel is left") << QSize(100, 100) << 0.001 << null;
        QTest::newRow("less than a pixel high") << QSize(100, 10) << 0.05 << null;
        QTest::newRow("largest number")
            << QSize(100, 100) << std::numeric_limits<double>::max() << tooLarge;
        QTest::newRow("no picture") << null << 2.0 << null;
        QTest::newRow("no picture, infinite") << null << infinity << null;
    }

    void scaledSize()
    {
        QFETCH(QSize, source);
        QFETCH(double, factor);
        QFETCH(QSize, scaled);
        CVideoOverlayImage element;
        element.setImage(QImage(source, QImage::Format_RGB32));
        element.setScaleFactor(factor);
        const QImage expectedPlaceholder = placeholder();
        QVERIFY(!expectedPlaceholder.isNull());
        const bool replaced = scaled.width() < 0;

        const QImage image = element.createScaledImage();
        QCOMPARE(image.size(), replaced ? expectedPlaceholder.size() : scaled);
        QCOMPARE(image.isNull(), scaled.width() == 0);
        if (replaced)
            QCOMPARE(image, expectedPlaceholder);
        QCOMPARE(element.getElement().getImage().size(), image.size());
        QCOMPARE(element.width(), double(image.width())); // follows the picture as it is drawn
        QCOMPARE(element.height(), double(image.height()));
        QCOMPARE(element.imageSrcWidth(), source.width());
    }

    void notANumberTwiceIsNoChange()
    {
        CVideoOverlayImage element;
        QSignalSpy changed(&element, &CVideoOverlayImage::scaleFactorChanged);
        element.setScaleFactor(std::numeric_limits<double>::quiet_NaN());
        element.setScaleFactor(std::numeric_limits<double>::quiet_NaN());
        QVERIFY(std::isnan(element.scaleFactor()));
        QCOMPARE(changed.count(), 1);
    }

    void factorOneKeepsTheSourceItself_data()
    {
        QTest::addColumn<double>("factor");
        QTest::addColumn<bool>("itself");
        QTest::newRow("one") << 1.0 << true;
        QTest::newRow("a little more") << 1.0 + 5e-13 << true;
        QTest::newRow("a little less") << 1.0 - 5e-13 << true;
        QTest::newRow("more than a little more") << 1.0 + 5e-12 << false;
        QTest::newRow("more than a little less") << 1.0 - 5e-12 << false;
    }

    void factorOneKeepsTheSourceItself()
    {
        QFETCH(double, factor);
        QFETCH(bool, itself);
        CVideoOverlayImage element;
        const QImage picture = pattern(20, 10);
        element.setScaleFactor(factor);
        element.setImage(picture);
        QCOMPARE(element.createScaledImage().cacheKey() == picture.cacheKey(), itself);
        QCOMPARE(element.getElement().getImage().cacheKey() == picture.cacheKey(), itself);
    }

    /// What stands under transparent pixels must not show in the edges of a scaled picture.
    void scalingMixesNoColorFromTransparentPixels_data()
    {
        QTest::addColumn<double>("factor");
        QTest::newRow("smaller") << 0.4;
        QTest::newRow("larger") << 2.7;
    }

    void scalingMixesNoColorFromTransparentPixels()
    {
        QFETCH(double, factor);
        QImage disc(50, 50, QImage::Format_ARGB32);
        for (int y = 0; y < 50; ++y) {
            for (int x = 0; x < 50; ++x) {
                const bool inside = std::hypot(x - 24.5, y - 24.5) < 20.0;
                disc.setPixel(x, y, inside ? 0xffffffff : 0x00000000);
            }
        }
        CVideoOverlayImage element;
        element.setScaleFactor(factor);
        element.setImage(disc);
        const QImage scaled
            = element.getElement().getImage().convertToFormat(QImage::Format_ARGB32);
        int partly = 0;
        for (int y = 0; y < scaled.height(); ++y) {
            for (int x = 0; x < scaled.width(); ++x) {
                const QRgb pixel = scaled.pixel(x, y);
                const int alpha = qAlpha(pixel);
                if (alpha < 16)
                    continue; // so faint that rounding decides the colour
                partly += alpha < 255;
                QVERIFY2(qRed(pixel) >= 240 && qGreen(pixel) >= 240 && qBlue(pixel) >= 240,
                         qPrintable(QString::number(pixel, 16)));
            }
        }
        QVERIFY(partly > 20);
    }

    void scalingIsSmooth()
    {
        QImage board(40, 40, QImage::Format_RGB32);
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 40; ++x)
                board.setPixel(x, y, (x + y) % 2 ? 0xffffffff : 0xff000000);
        }
        CVideoOverlayImage element;
        element.setScaleFactor(0.5);
        element.setImage(board);
        const int gray = qRed(element.createScaledImage().pixel(10, 10));
        QVERIFY(gray > 100 && gray < 155);
    }

    // --- the finished picture

    void elementRecord()
    {
        CVideoOverlayImage element;
        element.setId(9);
        element.setType(CVideoOverlayElement::Watermark);
        element.setEnabled(true);
        element.setPosition(12.5, 3.5);
        element.setImage(pattern(20, 10));
        const RenderedElement rendered = element.getElement();
        QCOMPARE(rendered.id(), 9);
        QCOMPARE(rendered.type(), 5);
        QCOMPARE(rendered.x(), 12.5);
        QCOMPARE(rendered.y(), 3.5);
        QCOMPARE(rendered.visible(), true);
        QCOMPARE(rendered.repaint(), true);
        QCOMPARE(rendered.getImage(), pattern(20, 10));
    }

    void renderInto()
    {
        CVideoOverlayImage element;
        QImage target(30, 20, QImage::Format_ARGB32);
        target.fill(0xff112233);
        const QImage untouched = target.copy();
        element.renderInto(target); // no picture yet
        QCOMPARE(target, untouched);

        element.setImage(pattern(20, 10));
        element.renderInto(target);
        QCOMPARE(target.copy(0, 0, 20, 10), pattern(20, 10));
        QCOMPARE(target.pixel(20, 0), QRgb(0xff112233));
        QCOMPARE(target.pixel(0, 10), QRgb(0xff112233));

        CVideoOverlayImage translucent; // is painted over what is there, not in its place
        QImage red(4, 4, QImage::Format_ARGB32);
        red.fill(0x80ff0000);
        translucent.setImage(red);
        QImage blue(4, 4, QImage::Format_ARGB32);
        blue.fill(0xff0000ff);
        translucent.renderInto(blue);
        QCOMPARE(blue.pixel(1, 1), QRgb(0xff80007f));

        element.setScaleFactor(0.5);
        QImage small(10, 5, QImage::Format_ARGB32);
        small.fill(Qt::transparent);
        element.renderInto(small);
        QCOMPARE(small, element.createScaledImage().convertToFormat(QImage::Format_ARGB32));

        QImage null;
        element.renderInto(null);
        QVERIFY(null.isNull());
    }

    // --- change tracking

    void changesOfANewElement()
    {
        const CVideoOverlayImage element;
        const ElementParam changed = element.getChangedProperties();
        QCOMPARE(changed.size(), 3);
        QCOMPARE(changed.value(QStringLiteral("scale")), QVariant(1.0)); // absent reads as 0
        QVERIFY(changed.contains(QStringLiteral("captionEnabled")));
        QVERIFY(changed.contains(QStringLiteral("maxLineNumber")));
    }

    void changedProperties_data()
    {
        QTest::addColumn<QVariant>("storedPath");
        QTest::addColumn<QVariant>("storedScale");
        QTest::addColumn<QStringList>("changed");
        const QVariant samePath = path("missing.png");
        QTest::newRow("both the same") << samePath << QVariant(1.5) << QStringList();
        QTest::newRow("scale converted")
            << samePath << QVariant(QStringLiteral("1.5")) << QStringList();
        QTest::newRow("other path")
            << QVariant(QStringLiteral("/old.png")) << QVariant(1.5) << words("imagePath");
        QTest::newRow("no path") << QVariant() << QVariant(1.5) << words("imagePath");
        QTest::newRow("other scale") << samePath << QVariant(1.0) << words("scale");
    }

    void changedProperties()
    {
        QFETCH(QVariant, storedPath);
        QFETCH(QVariant, storedScale);
        QFETCH(QStringList, changed);
        CVideoOverlayImage element;
        ElementParam record {{QStringLiteral("captionEnabled"), true},
                             {QStringLiteral("maxLineNumber"), 3},
                             {QStringLiteral("scale"), storedScale}};
        if (storedPath.isValid())
            record.insert(QStringLiteral("imagePath"), storedPath);
        element.setParamObject(record);
        element.setImageSrc(path("missing.png"));
        element.setScaleFactor(1.5);
        QCOMPARE(QStringList(element.getChangedProperties().keys()), changed);
        const ElementParam all = element.getAllProperties();
        QCOMPARE(all.value(QStringLiteral("imagePath")), QVariant(path("missing.png")));
        QCOMPARE(all.value(QStringLiteral("scale")).toDouble(), 1.5);

        element.applyChangesToOrigParams();
        QVERIFY(element.getChangedProperties().isEmpty());
        QCOMPARE(element.getParamObject(), all);
    }
};

QTEST_MAIN(tst_CVideoOverlayImage)
#include "tst_CVideoOverlayImage.moc"
