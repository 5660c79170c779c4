// SPDX-License-Identifier: Apache-2.0
#include "host/screens/LiveOverlay.h"

#include "host/platform/CatalogStore.h"
#include "host/platform/Directories.h"
#include "host/platform/LocaleSettings.h"
#include "host/platform/TranslationStore.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/TextFile.h"

#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/elements/CVideoOverlayText.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>

#include <QDateTime>
#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

using namespace Velmar;
using namespace Velmar::Host;
using namespace Velmar::VideoOverlay;

namespace {

CVideoOverlayText *textOf(const LiveOverlay &overlay, const QString &name)
{
    const QList<CVideoOverlayElement *> elements = overlay.manager().getElementList();
    for (CVideoOverlayElement *element : elements) {
        if (element->getParamObject().value(ElementParam::NAME_COLUMNBOUND) == name)
            return qobject_cast<CVideoOverlayText *>(element);
    }
    return nullptr;
}

} // namespace

class tst_LiveOverlay : public Velmar::Test::LoggedTest
{
    Q_OBJECT

public:
    tst_LiveOverlay() { allow(QStringLiteral("2 VideoOverlayLibrary: Invalid project.")); }

protected:
    void prepare() override
    {
        m_root = std::make_unique<QTemporaryDir>();
        const QDir data(QStringLiteral(XQ_DATA_DIRECTORY));
        Directories::setSettingsDirectory(m_root->filePath(QStringLiteral("settings")));
        Directories::setReadonlyConfigDirectory(data.path());
        CATManagement::CatalogStore::instance().setDirectory(
            data.filePath(QStringLiteral("catalogs")));
        Translation::TranslationStore::instance().setDirectory(
            data.filePath(QStringLiteral("translations")));
        Shared::LocaleSettings::reset();
    }

private Q_SLOTS:
    void firstStart();
    void dateAndTimeAreTheWalls();
    void dateFromOutsideStays();
    void dateOfTheRunStays();

private:
    std::unique_ptr<QTemporaryDir> m_root;
};

/// The profiles come from what was delivered, into folders that nobody made before.
void tst_LiveOverlay::firstStart()
{
    const LiveOverlay overlay(QSize(1280, 720));
    QCOMPARE(overlay.startupError(), QString());
    QCOMPARE(overlay.profiles().rowCount(), 4);
    QCOMPARE(overlay.profiles().currentProfile()->caption(),
             QStringLiteral("Halvo push camera system - default"));
    QVERIFY(overlay.manager().elementsCount() > 0);
    takeLog();
}

void tst_LiveOverlay::dateAndTimeAreTheWalls()
{
    LiveOverlay overlay(QSize(1280, 720));
    CVideoOverlayText *date = textOf(overlay, ElementParam::NAME_DATE);
    CVideoOverlayText *time = textOf(overlay, ElementParam::NAME_TIME);
    QVERIFY(date && !date->visible() && time && !time->visible());
    date->setUnit(QStringLiteral("yyyy-MM-dd"));
    time->setUnit(QStringLiteral("hh:mm:ss"));
    const QDateTime before = QDateTime::currentDateTime().addSecs(-1); // whole seconds are shown
    overlay.advanceTo(0);
    const QDateTime after = QDateTime::currentDateTime();
    QVERIFY(date->visible() && time->visible());
    const QString shown = date->text().trimmed() + QLatin1Char('T') + time->text().trimmed();
    const QDateTime read = QDateTime::fromString(shown, Qt::ISODate);
    QVERIFY2(read >= before && read <= after, qPrintable(shown));
    // A round moment as a floating-point number would be read as 1970.
    for (const QString &name : {ElementParam::NAME_DATE, ElementParam::NAME_TIME})
        QCOMPARE(overlay.value(name).userType(), int(QMetaType::LongLong));
    takeLog();
}

void tst_LiveOverlay::dateFromOutsideStays()
{
    LiveOverlay overlay(QSize(1280, 720));
    CVideoOverlayText *date = textOf(overlay, ElementParam::NAME_DATE);
    date->setUnit(QStringLiteral("yyyy-MM-dd"));
    overlay.setValue(ElementParam::NAME_DATE, QVariant()); // no value
    const qint64 thatDay = QDateTime(QDate(2001, 2, 3), QTime(12, 0)).toMSecsSinceEpoch();
    overlay.advanceTo(0);
    QVERIFY(overlay.value(ElementParam::NAME_DATE).toLongLong() > thatDay);
    overlay.setValue(ElementParam::NAME_DATE, QVariant::fromValue(thatDay));
    const qint64 shown = overlay.value(ElementParam::NAME_TIME).toLongLong();
    QTRY_VERIFY((overlay.advanceTo(0), // until the clock has gone on
                 overlay.value(ElementParam::NAME_TIME).toLongLong() > shown));
    QCOMPARE(date->text().trimmed(), QStringLiteral("2001-02-03"));
    takeLog();
}

void tst_LiveOverlay::dateOfTheRunStays()
{
    const QString path = m_root->filePath(QStringLiteral("run.csv"));
    Test::writeFile(path, "t_ms,DATE\n0,2001-02-03\n");
    TelemetryFile run;
    QString error;
    QVERIFY2(run.load(path, &error), qPrintable(error));
    LiveOverlay overlay(QSize(1280, 720));
    overlay.setTelemetry(run);
    CVideoOverlayText *date = textOf(overlay, ElementParam::NAME_DATE);
    date->setUnit(QStringLiteral("yyyy-MM-dd"));
    overlay.advanceTo(0);
    const qint64 shown = overlay.value(ElementParam::NAME_TIME).toLongLong();
    QTRY_VERIFY((overlay.advanceTo(1), // until the clock has gone on
                 overlay.value(ElementParam::NAME_TIME).toLongLong() > shown));
    QCOMPARE(date->text().trimmed(), QStringLiteral("2001-02-03"));
    takeLog();
}

QTEST_MAIN(tst_LiveOverlay)
#include "tst_LiveOverlay.moc"
