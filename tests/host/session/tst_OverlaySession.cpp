// SPDX-License-Identifier: Apache-2.0
#include "host/platform/Directories.h"
#include "host/platform/LocaleSettings.h"
#include "host/platform/TranslationStore.h"
#include "host/session/OverlaySession.h"
#include "tests/support/LoggedTest.h"

#include "videooverlay/display/CVideoOverlayManager.h"
#include "videooverlay/elements/CVideoOverlayImage.h"
#include "videooverlay/elements/CVideoOverlayText.h"
#include "videooverlay/models/VideoOverlayElementListModel.h"

#include <QDir>
#include <QFile>
#include <QRegion>
#include <QTemporaryDir>
#include <QtTest>

#include <limits>

using namespace Velmar;
using namespace Velmar::Host;
using namespace Velmar::VideoOverlay;

namespace {

TelemetryFile telemetry(const QByteArray &csv)
{
    QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("run.csv"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(csv) != csv.size())
        qFatal("cannot write the telemetry of this test");
    file.close();
    TelemetryFile result;
    QString error;
    if (!result.load(path, &error))
        qFatal("%s", qPrintable(error));
    return result;
}

const OverlayItem *itemAt(const OverlaySnapshot &overlay, QPoint position)
{
    for (const OverlayItem &item : overlay.items) {
        if (item.position == position)
            return &item;
    }
    return nullptr;
}

QString picturePath(const QTemporaryDir &directory)
{
    const QString path = directory.filePath(QStringLiteral("picture.png"));
    QImage image(200, 100, QImage::Format_ARGB32);
    image.fill(QColor(255, 0, 0, 128));
    image.save(path);
    return path;
}

CVideoOverlayText *textOf(const OverlaySession &session, const QString &name)
{
    const QList<CVideoOverlayElement *> elements = session.manager().getElementList();
    for (CVideoOverlayElement *element : elements) {
        if (element->getParamObject().value(ElementParam::NAME_COLUMNBOUND) == name)
            return qobject_cast<CVideoOverlayText *>(element);
    }
    return nullptr;
}

} // namespace

class tst_OverlaySession : public Velmar::Test::LoggedTest
{
    Q_OBJECT

public:
    tst_OverlaySession()
    {
        allow(QStringLiteral("2 VideoOverlayLibrary: Invalid project.")); // there is none here
    }

protected:
    void prepare() override
    {
        // Pictures are copied there.
        Directories::setSettingsDirectory(m_settings.path());
        Shared::LocaleSettings::reset();
        Translation::TranslationStore::instance().setDirectory(
            QStringLiteral(TRANSLATIONS_DIRECTORY));
        Translation::TranslationStore::instance().setLocale(QLocale(QStringLiteral("en_GB")));
    }

private:
    QTemporaryDir m_settings;

private Q_SLOTS:
    void everyCellLiesOnThePicture_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("pixelSize"); // 0: whatever fits
        QTest::newRow("640x480") << QSize(640, 480) << 0;
        QTest::newRow("1280x720") << QSize(1280, 720) << 0;
        QTest::newRow("1920x1080, as designed") << QSize(1920, 1080) << 35;
        QTest::newRow("3840x2160") << QSize(3840, 2160) << 0;
        QTest::newRow("portrait") << QSize(480, 800) << 0;
    }

    void everyCellLiesOnThePicture()
    {
        QFETCH(QSize, size);
        QFETCH(int, pixelSize);
        OverlaySession session(size);
        const VideoOverlaySettings &settings = session.settings();
        const QRectF picture(QPointF(0, 0), size);
        QVERIFY2(picture.contains(settings.marginRect()),
                 qPrintable(QStringLiteral("pixel size %1").arg(settings.font().pixelSize())));
        QCOMPARE(settings.marginRect().width(), 54 * settings.colWidth());
        QCOMPARE(settings.marginRect().height(), 27 * settings.rowHeight());
        // As large as it can be: what is left does not hold a font of two more pixels.
        QVERIFY(settings.rowHeight() > 1.0);
        if (pixelSize != 0)
            QCOMPARE(settings.font().pixelSize(), pixelSize);
        else
            QVERIFY(settings.marginRect().width() > 0.55 * size.width());
        QVERIFY(settings.font().fixedPitch());
        QCOMPARE(settings.font().letterSpacing(), 122.0);
    }

    /// The library tells by a signal alone.
    void loweredGridIsLogged()
    {
        OverlaySession session(QSize(1920, 1080));
        VideoOverlaySettings &settings = *session.manager().getSettings();
        QVERIFY(settings.setGrid(27, 60)); // the row count carries the column count
        session.resize(QSize(1280, 720));
        QCOMPARE(takeLog().filter(QStringLiteral("lowering")),
                 QStringList(QStringLiteral(
                     "2 Host: VideoOverlaySettings::onCapabilitiesChanged() error: lowering column "
                     "count to current possible maximum.")));
    }

    void elementsStandOnTheGrid()
    {
        OverlaySession session(QSize(1920, 1080));
        session.addTexts();
        session.setTelemetry(telemetry("t_ms,SPEED\n0,6.25\n"));
        session.advanceTo(0);
        const VideoOverlaySettings &settings = session.settings();
        const auto overlay = session.scene()->snapshot();
        const OverlayItem *speed
            = itemAt(*overlay,
                     QPoint(2 * qRound(settings.leftMargin() / 2),
                            2 * qRound((settings.topMargin() + 3 * settings.rowHeight()) / 2)));
        QVERIFY(speed);
        QCOMPARE(speed->opacity, 255);
        QCOMPARE(overlay->items.size(), 3); // heading, speed, time: no box without a reading
        QCOMPARE(overlay->clip, settings.marginRect().toAlignedRect());
    }

    void textsFollowTheReadings()
    {
        OverlaySession session(QSize(1920, 1080));
        session.addTexts();
        session.setTelemetry(telemetry("t_ms,SPEED,CAMERA_PAN\n0,6.0,\n200,6.1,10\n400,,-0.2\n"));
        QCOMPARE(session.nextChangeMs(), 0);
        session.advanceTo(0);
        QCOMPARE(session.nextChangeMs(), 200);
        const auto first = session.scene()->snapshot();
        session.advanceTo(199);
        QCOMPARE(session.scene()->snapshot(), first); // nothing new: the same overlay
        session.advanceTo(200);
        QVERIFY(session.scene()->snapshot() != first);
        QCOMPARE(session.scene()->snapshot()->items.size(), first->items.size() + 1);
        session.advanceTo(999);
        QCOMPARE(session.nextChangeMs(), 1000); // the video's time, in whole seconds
        session.advanceTo(2500);
        QCOMPARE(session.nextChangeMs(), 3000);

        // Back to the start: the speed of then.
        const auto end = session.scene()->snapshot();
        session.advanceTo(0);
        QVERIFY(session.scene()->snapshot() != end);
        QVERIFY(session.scene()->snapshot()->items.at(1).image == first->items.at(1).image);
    }

    void demonstrationIsTidyOnEveryPicture_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("640x480") << QSize(640, 480);
        QTest::newRow("720x576") << QSize(720, 576);
        QTest::newRow("1024x768") << QSize(1024, 768);
        QTest::newRow("1280x720") << QSize(1280, 720);
        QTest::newRow("1920x1080") << QSize(1920, 1080);
        QTest::newRow("3840x2160") << QSize(3840, 2160);
    }

    /// No text is broken, none covers another, and none leaves the picture.
    void demonstrationIsTidyOnEveryPicture()
    {
        QFETCH(QSize, size);
        TelemetryFile run;
        QString error;
        QVERIFY2(run.load(QStringLiteral(DEMO_DIRECTORY "/telemetry.csv"), &error),
                 qPrintable(error));
        OverlaySession session(size);
        session.addTexts();
        session.setTelemetry(run);
        const QRect picture(QPoint(0, 0), size);
        for (qint64 timeMs = 0; timeMs <= run.durationMs(); timeMs += 1000) {
            session.advanceTo(timeMs);
            QRegion taken;
            for (const OverlayItem &item : session.scene()->snapshot()->items) {
                const QRect box(item.position, item.image.size());
                QVERIFY2(box.height() <= int(session.settings().rowHeight()),
                         qPrintable(QStringLiteral("item %1 at %2 ms").arg(item.id).arg(timeMs)));
                QVERIFY(picture.contains(box));
                QVERIFY(box.y() % 2 == 0 && box.height() % 2 == 0); // whole colour samples
                QVERIFY(!taken.intersects(box));
                taken += box;
            }
        }
        QCOMPARE(session.scene()->snapshot()->items.size(), 14);
    }

    void unknownNamesAreIgnored()
    {
        OverlaySession session(QSize(1920, 1080));
        session.addTexts();
        session.setTelemetry(telemetry("t_ms,NOT_A_VALUE\n0,1\n"));
        session.advanceTo(0);
        QCOMPARE(session.scene()->snapshot()->items.size(), 2); // the heading and the time
        QCOMPARE(session.unshownNames(), QStringList(QStringLiteral("NOT_A_VALUE")));
        session.setTelemetry(telemetry("t_ms,SPEED,OTHER\n0,1,2\n"));
        QCOMPARE(session.unshownNames(), QStringList(QStringLiteral("OTHER")));
    }

    void readingsWithoutTexts()
    {
        OverlaySession session(QSize(1920, 1080));
        session.setTelemetry(telemetry("t_ms,SPEED\n0,1\n"));
        session.advanceTo(0);
        QCOMPARE(session.scene()->snapshot()->items.size(), 0);
        QCOMPARE(session.nextChangeMs(), std::numeric_limits<qint64>::max());
    }

    void picturesScaleToTheGrid()
    {
        QTemporaryDir directory;
        OverlaySession session(QSize(1280, 720));
        const double rowHeight = session.settings().rowHeight();
        QVERIFY(session.addPicture(picturePath(directory), 4, 40, 4));
        QCOMPARE(session.scene()->snapshot()->items.size(), 1);
        const OverlayItem item = session.scene()->snapshot()->items.first();
        QCOMPARE(item.image.height(), int(4 * rowHeight));
        QVERIFY(qAbs(item.image.width() - 2 * item.image.height()) <= 2);
        QCOMPARE(item.image.format(), QImage::Format_ARGB32);
    }

    void watermarkStandsInTheCorner()
    {
        QTemporaryDir directory;
        OverlaySession session(QSize(1920, 1080));
        QVERIFY(session.setWatermark(picturePath(directory)));
        const OverlayItem item = session.scene()->snapshot()->items.first();
        const QRectF margins = session.settings().marginRect();
        const QRect box(item.position, item.image.size());
        QVERIFY(margins.toAlignedRect().contains(box));
        QVERIFY(margins.right() - box.right() < 2 * session.settings().colWidth());
    }

    /// Nothing is sent again by itself: neither the texts nor the watermark, which stands in no
    /// list. One that is not hidden is not shown by showWatermark() alone.
    void displayThatComesUpLater()
    {
        QTemporaryDir directory;
        OverlaySession session(QSize(1920, 1080));
        session.addTexts();
        QVERIFY(session.setWatermark(picturePath(directory)));
        const auto shown = [&session] {
            session.scene()->flush();
            QVector<int> ids;
            for (const OverlayItem &item : session.scene()->snapshot()->items)
                ids.append(item.id);
            return ids;
        };
        const QVector<int> before = shown(); // the heading and the watermark
        QCOMPARE(before.size(), 2);

        QSignalSpy available(&session.manager(),
                             &CVideoOverlayManager::videoOverlayAvailableChanged);
        session.scene()->stop();
        session.scene()->start();
        QCOMPARE(available.count(), 2);
        QCOMPARE(shown(), QVector<int>());
        session.manager().onSettingsChanged();
        QCOMPARE(shown(), QVector<int>(1, before.first()));
        session.manager().showWatermark();
        QCOMPARE(shown(), QVector<int>(1, before.first()));
        session.manager().hideWatermark();
        session.manager().showWatermark();
        QCOMPARE(shown(), before);
    }

    void languageAndUnits_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<bool>("imperial");
        QTest::addColumn<QStringList>("texts");
        QTest::newRow("English, metric")
            << QStringLiteral("en_GB") << false
            << QStringList({QStringLiteral("Speed:                 6.50 m/min"),
                            QStringLiteral("Section distance counter:    12.35 m"),
                            QStringLiteral("Camera Temperature: 24.6 \u00B0C"),
                            QStringLiteral("Crawler Pressure: 1146 mbar")});
        QTest::newRow("German, imperial")
            << QStringLiteral("de_DE") << true
            << QStringList({QStringLiteral("Geschwindigkeit: 21.33 ft/min"),
                            QStringLiteral("Meterz\u00E4hler Haltung: 40,50 ft"),
                            QStringLiteral("Kameratemperatur: 76,3 \u00B0F"),
                            QStringLiteral("Fahrwagendruck: 1146 mbar")});
    }

    void languageAndUnits()
    {
        QFETCH(QString, locale);
        QFETCH(bool, imperial);
        QFETCH(QStringList, texts);
        Shared::LocaleSettings::setLocale(QLocale(locale));
        Shared::LocaleSettings::setUnitSystem(imperial
                                                  ? Shared::LocaleSettings::UnitSystem::Imperial
                                                  : Shared::LocaleSettings::UnitSystem::Metric);
        Translation::TranslationStore::instance().setLocale(QLocale(locale));
        OverlaySession session(QSize(1920, 1080));
        session.addTexts();
        session.setTelemetry(telemetry("t_ms,SPEED,SECTION_DISTANCE_COUNTER,CAMERA_TEMPERATURE,"
                                       "CRAWLER_PRESSURE\n0,6.5,12.345,24.6,1146\n"));
        session.advanceTo(0);
        QStringList shown;
        for (const char *name :
             {"SPEED", "SECTION_DISTANCE_COUNTER", "CAMERA_TEMPERATURE", "CRAWLER_PRESSURE"})
            shown.append(textOf(session, QString::fromLatin1(name))->text());
        for (int i = 0; i < texts.size(); ++i)
            QCOMPARE(shown.at(i).simplified(), texts.at(i).simplified());
        // The boxes of a block end at the same cell.
        QCOMPARE(shown.at(0).size(), shown.at(1).size());
    }

    void theManagerAndTheListHaveTheElements()
    {
        OverlaySession session(QSize(1920, 1080));
        session.addTexts();
        VideoOverlayElementListModel &list = *session.manager().getElementListModel();
        QCOMPARE(list.rowCount(), 14);
        QVERIFY(session.manager().getPropertiesWithChanges().isEmpty()); // the baseline
        QCOMPARE(session.manager().getGlobalTransparency(), 0);
        CVideoOverlayText *speed = textOf(session, QStringLiteral("SPEED"));
        QVERIFY(speed && !speed->visible()); // until its first value

        // Loaded again, there are as many, and they show the last values.
        session.feed().setValue(QStringLiteral("SPEED"), 3.0);
        session.addTexts();
        QCOMPARE(list.rowCount(), 14);
        speed = textOf(session, QStringLiteral("SPEED"));
        QVERIFY(speed->visible());
        QVERIFY2(speed->text().endsWith(QStringLiteral(" 3.00 m/min")), qPrintable(speed->text()));
        // What no factory serves has no record of its own: what it is now is the baseline.
        ElementParam other;
        other.insert(QStringLiteral("type"), int(CVideoOverlayElement::SystemText));
        other.insert(ElementParam::NAME_COLUMNBOUND, QStringLiteral("OTHER"));
        session.load({other});
        QVERIFY(session.manager().getPropertiesWithChanges().isEmpty());
        session.load({});
        QCOMPARE(list.rowCount(), 0);
        QCOMPARE(session.scene()->snapshot()->items.size(), 0);
    }

    void dateAndTimeFollowTheStart()
    {
        ElementParam date;
        date.insert(QStringLiteral("type"), int(CVideoOverlayElement::SystemText));
        date.insert(QStringLiteral("enabled"), true);
        date.insert(QStringLiteral("unit"), QStringLiteral("yyyy-MM-dd"));
        date.insert(ElementParam::NAME_COLUMNBOUND, ElementParam::NAME_DATE);
        ElementParam time = date;
        time.insert(QStringLiteral("row"), 1);
        time.insert(QStringLiteral("unit"), QStringLiteral("hh:mm:ss"));
        time.insert(ElementParam::NAME_COLUMNBOUND, ElementParam::NAME_TIME);
        OverlaySession session(QSize(1920, 1080));
        session.load({date, time});
        session.setTelemetry(telemetry("t_ms,DATE\n0,2001-02-03\n"));
        session.advanceTo(0);
        QCOMPARE(textOf(session, ElementParam::NAME_DATE)->text(), QStringLiteral("2001-02-03 "));
        QVERIFY(!textOf(session, ElementParam::NAME_TIME)->visible());

        session.setStart(QDateTime(QDate(2026, 3, 31), QTime(23, 59, 58, 400)));
        session.advanceTo(0);
        QCOMPARE(textOf(session, ElementParam::NAME_DATE)->text(), QStringLiteral("2026-03-31 "));
        QCOMPARE(textOf(session, ElementParam::NAME_TIME)->text(), QStringLiteral("23:59:58 "));
        QCOMPARE(session.nextChangeMs(), 600);
        session.advanceTo(1600);
        QCOMPARE(textOf(session, ElementParam::NAME_DATE)->text(), QStringLiteral("2026-04-01 "));
        QCOMPARE(textOf(session, ElementParam::NAME_TIME)->text(), QStringLiteral("00:00:00 "));
        QCOMPARE(session.nextChangeMs(), 2600);
    }

    /// As a floating-point number each of these would be written with an exponent, and read as 0.
    void roundTimes()
    {
        ElementParam date;
        date.insert(QStringLiteral("type"), int(CVideoOverlayElement::SystemText));
        date.insert(QStringLiteral("enabled"), true);
        date.insert(QStringLiteral("unit"), QStringLiteral("yyyy-MM-dd"));
        date.insert(ElementParam::NAME_COLUMNBOUND, ElementParam::NAME_DATE);
        ElementParam time = date;
        time.insert(QStringLiteral("unit"), QStringLiteral("hh:mm:ss"));
        time.insert(ElementParam::NAME_COLUMNBOUND, ElementParam::NAME_TIME);
        ElementParam videoTime = time;
        videoTime.insert(ElementParam::NAME_COLUMNBOUND, ElementParam::NAME_VIDEO_TIME_COUNTER);
        OverlaySession session(QSize(1920, 1080));
        session.load({date, time, videoTime});
        session.setStart(QDateTime::fromMSecsSinceEpoch(1774999000000));
        session.advanceTo(1000000);
        QCOMPARE(textOf(session, ElementParam::NAME_DATE)->text(), QStringLiteral("2026-03-31 "));
        QCOMPARE(textOf(session, ElementParam::NAME_TIME)->text(), QStringLiteral("23:33:20 "));
        QCOMPARE(textOf(session, ElementParam::NAME_VIDEO_TIME_COUNTER)->text(),
                 QStringLiteral("00:16:40 "));
    }

    void unreadablePictures()
    {
        QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("text.png"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("no picture at all");
        file.close();
        OverlaySession session(QSize(1920, 1080));
        QVERIFY(!session.addPicture(directory.filePath(QStringLiteral("missing.png")), 0, 0, 4));
        QVERIFY(!session.addPicture(path, 0, 0, 4));
        QVERIFY(!session.setWatermark(path));
        QCOMPARE(session.scene()->snapshot()->items.size(), 0);
    }
};

QTEST_MAIN(tst_OverlaySession)
#include "tst_OverlaySession.moc"
