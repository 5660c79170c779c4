// SPDX-License-Identifier: Apache-2.0
#include "host/platform/Directories.h"
#include "host/platform/LocaleSettings.h"
#include "host/platform/TranslationStore.h"
#include "host/profiles/ProfilesLock.h"
#include "host/qml/EditorController.h"
#include "host/qml/LiveApplication.h"
#include "host/qml/LiveOverlay.h"
#include "host/qml/Messages.h"
#include "tests/qml/ScreenRobot.h"
#include "tests/support/ProfileFolders.h"

#include <videooverlay/models/VideoOverlayProfilesModel.h>
#include <videooverlay/profiles/COsdSettings.h>
#include <videooverlay/profiles/Profile.h>

#include <QDir>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace Velmar;
using namespace Velmar::Host;
using Test::ProfileFolders;
using Test::ScreenRobot;

namespace {

QByteArray profileWith(const char *text)
{
    return ProfileFolders::profileXml("",
                                      QByteArray("<STATICTEXT><TEXT>") + text
                                          + "</TEXT><VISIBLE>true</VISIBLE></STATICTEXT>");
}

} // namespace

/// The screens and profile files that are damaged, or that other programs change meanwhile.
class tst_LiveFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_live.reset(); }

    void savingADamagedProfileAsks_data();
    void savingADamagedProfileAsks();
    void savingWhatAnotherChangedAsks_data();
    void savingWhatAnotherChangedAsks();
    void ownSavesAskNothing();
    void damagedProfileIsNotCloned();
    void lockedProfiles();
    void startThatCannotBeStored();

private:
    QString path(const char *name) const
    {
        return m_root->filePath(QStringLiteral("settings/osd/%1.xml").arg(QLatin1String(name)));
    }
    VideoOverlay::VideoOverlayProfilesModel &profiles() const
    {
        return m_live->overlay().profiles();
    }
    int rowOf(const char *caption) const;
    bool select(const char *caption) const;
    void addText() const { m_live->editor().addText(QStringLiteral("note")); }
    bool save() const
    {
        return m_robot.click(QStringLiteral("navEditor")) && m_robot.click(QStringLiteral("save"));
    }

    std::unique_ptr<QTemporaryDir> m_root;
    std::unique_ptr<LiveApplication> m_live;
    ScreenRobot m_robot;
};

void tst_LiveFiles::init()
{
    m_root = std::make_unique<QTemporaryDir>();
    Directories::setSettingsDirectory(m_root->filePath(QStringLiteral("settings")));
    Directories::setReadonlyConfigDirectory(QStringLiteral(XQ_DATA_DIRECTORY));
    Translation::TranslationStore::instance().setLocale(QLocale(QLocale::English));
    Shared::LocaleSettings::reset();
    QVERIFY(QDir().mkpath(m_root->filePath(QStringLiteral("settings/osd"))));
    ProfileFolders::write(path("Mine"), profileWith("mine"));
    ProfileFolders::write(path("Torn"), profileWith("torn").chopped(12));
    LiveApplication::Setup setup;
    setup.source = SourceSpec::fromText(QStringLiteral("test"));
    setup.source.size = QSize(640, 360);
    setup.projectDirectory = m_root->filePath(QStringLiteral("projects"));
    setup.recordingDirectory = m_root->filePath(QStringLiteral("recordings"));
    m_live = std::make_unique<LiveApplication>();
    QString error;
    QVERIFY2(m_live->start(setup, &error), qPrintable(error));
    m_robot = ScreenRobot(m_live->window());
    m_live->window()->requestActivate();
    QVERIFY(QTest::qWaitForWindowActive(m_live->window()));
}

int tst_LiveFiles::rowOf(const char *caption) const
{
    for (int row = 0; row < profiles().rowCount(); ++row) {
        const auto *profile
            = profiles().data(profiles().index(row)).value<VideoOverlay::Profile *>();
        if (QFileInfo(profile->path()).completeBaseName() == QLatin1String(caption))
            return row;
    }
    return -1;
}

bool tst_LiveFiles::select(const char *caption) const
{
    return m_robot.click(QStringLiteral("navProfiles"))
        && m_robot.click(QStringLiteral("profile%1").arg(rowOf(caption)))
        && m_robot.click(QStringLiteral("profileSelect"));
}

void tst_LiveFiles::savingADamagedProfileAsks_data()
{
    QTest::addColumn<int>("answer");
    QTest::newRow("save") << 0;
    QTest::newRow("cancel") << 2;
}

void tst_LiveFiles::savingADamagedProfileAsks()
{
    QFETCH(int, answer);
    const QByteArray torn = ProfileFolders::read(path("Torn"));
    QVERIFY(select("Torn"));
    QTRY_COMPARE(profiles().currentProfileIndex(), rowOf("Torn"));
    addText();
    QVERIFY(save());
    QVERIFY(m_robot.await(QStringLiteral("overwriteAnswer0")));
    QCOMPARE(ProfileFolders::read(path("Torn")), torn);

    QVERIFY(m_robot.click(QStringLiteral("overwriteAnswer%1").arg(answer)));
    QVERIFY(m_robot.awaitGone(QStringLiteral("overwriteAnswer0")));

    const QString kept = path("Torn") + QStringLiteral(".damaged");
    if (answer == 0) {
        QTRY_VERIFY(!m_live->editor().hasUnsavedChanges());
        QVERIFY(ProfileFolders::read(path("Torn")).contains("<TEXT>note</TEXT>"));
        QCOMPARE(ProfileFolders::read(kept), torn);
    } else {
        QCOMPARE(ProfileFolders::read(path("Torn")), torn);
        QVERIFY(!QFile::exists(kept));
        m_live->editor().revert(); // so that nothing asks at the end
    }
}

void tst_LiveFiles::savingWhatAnotherChangedAsks_data()
{
    QTest::addColumn<int>("answer");
    QTest::newRow("save") << 0;
    QTest::newRow("save as") << 1;
    QTest::newRow("cancel") << 2;
}

void tst_LiveFiles::savingWhatAnotherChangedAsks()
{
    QFETCH(int, answer);
    QVERIFY(select("Mine"));
    QTRY_COMPARE(profiles().currentProfileIndex(), rowOf("Mine"));
    addText();
    const QByteArray others = profileWith("the other's");
    ProfileFolders::write(path("Mine"), others);
    QVERIFY(save());
    QVERIFY(m_robot.click(QStringLiteral("overwriteAnswer%1").arg(answer)));
    if (answer == 1) {
        QVERIFY(m_robot.type(QStringLiteral("saveNameField"), QStringLiteral("Both")));
        QVERIFY(m_robot.click(QStringLiteral("saveNameOk")));
        QTRY_VERIFY(ProfileFolders::read(path("Both")).contains("<TEXT>note</TEXT>"));
    }
    if (answer == 0)
        QTRY_VERIFY(ProfileFolders::read(path("Mine")).contains("<TEXT>note</TEXT>"));
    else
        QCOMPARE(ProfileFolders::read(path("Mine")), others);
    QVERIFY(!QFile::exists(path("Mine") + QStringLiteral(".damaged")));
    if (answer == 2)
        m_live->editor().revert();
}

void tst_LiveFiles::ownSavesAskNothing()
{
    QVERIFY(select("Mine"));
    QTRY_COMPARE(profiles().currentProfileIndex(), rowOf("Mine"));
    for (int i = 0; i < 2; ++i) {
        addText();
        QVERIFY(save());
        QTRY_VERIFY(!m_live->editor().hasUnsavedChanges());
        QVERIFY(!m_robot.find(QStringLiteral("overwriteAnswer0")));
    }
    QCOMPARE(ProfileFolders::read(path("Mine")).count("<TEXT>note</TEXT>"), 2);
    QVERIFY(m_live->editor().saveAs(QStringLiteral("Copy")));
    addText();
    QVERIFY(save());
    QTRY_VERIFY(!m_live->editor().hasUnsavedChanges());
    QCOMPARE(ProfileFolders::read(path("Copy")).count("<TEXT>note</TEXT>"), 3);
}

void tst_LiveFiles::damagedProfileIsNotCloned()
{
    const int count = profiles().rowCount();
    QVERIFY(m_robot.click(QStringLiteral("navProfiles")));
    QVERIFY(m_robot.click(QStringLiteral("profile%1").arg(rowOf("Torn"))));
    QVERIFY(m_robot.click(QStringLiteral("profileClone")));
    QVERIFY(m_robot.type(QStringLiteral("cloneNameField"), QStringLiteral("Copy")));
    QVERIFY(m_robot.click(QStringLiteral("cloneNameOk")));
    QTRY_VERIFY(m_live->messages().isError());
    QVERIFY2(m_live->messages().text().contains(QLatin1String("unexpected end of file")),
             qPrintable(m_live->messages().text()));
    QCOMPARE(profiles().rowCount(), count);
    QVERIFY(!QFile::exists(path("Copy")));
}

void tst_LiveFiles::lockedProfiles()
{
    QVERIFY(select("Mine"));
    QTRY_COMPARE(profiles().currentProfileIndex(), rowOf("Mine"));
    addText();
    const QByteArray before = ProfileFolders::read(path("Mine"));
    {
        ProfilesLock lock; // of another program
        QString error;
        QVERIFY2(lock.take(&error), qPrintable(error));
        QVERIFY(!m_live->editor().save());
        QCOMPARE(m_live->messages().text(),
                 QStringLiteral("Another program is changing the profiles. Try again."));
    }
    QCOMPARE(ProfileFolders::read(path("Mine")), before);
    QVERIFY(m_live->editor().save());
}

void tst_LiveFiles::startThatCannotBeStored()
{
    const QString settings = VideoOverlay::COsdSettings::xmlSettingsPath();
    QVERIFY(QFile::remove(settings));
    QVERIFY(QDir().mkdir(settings)); // not even root can write to that
    QVERIFY(select("Mine"));
    QTRY_VERIFY(m_live->messages().isError());
    QVERIFY2(m_live->messages().text().contains(settings), qPrintable(m_live->messages().text()));
}

QTEST_MAIN(tst_LiveFiles)
#include "tst_LiveFiles.moc"
