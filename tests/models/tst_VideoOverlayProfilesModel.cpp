// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/models/VideoOverlayProfilesModel.h"

#include "platform/shared/QmlStringListModel.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"
#include "tests/support/ProfileFolders.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/display/CVideoOverlayCapabilities.h"
#include "videooverlay/display/CVideoOverlayControl.h"
#include "videooverlay/display/CVideoOverlayManager.h"
#include "videooverlay/models/VideoOverlayElementListModel.h"
#include "videooverlay/osd/COsdStaticTextDatasource.h"
#include "videooverlay/osd/COsdValueDatasource.h"
#include "videooverlay/profiles/COsdSettings.h"

#include <QAbstractItemModelTester>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlExpression>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <ctime>
#include <functional>
#include <limits>
#include <optional>

using Velmar::Test::FullDisk;
using Velmar::Test::methodsOf;
using Velmar::Test::ProfileFolders;
using Velmar::Test::propertiesOf;
using Velmar::VideoOverlay::COsdElementDatasource;
using Velmar::VideoOverlay::COsdSettings;
using Velmar::VideoOverlay::COsdStaticTextDatasource;
using Velmar::VideoOverlay::COsdValueDatasource;
using Velmar::VideoOverlay::CVideoOverlayCapabilities;
using Velmar::VideoOverlay::CVideoOverlayControl;
using Velmar::VideoOverlay::CVideoOverlayElement;
using Velmar::VideoOverlay::CVideoOverlayManager;
using Velmar::VideoOverlay::ElementParam;
using Velmar::VideoOverlay::Profile;
using Velmar::VideoOverlay::VideoOverlayProfilesModel;

namespace {

const QString defaultName = QStringLiteral("Halvo push camera system - default");

QString error(const QString &message)
{
    return QStringLiteral("1 VideoOverlayLibrary: ") + message;
}

QString notice(const QString &message)
{
    return QStringLiteral("3 VideoOverlayLibrary: ") + message;
}

/// The live overlay with its profiles, and whoever builds it from the current one.
class Overlay : public QObject
{
public:
    Overlay()
    {
        manager.setProfilesModel(&model);
        connect(&model, &VideoOverlayProfilesModel::currentProfileChanged, this, &Overlay::load);
    }

    void load(Profile *profile)
    {
        manager.removeElements();
        manager.setGeneralSettings(ElementParam::createGeneralSettingsDefault());
        if (!profile)
            return;
        for (ElementParam &record : profile->elements())
            build(record);
        manager.resetChanges();
        Q_EMIT model.profileLoaded();
    }

    /// As the operator does.
    CVideoOverlayElement *addStaticText(const QString &text)
    {
        ElementParam record;
        record.insert(QStringLiteral("type"), 0);
        record.insert(QStringLiteral("text"), text);
        auto *element = manager.createText();
        new COsdStaticTextDatasource(element, record);
        return element;
    }

    CVideoOverlayElement *element(int row) { return manager.getElementList().at(row); }

    CVideoOverlayCapabilities capabilities;
    CVideoOverlayControl control;
    CVideoOverlayManager manager {control, capabilities};
    VideoOverlayProfilesModel model {manager};
    QAbstractItemModelTester tester {&model,
                                     QAbstractItemModelTester::FailureReportingMode::QtTest};

private:
    void build(ElementParam &record)
    {
        switch (record.value(QStringLiteral("type")).toInt()) {
        case CVideoOverlayElement::Invalid:
            manager.setGeneralSettings(record);
            return;
        case CVideoOverlayElement::FreePicture:
            new COsdElementDatasource(manager.createImage(), record);
            return;
        case CVideoOverlayElement::SystemText: // nobody offers a datasource for it
            manager.createText(record);
            return;
        case CVideoOverlayElement::FreeText: {
            new COsdValueDatasource({}, manager.createText(record), record);
            QStringList favorites = record.value(QStringLiteral("favorites")).toStringList();
            manager.setFavorites(favorites, 3);
            return;
        }
        default:
            new COsdStaticTextDatasource(manager.createText(record), record);
        }
    }
};

/// An overlay that nobody builds from its profiles.
struct Unbuilt
{
    CVideoOverlayCapabilities capabilities;
    CVideoOverlayControl control;
    CVideoOverlayManager manager {control, capabilities};
    VideoOverlayProfilesModel model {manager};
};

QByteArray staticText(const QByteArray &text, int row = 0)
{
    return "<STATICTEXT><TEXT>" + text + "</TEXT><ROW>" + QByteArray::number(row)
        + "</ROW><FGCOLOR>#ffffff</FGCOLOR><BGCOLOR>#0000ff</BGCOLOR>"
          "<VISIBLE>true</VISIBLE></STATICTEXT>";
}

QStringList textsOf(const Profile &profile)
{
    QStringList texts;
    for (const ElementParam &record : profile.elements())
        texts.append(record.value(QStringLiteral("type")).toString() + QLatin1Char(':')
                     + record.value(QStringLiteral("text")).toString());
    return texts;
}

} // namespace

class tst_VideoOverlayProfilesModel : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override { m_folders.emplace(); }

    QString pathOf(const QString &fileName) const
    {
        return m_folders->profiles() + QLatin1Char('/') + fileName;
    }

    QString writeNamed(const QString &name, const QByteArray &children = {},
                       const QByteArray &readOnly = "false") const
    {
        return m_folders->writeProfile(
            name + QStringLiteral(".xml"),
            ProfileFolders::profileXml(
                "name=\"" + name.toUtf8() + "\" readonly=\"" + readOnly + "\"", children));
    }

    /// The path stored as the start-up profile, without its directory; empty without a file.
    static QString storedFile()
    {
        QFile file(COsdSettings::xmlSettingsPath());
        if (!file.open(QIODevice::ReadOnly))
            return {};
        const QString text = QString::fromUtf8(file.readAll());
        const int begin = text.indexOf(QStringLiteral("<CURRENT>")) + 9;
        return QFileInfo(text.mid(begin, text.indexOf(QStringLiteral("</CURRENT>")) - begin))
            .fileName();
    }

    QString stored(const QString &fileName) const
    {
        return notice(QStringLiteral("Saving current profile:")
                      + QDir(m_folders->configuration()).relativeFilePath(pathOf(fileName)));
    }

    void writeThree() const
    {
        writeNamed(QStringLiteral("a"), staticText("one") + staticText("two"));
        writeNamed(QStringLiteral("b"), staticText("three"));
        writeNamed(QStringLiteral("c"));
    }

    std::optional<ProfileFolders> m_folders;

private Q_SLOTS:
    void metaObject()
    {
        const QMetaObject &meta = VideoOverlayProfilesModel::staticMetaObject;
        const QString profile = QStringLiteral("Velmar::VideoOverlay::Profile*");
        QStringList properties = propertiesOf(meta);
        QStringList methods = methodsOf(meta);
        properties.replaceInStrings(profile, QStringLiteral("Profile*"));
        methods.replaceInStrings(profile, QStringLiteral("Profile*"));
        QCOMPARE(properties,
                 (QStringList {QStringLiteral(
                                   "Profile* currentProfile write currentProfileChanged(Profile*)"),
                               QStringLiteral("int currentProfileIndex write "
                                              "currentProfileChanged(Profile*)")}));
        QCOMPARE(methods.join(QLatin1Char('|')),
                 QStringLiteral("signal currentProfileChanged(Profile*)|"
                                "signal saveCurrentProfileRequest()|signal profileLoaded()|"
                                "slot forwardProfileLoaded()|"
                                "method int clone(int)|"
                                "method Profile* clone(Profile*,QString)|"
                                "method Profile* clone(Profile*)|"
                                "method bool remove(int)|"
                                "method bool setCurrentProfileByIndex(int)|"
                                "method bool setCurrentProfile(Profile*)|"
                                "method Profile* currentProfile()|"
                                "method saveCurrentProfile(QString)|"
                                "method saveCurrentProfile()|method revertCurrentProfile()|"
                                "method Profile* applyChanges(Profile*)|"
                                "method bool isCurrentProfileChanged()"));
    }

    void rows()
    {
        writeThree();
        Overlay overlay;
        const auto &model = overlay.model;
        takeLog();

        QCOMPARE(model.rowCount(), 3);
        QCOMPARE(model.rowCount(model.index(0)), 0);
        for (int row = 0; row < 3; ++row) {
            const QModelIndex index = model.index(row);
            const auto *profile = index.data().value<Profile *>();
            QVERIFY(profile);
            QCOMPARE(profile->name(), QString(QLatin1Char(char('a' + row))));
            QCOMPARE(index.data(256), QVariant(row));
            QCOMPARE(index.data(256).userType(), int(QMetaType::Int));
            QVERIFY(!index.data(257).isValid());
            QCOMPARE(index.data().toString(), profile->caption()); // for views that show a text
            QVERIFY(!index.data(Qt::EditRole).isValid());
        }
        QVERIFY(!model.data(QModelIndex()).isValid());
        QVERIFY(!model.data(QModelIndex(), 256).isValid());
        QVERIFY(!model.index(3).isValid());
        const QModelIndex last = model.index(2);
        QVERIFY(overlay.model.remove(0)); // which leaves the last index behind
        QVERIFY(!model.data(last).isValid());
        QVERIFY(!model.data(last, 256).isValid());
        takeLog();
        QCOMPARE(takeQtWarnings(), QStringList());

        QHash<int, QByteArray> names = static_cast<const QAbstractItemModel &>(model).roleNames();
        QCOMPARE(names.take(256), QByteArray("index"));
        QCOMPARE(names.value(Qt::DisplayRole), QByteArray("display"));
        QCOMPARE(takeLog(), QStringList());
    }

    void noProfileIsCurrentAtFirst()
    {
        writeThree();
        Overlay overlay;
        takeLog();
        QCOMPARE(overlay.model.currentProfileIndex(), -1);
        QCOMPARE(takeLog(), QStringList());
        QCOMPARE(overlay.model.currentProfile(), nullptr);
        QCOMPARE(takeLog(), QStringList {error(QStringLiteral("Cannot find current profile"))});
        QVERIFY(storedFile().isEmpty());
    }

    void setCurrentProfile()
    {
        writeThree();
        Overlay overlay;
        auto &model = overlay.model;
        takeLog();
        auto *b = model.index(1).data().value<Profile *>();
        QSignalSpy changed(&model, &VideoOverlayProfilesModel::currentProfileChanged);
        QStringList inHandler;
        connect(
            &model, &VideoOverlayProfilesModel::currentProfileChanged, this, [&](Profile *profile) {
                inHandler.append(profile->name() + model.currentProfile()->name() + storedFile());
            });

        QVERIFY(model.setCurrentProfile(b));

        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().first().value<Profile *>(), b);
        QCOMPARE(inHandler, QStringList {QStringLiteral("bb")}); // stored afterwards
        QCOMPARE(model.currentProfile(), b);
        QCOMPARE(model.currentProfileIndex(), 1);
        QCOMPARE(storedFile(), QStringLiteral("b.xml"));
        QCOMPARE(takeLog(),
                 (QStringList {notice(QStringLiteral("Switch current profile to: b")),
                               stored(QStringLiteral("b.xml"))}));

        // Again: nothing is emitted, nothing written.
        QVERIFY(QFile::remove(COsdSettings::xmlSettingsPath()));
        QVERIFY(model.setCurrentProfile(b));
        QVERIFY(model.setCurrentProfileByIndex(1));
        QCOMPARE(changed.count(), 1);
        QVERIFY(storedFile().isEmpty());
        QCOMPARE(takeLog(), QStringList());
    }

    void setCurrentProfileToNone()
    {
        writeThree();
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfile(nullptr)); // that it is already
        QVERIFY(model.setCurrentProfileByIndex(1));
        takeLog();
        QSignalSpy changed(&model, &VideoOverlayProfilesModel::currentProfileChanged);

        QVERIFY(!model.setCurrentProfile(nullptr));

        QCOMPARE(model.currentProfileIndex(), 1);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(takeLog(),
                 QStringList {error(QStringLiteral("Fail to set profile: there is none"))});
    }

    void aHandlerThatSelectsAnother()
    {
        writeThree();
        Overlay overlay;
        auto &model = overlay.model;
        takeLog();
        connect(&model, &VideoOverlayProfilesModel::currentProfileChanged, this,
                [&](Profile *profile) {
                    if (profile->name() == QStringLiteral("a"))
                        model.setCurrentProfileByIndex(2);
                });

        QVERIFY(model.setCurrentProfileByIndex(0));

        QCOMPARE(model.currentProfileIndex(), 2);
        QCOMPARE(storedFile(), QStringLiteral("c.xml"));
        QCOMPARE(takeLog(),
                 (QStringList {notice(QStringLiteral("Switch current profile to: a")),
                               notice(QStringLiteral("Switch current profile to: c")),
                               stored(QStringLiteral("c.xml"))}));
    }

    void aHandlerThatRemovesIt()
    {
        writeThree();
        Overlay overlay;
        auto &model = overlay.model;
        connect(&model, &VideoOverlayProfilesModel::currentProfileChanged, this,
                [&](Profile *profile) {
                    if (profile->name() != QStringLiteral("a"))
                        return;
                    model.remove(0);
                    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
                });
        QVERIFY(model.setCurrentProfileByIndex(0));
        QCOMPARE(model.currentProfile()->name(), QStringLiteral("b"));
        QCOMPARE(storedFile(), QStringLiteral("b.xml"));
        takeLog();
    }

    void setCurrentProfileByIndex_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("first") << 0 << true;
        QTest::newRow("last") << 2 << true;
        QTest::newRow("one too far") << 3 << false;
        QTest::newRow("negative") << -1 << false;
    }

    void setCurrentProfileByIndex()
    {
        QFETCH(int, row);
        QFETCH(bool, accepted);
        writeThree();
        Overlay overlay;
        takeLog();
        QSignalSpy changed(&overlay.model, &VideoOverlayProfilesModel::currentProfileChanged);

        QCOMPARE(overlay.model.setCurrentProfileByIndex(row), accepted);

        QCOMPARE(overlay.model.currentProfileIndex(), accepted ? row : -1);
        QCOMPARE(changed.count(), accepted ? 1 : 0);
        const QStringList logged = takeLog();
        if (!accepted)
            QCOMPARE(
                logged,
                QStringList {error(QStringLiteral("Fail to set profile by index %1").arg(row))});
    }

    void setProfileByName_data()
    {
        QTest::addColumn<bool>("hasDefault");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("selected");
        QTest::addColumn<QStringList>("logged"); // less what switching logs

        const QString missing = error(QStringLiteral("Cannot find profile name"));
        const QString reverting
            = notice(QStringLiteral("Profile x not found. Reverting to default"));
        QTest::newRow("there") << true << QStringLiteral("a") << QStringLiteral("a")
                               << QStringList();
        QTest::newRow("default") << true << QStringLiteral("x") << defaultName
                                 << QStringList {missing, reverting};
        QTest::newRow("neither") << false << QStringLiteral("x") << QStringLiteral("b")
                                 << QStringList {missing, reverting, missing,
                                                 error(QStringLiteral("Profile ") + defaultName
                                                       + QStringLiteral(" not found."))};
    }

    void setProfileByName()
    {
        QFETCH(bool, hasDefault);
        QFETCH(QString, name);
        QFETCH(QString, selected);
        QFETCH(QStringList, logged);
        writeNamed(QStringLiteral("a"));
        writeNamed(QStringLiteral("b"));
        if (hasDefault)
            writeNamed(defaultName, {}, "true");
        Overlay overlay;
        QVERIFY(overlay.model.setCurrentProfileByIndex(hasDefault ? 2 : 1));
        takeLog();

        overlay.model.setProfileByName(name);

        QCOMPARE(overlay.model.currentProfile()->name(), selected);
        QCOMPARE(takeLog().mid(0, logged.size()), logged);
    }

    void getDefaultProfilePath()
    {
        Overlay overlay;
        takeLog();
        QCOMPARE(overlay.model.getDefaultProfilePath(), QString());
        QCOMPARE(takeLog(),
                 (QStringList {error(QStringLiteral("Cannot open osd xml settings file")),
                               error(QStringLiteral("Cannot read OSD default profile path form "
                                                    "OsdSettings.xml"))}));

        COsdSettings::setDefaultProfile(QStringLiteral("a/b.xml"));
        takeLog();
        QCOMPARE(overlay.model.getDefaultProfilePath(), QStringLiteral("a/b.xml"));
        QCOMPARE(takeLog(),
                 (QStringList {notice(QStringLiteral("Startup OSD profile path:a/b.xml")),
                               notice(QStringLiteral("OSD profile selected to load: a/b.xml"))}));
    }

    void selectStartupProfile_data()
    {
        QTest::addColumn<QString>("stored"); // "%1" the folder of profiles; null: no file
        QTest::addColumn<QString>("selected");

        QTest::newRow("stored by the library")
            << QStringLiteral("%1/nameless.xml") << QStringLiteral("nameless.xml");
        QTest::newRow("by name, since the path leads elsewhere")
            << QStringLiteral("osd/b.xml") << QStringLiteral("b.xml");
        QTest::newRow("by a name with dots")
            << QStringLiteral("osd/DN 1.5.xml") << QStringLiteral("DN 1.5.xml");
        QTest::newRow("gone: the default")
            << QStringLiteral("%1/gone.xml") << defaultName + QStringLiteral(".xml");
        QTest::newRow("nothing stored: the default, not the nameless")
            << QStringLiteral("") << defaultName + QStringLiteral(".xml");
        QTest::newRow("no settings: the default")
            << QString() << defaultName + QStringLiteral(".xml");
    }

    void selectStartupProfile()
    {
        QFETCH(QString, stored);
        QFETCH(QString, selected);
        m_folders->writeProfile(QStringLiteral("nameless.xml"), "<PROFILE name=\"\"/>");
        writeNamed(QStringLiteral("b"));
        writeNamed(QStringLiteral("DN 1.5"));
        writeNamed(defaultName, {}, "true");
        if (stored.isEmpty() && !stored.isNull())
            ProfileFolders::write(COsdSettings::xmlSettingsPath(),
                                  "<OSD><PROFILES><CURRENT/></PROFILES></OSD>");
        else if (!stored.isNull())
            COsdSettings::setDefaultProfile(
                stored.replace(QStringLiteral("%1"), m_folders->profiles()));
        Overlay overlay;
        QSignalSpy changed(&overlay.model, &VideoOverlayProfilesModel::currentProfileChanged);

        takeLog();
        overlay.model.selectStartupProfile();

        // Where nothing is stored, nothing is missing.
        QCOMPARE(takeLog().filter(QStringLiteral("Reverting to default")).isEmpty(),
                 !stored.endsWith(QLatin1String("gone.xml")));
        QVERIFY(overlay.model.currentProfileIndex() >= 0);
        QCOMPARE(QFileInfo(overlay.model.currentProfile()->path()).fileName(), selected);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(storedFile(), selected);
        takeLog();
    }

    void aStartWithoutAnyProfile()
    {
        Overlay overlay;
        overlay.model.selectStartupProfile();
        QCOMPARE(overlay.model.currentProfileIndex(), -1);
        QCOMPARE(takeLog().last(),
                 error(QStringLiteral("Profile ") + defaultName + QStringLiteral(" not found.")));
    }

    void saveWithoutACurrentProfile()
    {
        writeThree();
        Overlay overlay;
        takeLog();
        overlay.model.saveCurrentProfile();
        QCOMPARE(
            takeLog(),
            QStringList {error(QStringLiteral("Cannot save current profile. Profile not set"))});
    }

    void saveAWritableProfile()
    {
        writeThree();
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(0));
        overlay.element(1)->setRow(7);
        QVERIFY(model.isCurrentProfileChanged());
        takeLog();
        QSignalSpy changed(&model, &VideoOverlayProfilesModel::currentProfileChanged);

        model.saveCurrentProfile(QStringLiteral("ignored"));

        QCOMPARE(takeLog().filter(QStringLiteral("3 ")),
                 QStringList {notice(QStringLiteral("Saving profile: a"))});
        QCOMPARE(model.rowCount(), 3);
        QCOMPARE(changed.count(), 0);
        QVERIFY(!model.isCurrentProfileChanged());
        QCOMPARE(model.currentProfile()->elements().at(1).value(QStringLiteral("row")).toInt(), 7);

        Profile again;
        QVERIFY(again.load(pathOf(QStringLiteral("a.xml"))));
        QCOMPARE(
            textsOf(again),
            (QStringList {QStringLiteral("0:one"), QStringLiteral("0:two"), QStringLiteral("7:")}));
        QCOMPARE(again.elements().at(1).value(QStringLiteral("row")).toInt(), 7);
        takeLog();
    }

    void saveAReadOnlyProfile()
    {
        const QString path
            = writeNamed(QStringLiteral("a"), staticText("one") + staticText("two"), "true");
        const QByteArray before = ProfileFolders::read(path);
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(0));
        overlay.addStaticText(QStringLiteral("new"));
        QVERIFY(overlay.manager.deleteElement(0));
        QVERIFY(model.isCurrentProfileChanged());
        takeLog();
        QSignalSpy changed(&model, &VideoOverlayProfilesModel::currentProfileChanged);
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);

        model.saveCurrentProfile();

        QCOMPARE(takeLog().filter(QStringLiteral("3 ")),
                 QStringList {notice(QStringLiteral("Saving default profile with new name: "))});
        QCOMPARE(ProfileFolders::read(path), before);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(model.currentProfileIndex(), 0);
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(inserted.first().at(1).toInt(), 1);
        QVERIFY(!model.isCurrentProfileChanged());
        const auto *copy = model.index(1).data().value<Profile *>();
        QCOMPARE(copy->path(), pathOf(QStringLiteral("a(copy).xml")));
        QVERIFY(!copy->readOnly());
        Profile again;
        QVERIFY(again.load(copy->path()));
        QCOMPARE(
            textsOf(again),
            (QStringList {QStringLiteral("0:two"), QStringLiteral("0:new"), QStringLiteral("7:")}));
        QVERIFY(!again.readOnly());

        // The next edit counts against what was saved.
        QVERIFY(overlay.manager.deleteElement(0));
        QVERIFY(model.isCurrentProfileChanged());

        takeLog();
        model.saveCurrentProfile(QStringLiteral("Mine"));
        QCOMPARE(
            takeLog().filter(QStringLiteral("3 ")),
            QStringList {notice(QStringLiteral("Saving default profile with new name: Mine"))});
        QCOMPARE(model.rowCount(), 3);
        QVERIFY(QFileInfo::exists(pathOf(QStringLiteral("Mine.xml"))));
    }

    void aScreenThatSelectsTheCopyAtOnce()
    {
        writeNamed(QStringLiteral("a"), staticText("one", 1) + staticText("two"), "true");
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(0));
        overlay.element(0)->setRow(9);
        overlay.addStaticText(QStringLiteral("new"));
        QVERIFY(overlay.manager.deleteElement(1));
        QVERIFY(model.isCurrentProfileChanged());
        bool changed = true;
        connect(&model, &QAbstractItemModel::rowsInserted, this, [&](const QModelIndex &, int row) {
            changed = model.isCurrentProfileChanged(); // of what is saved by now
            model.setCurrentProfileByIndex(row);
        });

        model.saveCurrentProfile(QStringLiteral("Mine"));

        const QStringList texts {QStringLiteral("0:one"), QStringLiteral("0:new"),
                                 QStringLiteral("7:")};
        QVERIFY(!changed);
        QCOMPARE(model.currentProfileIndex(), 1);
        QCOMPARE(textsOf(*model.currentProfile()), texts);
        Profile again;
        QVERIFY(again.load(pathOf(QStringLiteral("Mine.xml"))));
        QCOMPARE(textsOf(again), texts);
        QCOMPARE(again.elements().first().value(QStringLiteral("row")).toInt(), 9);
        QCOMPARE(overlay.manager.elementsCount(), 2);
        QCOMPARE(overlay.element(0)->row(), 9);
        QVERIFY(!model.isCurrentProfileChanged());
        // The original is as it was.
        QCOMPARE(textsOf(*model.index(0).data().value<Profile *>()),
                 (QStringList {QStringLiteral("0:one"), QStringLiteral("0:two")}));
        takeLog();
    }

    void aCopyThatCannotTakeTheEdits()
    {
        writeNamed(QStringLiteral("a"), staticText("one", 1), "true");
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(0));
        overlay.element(0)->setRow(9);
        std::optional<FullDisk> full; // from when the copy is on disk
        connect(&model, &QAbstractItemModel::rowsAboutToBeInserted, this, [&] { full.emplace(); });
        connect(&model, &QAbstractItemModel::rowsInserted, this, [&] { full.reset(); });
        takeLog();

        model.saveCurrentProfile(QStringLiteral("Mine"));

        QCOMPARE(takeLog().filter(QStringLiteral("1 ")),
                 QStringList {error(QStringLiteral("Cannot open profile file for save:")
                                    + pathOf(QStringLiteral("Mine.xml")))});
        QVERIFY(model.isCurrentProfileChanged()); // still to be saved
        QCOMPARE(overlay.element(0)->row(), 9);
        // The copy is what its file says.
        QCOMPARE(model.rowCount(), 2);
        Profile again;
        QVERIFY(again.load(pathOf(QStringLiteral("Mine.xml"))));
        for (const Profile *copy : {&again, model.index(1).data().value<Profile *>()})
            QCOMPARE(copy->elements().first().value(QStringLiteral("row")).toInt(), 1);
        takeLog();
    }

    void theFileOfACopyIsThereWhenItsRowIsAnnounced()
    {
        // A copy that fails would otherwise have announced a row that never comes.
        writeThree();
        Overlay overlay;
        QString found;
        connect(&overlay.model, &QAbstractItemModel::rowsAboutToBeInserted, this, [&] {
            found = QStringLiteral("%1 of %2 rows")
                        .arg(QFileInfo::exists(pathOf(QStringLiteral("a(copy).xml"))))
                        .arg(overlay.model.rowCount());
        });
        QCOMPARE(overlay.model.clone(0), 3);
        QCOMPARE(found, QStringLiteral("1 of 3 rows"));
        takeLog();
    }

    void aFailedSaveChangesNothing_data()
    {
        QTest::addColumn<bool>("readOnly");
        QTest::newRow("writable") << false;
        QTest::newRow("read-only") << true;
    }

    void aFailedSaveChangesNothing()
    {
        QFETCH(bool, readOnly);
        const QString path
            = writeNamed(QStringLiteral("a"), staticText("one", 1), readOnly ? "true" : "false");
        const QByteArray before = ProfileFolders::read(path);
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(0));
        const QList<ElementParam> records = model.currentProfile()->elements();
        overlay.element(0)->setRow(9);
        overlay.addStaticText(QStringLiteral("new"));
        takeLog();
        {
            const FullDisk full;
            model.saveCurrentProfile(QStringLiteral("B"));
        }
        const QStringList logged = takeLog();
        QCOMPARE(logged.first(), // before anything is tried
                 notice(readOnly ? QStringLiteral("Saving default profile with new name: B")
                                 : QStringLiteral("Saving profile: a")));
        QCOMPARE(logged.filter(QStringLiteral("1 ")),
                 QStringList {error(
                     QStringLiteral("Cannot open profile file for save:")
                     + pathOf(readOnly ? QStringLiteral("B.xml") : QStringLiteral("a.xml")))});
        QCOMPARE(model.rowCount(), 1);
        QCOMPARE(model.currentProfile()->elements(), records);
        QCOMPARE(ProfileFolders::read(path), before);
        QVERIFY(model.isCurrentProfileChanged());

        model.revertCurrentProfile();
        QCOMPARE(overlay.manager.elementsCount(), 1);
        QCOMPARE(overlay.element(0)->row(), 1);
        QVERIFY(!model.isCurrentProfileChanged());
        takeLog();
    }

    void profilesAreLoggedByName()
    {
        // Not by what people call them: a profile that was saved has no name.
        m_folders->writeProfile(QStringLiteral("a.xml"), "<PROFILE name=\"\"/>");
        Overlay overlay;
        QCOMPARE(overlay.model.index(0).data().toString(), QStringLiteral("a"));
        takeLog();
        QVERIFY(overlay.model.setCurrentProfileByIndex(0));
        QCOMPARE(takeLog().first(), notice(QStringLiteral("Switch current profile to: ")));
        overlay.model.saveCurrentProfile();
        QCOMPARE(takeLog().first(), notice(QStringLiteral("Saving profile: ")));
        overlay.model.revertCurrentProfile();
        QCOMPARE(takeLog().first(),
                 QStringLiteral("4 VideoOverlayLibrary: Reverting current profile: "));
    }

    void revertWithoutACurrentProfile()
    {
        Overlay overlay;
        takeLog();
        QSignalSpy changed(&overlay.model, &VideoOverlayProfilesModel::currentProfileChanged);
        overlay.model.revertCurrentProfile();
        QCOMPARE(changed.count(), 0);
        QCOMPARE(takeLog(), QStringList {error(QStringLiteral("Cannot find current profile"))});
    }

    void revert()
    {
        writeThree();
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(0));
        const QString settings = COsdSettings::xmlSettingsPath();
        QVERIFY(QFile::remove(settings));
        overlay.element(0)->setRow(9);
        QVERIFY(overlay.manager.deleteElement(1));
        takeLog();
        QSignalSpy changed(&model, &VideoOverlayProfilesModel::currentProfileChanged);
        QStringList loggedBefore;
        connect(&model, &VideoOverlayProfilesModel::currentProfileChanged, this,
                [&] { loggedBefore = takeLog(); });

        model.revertCurrentProfile();

        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().first().value<Profile *>(), model.currentProfile());
        QCOMPARE(loggedBefore.value(0),
                 QStringLiteral("4 VideoOverlayLibrary: Reverting current profile: a"));
        QCOMPARE(overlay.manager.elementsCount(), 2);
        QCOMPARE(overlay.element(0)->row(), 0);
        QVERIFY(!QFileInfo::exists(settings));
        QVERIFY(!model.isCurrentProfileChanged());
    }

    void applyChangesKeepsWhatCouldNotBeShown()
    {
        writeNamed(QStringLiteral("a"),
                   staticText("one")
                       + "<SYSTEMTEXT><COL_Bound_Column>SPEED</COL_Bound_Column><ROW>4</ROW>"
                         "</SYSTEMTEXT>"
                       + staticText("two")
                       + "<SYSTEMTEXT><COL_Bound_Column>DATE</COL_Bound_Column></SYSTEMTEXT>"
                         "<GENERAL><GLOBAL_TRANSPARENCY>7</GLOBAL_TRANSPARENCY></GENERAL>");
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(0));
        QCOMPARE(overlay.manager.elementsCount(), 4);
        overlay.manager.createText(); // by nobody's profile: cannot be saved
        Profile *profile = model.currentProfile();
        const QList<ElementParam> before = profile->elements();

        QCOMPARE(model.applyChanges(profile), profile);

        const QList<ElementParam> &after = profile->elements();
        QCOMPARE(after.size(), 5);
        const auto bound
            = [&](int i) { return after.at(i).value(QStringLiteral("columnBound")).toString(); };
        QCOMPARE(after.at(0).value(QStringLiteral("text")).toString(), QStringLiteral("one"));
        QCOMPARE(bound(1), QStringLiteral("SPEED"));
        QCOMPARE(after.at(1).value(QStringLiteral("row")).toInt(), 4);
        QCOMPARE(after.at(2).value(QStringLiteral("text")).toString(), QStringLiteral("two"));
        QCOMPARE(bound(3), QStringLiteral("DATE"));
        QCOMPARE(after.at(3).value(QStringLiteral("type")).toInt(), 1);
        QCOMPARE(after.at(4).value(QStringLiteral("globalTransparency")).toInt(), 7);
        QCOMPARE(after.at(4).value(QStringLiteral("type")).toInt(), 7);

        // From now on they are told apart, so that one may be deleted.
        QVERIFY(overlay.manager.deleteElement(1));
        model.applyChanges(profile);
        QCOMPARE(after.size(), 4);
        QCOMPARE(bound(2), QStringLiteral("DATE"));

        // Built anew, they are new elements, which stand for the same records.
        model.revertCurrentProfile();
        model.applyChanges(profile);
        QCOMPARE(after.size(), 4);
        QCOMPARE(bound(2), QStringLiteral("DATE"));
        QVERIFY(!after.at(2).contains(QStringLiteral("id"))); // which no datasource wrote
        QCOMPARE(after.at(3).value(QStringLiteral("id")).toInt(), 268435455); // kept meanwhile

        QCOMPARE(model.applyChanges(nullptr), nullptr);
        takeLog();
    }

    void whatNobodyLoadedIsNotSaved_data()
    {
        QTest::addColumn<bool>("readOnly");
        QTest::addColumn<bool>("general");
        QTest::newRow("writable") << false << false;
        QTest::newRow("writable with general settings") << false << true;
        QTest::newRow("read-only") << true << false;
    }

    void whatNobodyLoadedIsNotSaved()
    {
        QFETCH(bool, readOnly);
        QFETCH(bool, general);
        QByteArray children = staticText("one") + staticText("two");
        if (general)
            children += "<GENERAL><GLOBAL_TRANSPARENCY>7</GLOBAL_TRANSPARENCY></GENERAL>";
        const QString path = writeNamed(QStringLiteral("a"), children, readOnly ? "true" : "false");
        const QByteArray before = ProfileFolders::read(path);
        Unbuilt overlay;
        VideoOverlayProfilesModel &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(0));
        Profile *profile = model.currentProfile();
        const QList<ElementParam> records = profile->elements();
        overlay.manager.setGlobalTransparency(3);
        takeLog();

        model.saveCurrentProfile(QStringLiteral("copy"));
        QCOMPARE(
            takeLog(),
            QStringList {error(QStringLiteral("Cannot save current profile. It was not loaded"))});
        QCOMPARE(model.applyChanges(profile), nullptr);
        QCOMPARE(takeLog(),
                 QStringList {
                     error(QStringLiteral("Cannot apply changes. The profile was not loaded"))});

        QCOMPARE(profile->elements(), records);
        QCOMPARE(ProfileFolders::read(path), before);
        QCOMPARE(model.rowCount(), 1);
        QVERIFY(model.isCurrentProfileChanged()); // still to be saved
        takeLog();
    }

    void whatIsLoadedLaterIsSaved()
    {
        writeNamed(QStringLiteral("a"), staticText("one") + staticText("two"));
        Unbuilt overlay;
        QVERIFY(overlay.model.setCurrentProfileByIndex(0));
        // By whoever made elements that are nobody's, and says so.
        overlay.manager.createText();
        Q_EMIT overlay.model.profileLoaded();
        overlay.model.saveCurrentProfile();
        QCOMPARE(textsOf(*overlay.model.currentProfile()),
                 (QStringList {QStringLiteral("0:one"), QStringLiteral("7:")}));
        takeLog();
    }

    void aHostThatMatchesByItself_data()
    {
        QTest::addColumn<bool>("before");
        QTest::addColumn<bool>("withType");
        QTest::newRow("before it selects") << true << true;
        QTest::newRow("after it selected") << false << true;
        QTest::newRow("without the type") << false << false;
    }

    void aHostThatMatchesByItself()
    {
        QFETCH(bool, before);
        QFETCH(bool, withType);
        const QString path = writeNamed(
            QStringLiteral("a"), staticText("one") + staticText("two") + staticText("three"));
        Unbuilt overlay;
        VideoOverlayProfilesModel &model = overlay.model;
        Profile *profile = model.index(0).data().value<Profile *>();
        const auto match = [&] {
            for (ElementParam &record : profile->elements()) {
                auto *text = overlay.manager.createText();
                record.insert(QStringLiteral("id"), text->id());
                if (!withType)
                    record.remove(QStringLiteral("type")); // which is then a static text's
                text->setParamObject(record);
                text->setText(record.value(QStringLiteral("text")).toString());
            }
        };
        if (before)
            match();
        QVERIFY(model.setCurrentProfile(profile));
        if (!before)
            match();
        overlay.manager.getElementList().at(2)->setRow(9);
        QVERIFY(overlay.manager.deleteElement(1));

        model.saveCurrentProfile();

        Profile again;
        QVERIFY(again.load(path));
        QCOMPARE(textsOf(again),
                 (QStringList {QStringLiteral("0:one"), QStringLiteral("0:three"),
                               QStringLiteral("7:")}));
        QCOMPARE(again.elements().at(1).value(QStringLiteral("row")).toInt(), 9);
        takeLog();
    }

    void aHostThatOnlyAdds_data()
    {
        QTest::addColumn<QByteArray>("own");
        QTest::addColumn<QStringList>("kept");
        QTest::newRow("to nothing") << QByteArray() << QStringList();
        QTest::newRow("to records that it never shows")
            << staticText("one") + staticText("two")
            << QStringList {QStringLiteral("0:one"), QStringLiteral("0:two")};
    }

    void aHostThatOnlyAdds()
    {
        QFETCH(QByteArray, own);
        QFETCH(QStringList, kept);
        const QString path = writeNamed(QStringLiteral("a"), own);
        Unbuilt overlay;
        QVERIFY(overlay.model.setCurrentProfileByIndex(0));
        for (const char *text : {"added", "added later"}) {
            overlay.manager.getElementListModel()->createStaticText(QString::fromLatin1(text));
            overlay.model.saveCurrentProfile();
            kept.append(QStringLiteral("0:") + QString::fromLatin1(text));
            Profile again;
            QVERIFY(again.load(path));
            QCOMPARE(textsOf(again), kept + QStringList(QStringLiteral("7:")));
            QVERIFY(!overlay.model.isCurrentProfileChanged());
        }
        takeLog();
    }

    void whatIsStillShownIsNotSavedIntoAnother()
    {
        writeThree();
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(0));
        disconnect(&model, &VideoOverlayProfilesModel::currentProfileChanged, &overlay, nullptr);
        for (const char *name : {"b", "c"}) { // c has no records of its own
            QVERIFY(model.setCurrentProfileByIndex(*name - 'a'));
            const QString path = pathOf(QString::fromLatin1(name) + QStringLiteral(".xml"));
            const QByteArray before = ProfileFolders::read(path);
            takeLog();
            model.saveCurrentProfile();
            QCOMPARE(takeLog(),
                     QStringList {
                         error(QStringLiteral("Cannot save current profile. It was not loaded"))});
            QCOMPARE(ProfileFolders::read(path), before);
        }
        // Nothing is lost when it fills a profile that holds nothing and is not current.
        Profile empty;
        QCOMPARE(model.applyChanges(&empty), &empty);
        QCOMPARE(
            textsOf(empty),
            (QStringList {QStringLiteral("0:one"), QStringLiteral("0:two"), QStringLiteral("7:")}));
        overlay.load(model.currentProfile());
        model.saveCurrentProfile();
        QCOMPARE(takeLog().last(), notice(QStringLiteral("Saving profile: c")));
    }

    void applyChangesFollowsTheElements()
    {
        writeNamed(QStringLiteral("a"),
                   staticText("one") + staticText("two") + staticText("three"));
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(0));
        // A key of the profile's own that the element does not report stays.
        model.currentProfile()->elements()[2].insert(QStringLiteral("own"), 1);
        QVERIFY(overlay.manager.deleteElement(1));
        overlay.addStaticText(QStringLiteral("four"))->setColumn(6);
        overlay.manager.createWatermark(QStringLiteral("watermark.png"));
        takeLog();

        Profile *profile = model.applyChanges(model.currentProfile());

        QCOMPARE(textsOf(*profile),
                 (QStringList {QStringLiteral("0:one"), QStringLiteral("0:three"),
                               QStringLiteral("0:four"), QStringLiteral("7:")}));
        QCOMPARE(profile->elements().at(1).value(QStringLiteral("own")).toInt(), 1);
        QCOMPARE(profile->elements().at(2).value(QStringLiteral("col")).toInt(), 6);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(profile->elements().at(i).value(QStringLiteral("id")).toInt(),
                     overlay.element(i)->id());
        takeLog();
    }

    void applyingGrowsWithTheRecords()
    {
        // Eight times the elements take eight times as long; with the square it would be 64 times.
        const auto takes = [this](int elements) {
            writeNamed(QStringLiteral("a"), staticText("text").repeated(elements));
            Overlay overlay;
            auto &model = overlay.model;
            model.setCurrentProfileByIndex(0);
            std::clock_t shortest = std::numeric_limits<std::clock_t>::max();
            for (int i = 0; i < 5; ++i) {
                const std::clock_t begin = std::clock();
                model.applyChanges(model.currentProfile());
                model.isCurrentProfileChanged();
                shortest = std::min(shortest, std::clock() - begin);
            }
            return double(shortest);
        };
        const double few = takes(500);
        const double many = takes(4000);
        QVERIFY2(many < 24 * few, qPrintable(QStringLiteral("%1 and %2 us").arg(few).arg(many)));
        takeLog();
    }

    void applyChangesWithoutGeneralSettings()
    {
        // Nothing was loaded: the manager's record holds the live values and no "type".
        CVideoOverlayCapabilities capabilities;
        CVideoOverlayControl control;
        CVideoOverlayManager manager(control, capabilities);
        VideoOverlayProfilesModel model(manager);
        Profile profile;

        model.applyChanges(&profile);

        ElementParam expected = ElementParam::createGeneralSettingsDefault();
        expected.insert(QStringLiteral("globalTransparency"), 44);
        expected.insert(QStringLiteral("analogVideo"), false);
        expected.insert(QStringLiteral("kx70ii_col"), 1);
        expected.insert(QStringLiteral("kx70ii_row"), 1);
        expected.insert(QStringLiteral("kx70ii_units"), QStringLiteral("metrics"));
        QCOMPARE(profile.elements(), QList<ElementParam> {expected});
    }

    void generalSettingsOfAHostAreSavedAsTheyAre()
    {
        CVideoOverlayCapabilities capabilities;
        CVideoOverlayControl control;
        CVideoOverlayManager manager(control, capabilities);
        VideoOverlayProfilesModel model(manager);
        ElementParam general = ElementParam::createGeneralSettingsDefault();
        general.remove(QStringLiteral("id"));
        manager.setGeneralSettings(general);
        Profile profile;

        model.applyChanges(&profile);

        general.insert(QStringLiteral("globalTransparency"), 44);
        QCOMPARE(profile.elements(), QList<ElementParam> {general});
    }

    void aWatermarkAmongTheElementsIsNotSaved_data()
    {
        QTest::addColumn<QVariant>("type");
        QTest::newRow("number") << QVariant(int(CVideoOverlayElement::Watermark));
        QTest::newRow("name") << QVariant(QStringLiteral("Watermark"));
        QTest::newRow("the type itself") << QVariant::fromValue(CVideoOverlayElement::Watermark);
    }

    void aWatermarkAmongTheElementsIsNotSaved()
    {
        QFETCH(QVariant, type);
        // It stays when profiles are switched, and would get into all of them.
        writeNamed(QStringLiteral("a"), staticText("one"));
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(0));
        ElementParam record;
        record.insert(QStringLiteral("type"), type);
        new COsdStaticTextDatasource(overlay.manager.createText(), record);

        model.applyChanges(model.currentProfile());

        QCOMPARE(textsOf(*model.currentProfile()),
                 (QStringList {QStringLiteral("0:one"), QStringLiteral("7:")}));
        takeLog();
    }

    void aSavedRecordKnowsItsElement()
    {
        // Also that of an element which a host described without an id.
        writeNamed(QStringLiteral("a"));
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(0));
        auto *element = overlay.manager.createText();
        ElementParam record;
        record.insert(QStringLiteral("type"), 0);
        element->setParamObject(record);

        model.applyChanges(model.currentProfile());

        QCOMPARE(model.currentProfile()->elements().first().value(QStringLiteral("id")).toInt(),
                 element->id());
        takeLog();
    }

    void applyingNothingIsNoChange()
    {
        writeThree(); // without general settings, which are added
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(0));
        QCOMPARE(model.currentProfile()->elements().size(), 2);
        model.applyChanges(model.currentProfile());
        QCOMPARE(model.currentProfile()->elements().size(), 3);
        QVERIFY(!model.isCurrentProfileChanged());
        takeLog();
    }

    void generalSettingsStandInForNoElement()
    {
        CVideoOverlayCapabilities capabilities;
        CVideoOverlayControl control;
        CVideoOverlayManager manager(control, capabilities);
        VideoOverlayProfilesModel model(manager);
        manager.createText(); // by nobody's profile
        Profile profile;
        ElementParam general = ElementParam::createGeneralSettingsDefault();
        general.remove(QStringLiteral("id"));
        profile.elements().append(general);

        model.applyChanges(&profile);

        QCOMPARE(profile.elements().size(), 1);
    }

    void aPathOfAPictureIsNotLost_data()
    {
        QTest::addColumn<QByteArray>("snip");
        QTest::newRow("a screen snip") << QByteArray("<SCREENSNIP>true</SCREENSNIP>");
        QTest::newRow("a picture that could not be copied") << QByteArray();
    }

    void aPathOfAPictureIsNotLost()
    {
        QFETCH(QByteArray, snip);
        writeNamed(QStringLiteral("a"),
                   "<IMAGE><PATH>/pictures/a.png</PATH><SCALE>1</SCALE>" + snip + "</IMAGE>");
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(0));
        const QString key = QStringLiteral("imagePath");
        const auto saved = [&] {
            model.saveCurrentProfile();
            Profile again;
            again.load(pathOf(QStringLiteral("a.xml")));
            return again.elements().value(0).value(key).toString();
        };
        QCOMPARE(overlay.element(0)->getAllProperties().value(key).toString(), QString());

        QCOMPARE(saved(), QStringLiteral("/pictures/a.png"));
        QCOMPARE(saved(), QStringLiteral("/pictures/a.png")); // the baseline has lost it by now

        auto *image = qobject_cast<Velmar::VideoOverlay::CVideoOverlayImage *>(overlay.element(0));
        image->setImageSrc(QStringLiteral("/pictures/b.png"));
        QCOMPARE(saved(), QStringLiteral("/pictures/b.png"));
        takeLog();
        takeQtWarnings();
    }

    void thePathThatTheProfileNamesIsKept()
    {
        writeNamed(QStringLiteral("a"), "<IMAGE><PATH>/pictures/a.png</PATH></IMAGE>");
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(0));
        const QString key = QStringLiteral("imagePath");
        overlay.element(0)->getParamObjectRef().insert(key, QStringLiteral("/copies/a.png"));
        model.applyChanges(model.currentProfile());
        QCOMPARE(model.currentProfile()->elements().first().value(key).toString(),
                 QStringLiteral("/pictures/a.png"));
        takeLog();
    }

    void isCurrentProfileChanged_data()
    {
        QTest::addColumn<std::function<void(Overlay &)>>("edit");
        QTest::addColumn<bool>("changed");
        QTest::addColumn<int>("withoutId");

        using Edit = std::function<void(Overlay &)>;
        QTest::newRow("nothing") << Edit([](Overlay &) {}) << false << 0;
        QTest::newRow("moved") << Edit([](Overlay &o) { o.element(0)->setRow(8); }) << true << 1;
        QTest::newRow("moved and back") << Edit([](Overlay &o) {
            o.element(0)->setRow(8);
            o.element(0)->setRow(0);
        }) << false << 0;
        QTest::newRow("transparency")
            << Edit([](Overlay &o) { o.manager.setGlobalTransparency(3); }) << true << 0;
        QTest::newRow("added") << Edit([](Overlay &o) { o.addStaticText(QStringLiteral("new")); })
                               << true << -1;
        QTest::newRow("deleted") << Edit([](Overlay &o) { o.manager.deleteElement(0); }) << true
                                 << 0;
        QTest::newRow("added and deleted") << Edit([](Overlay &o) {
            o.addStaticText(QStringLiteral("new"));
            o.manager.deleteElement(2);
        }) << false << 0;
        QTest::newRow("a fixed text") << Edit([](Overlay &o) {
            qobject_cast<Velmar::VideoOverlay::CVideoOverlayText *>(o.element(0))
                ->setText(QStringLiteral("other"));
        }) << true << 1;
        QTest::newRow("a typed text") << Edit([](Overlay &o) {
            qobject_cast<Velmar::VideoOverlay::CVideoOverlayText *>(o.element(1))
                ->setText(QStringLiteral("typed"));
        }) << false << 1;
        QTest::newRow("a typed text that was moved") << Edit([](Overlay &o) {
            qobject_cast<Velmar::VideoOverlay::CVideoOverlayText *>(o.element(1))
                ->setText(QStringLiteral("typed"));
            o.element(1)->setColumn(3);
        }) << true << 1;
        QTest::newRow("a fixed and a typed text") << Edit([](Overlay &o) {
            for (int i : {0, 1})
                qobject_cast<Velmar::VideoOverlay::CVideoOverlayText *>(o.element(i))
                    ->setText(QStringLiteral("other"));
        }) << true << 2;
        QTest::newRow("favourites") << Edit([](Overlay &o) {
            o.manager.getFavoritesModel()->append(QStringLiteral("favourite"));
        }) << true << 1;
    }

    void isCurrentProfileChanged()
    {
        QFETCH(std::function<void(Overlay &)>, edit);
        QFETCH(bool, changed);
        QFETCH(int, withoutId);
        writeNamed(QStringLiteral("a"),
                   staticText("one")
                       + "<FREETEXT><VISIBLE>true</VISIBLE><FAVORITES><TEXT><LINE1>f</LINE1></TEXT>"
                         "</FAVORITES></FREETEXT>");
        Overlay overlay;
        QVERIFY(overlay.model.setCurrentProfileByIndex(0));
        takeLog();

        edit(overlay);

        QCOMPARE(overlay.model.isCurrentProfileChanged(), changed);
        const QStringList complaints = takeLog().filter(QStringLiteral("1 "));
        if (withoutId >= 0)
            QCOMPARE(complaints.size(), withoutId);
        for (const QString &complaint : complaints)
            QCOMPARE(complaint, error(QStringLiteral("Profile changeset doesn't have id key")));
    }

    void savedFavouritesAreNoChange()
    {
        writeNamed(QStringLiteral("a"), "<FREETEXT><VISIBLE>true</VISIBLE></FREETEXT>");
        Overlay overlay;
        QVERIFY(overlay.model.setCurrentProfileByIndex(0));
        overlay.manager.getFavoritesModel()->append(QStringLiteral("favourite"));

        overlay.model.saveCurrentProfile();

        QVERIFY(!overlay.model.isCurrentProfileChanged());
        Profile again;
        QVERIFY(again.load(pathOf(QStringLiteral("a.xml"))));
        QCOMPARE(again.elements().first().value(QStringLiteral("favorites")).toStringList(),
                 QStringList(QStringLiteral("favourite")));
        takeLog();
    }

    void isCurrentProfileChangedWithoutOne()
    {
        Overlay overlay;
        takeLog();
        QVERIFY(!overlay.model.isCurrentProfileChanged());
        QCOMPARE(takeLog(), QStringList {error(QStringLiteral("Current profile is null"))});
    }

    void elementsWithoutRecordCountAsTheyWereLoaded()
    {
        writeNamed(QStringLiteral("a"),
                   "<SYSTEMTEXT><COL_Bound_Column>SPEED</COL_Bound_Column></SYSTEMTEXT>"
                   "<SYSTEMTEXT><COL_Bound_Column>DATE</COL_Bound_Column></SYSTEMTEXT>");
        Overlay overlay;
        QVERIFY(overlay.model.setCurrentProfileByIndex(0));
        QVERIFY(!overlay.model.isCurrentProfileChanged());
        QVERIFY(overlay.manager.deleteElement(0));
        QVERIFY(overlay.model.isCurrentProfileChanged());
        takeLog();
    }

    void whatWasBuiltIsTheBaseline_data()
    {
        QTest::addColumn<bool>("atOnce");
        QTest::newRow("at once, without a word") << true;
        QTest::newRow("later, and announced") << false;
    }

    void whatWasBuiltIsTheBaseline()
    {
        // A system text that nobody serves is an element without a record.
        QFETCH(bool, atOnce);
        writeThree();
        CVideoOverlayCapabilities capabilities;
        CVideoOverlayControl control;
        CVideoOverlayManager manager(control, capabilities);
        VideoOverlayProfilesModel model(manager);
        const auto build = [&manager] {
            manager.createText();
            manager.setGeneralSettings(ElementParam::createGeneralSettingsDefault());
            manager.resetChanges();
        };
        if (atOnce)
            connect(&model, &VideoOverlayProfilesModel::currentProfileChanged, &manager, build);
        QVERIFY(model.setCurrentProfileByIndex(0));
        if (!atOnce) {
            build();
            QVERIFY(model.isCurrentProfileChanged());
            Q_EMIT model.profileLoaded();
        }
        QVERIFY(!model.isCurrentProfileChanged());
        takeLog();
    }

    void elementsThatComeWithTheirRecordsAreNoEdit()
    {
        writeThree();
        Overlay overlay;
        QVERIFY(overlay.model.setCurrentProfileByIndex(0));
        takeLog();
        auto *element = overlay.addStaticText(QStringLiteral("of the catalog"));
        overlay.manager.resetChanges();
        QVERIFY(overlay.model.isCurrentProfileChanged());
        overlay.model.currentProfile()->elements().prepend(element->getParamObject());
        QVERIFY(!overlay.model.isCurrentProfileChanged());
    }

    void cloneARow()
    {
        writeThree();
        Overlay overlay;
        auto &model = overlay.model;
        takeLog();
        QSignalSpy aboutToBeInserted(&model, &QAbstractItemModel::rowsAboutToBeInserted);
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);

        QCOMPARE(model.clone(1), 3);

        QCOMPARE(aboutToBeInserted.count(), 1);
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(inserted.first().at(1).toInt(), 3);
        QCOMPARE(inserted.first().at(2).toInt(), 3);
        const auto *copy = model.index(3).data().value<Profile *>();
        QCOMPARE(copy->name(), QStringLiteral("b(copy)"));
        QCOMPARE(textsOf(*copy), QStringList {QStringLiteral("0:three")});
        QCOMPARE(model.currentProfileIndex(), -1);
        QCOMPARE(takeLog(), QStringList());
    }

    void cloneAProfile()
    {
        writeThree();
        Overlay overlay;
        auto &model = overlay.model;
        takeLog();
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
        auto *a = model.index(0).data().value<Profile *>();

        const Profile *named = model.clone(a, QStringLiteral(" New "));
        const Profile *unnamed = model.clone(a);

        QCOMPARE(named->name(), QStringLiteral("New"));
        QCOMPARE(unnamed->name(), QStringLiteral("a(copy)"));
        QCOMPARE(inserted.count(), 2);
        QCOMPARE(model.rowCount(), 5);
        QCOMPARE(model.index(4).data().value<Profile *>(), unnamed);
        QCOMPARE(takeLog(), QStringList());
    }

    void refusedClones()
    {
        writeThree();
        Overlay overlay;
        auto &model = overlay.model;
        takeLog();
        QSignalSpy aboutToBeInserted(&model, &QAbstractItemModel::rowsAboutToBeInserted);
        const QString message = error(QStringLiteral("Cloning error"));

        QCOMPARE(model.clone(3), -1);
        QCOMPARE(model.clone(-1), -1);
        QCOMPARE(model.clone(nullptr, QStringLiteral("x")), nullptr);
        QCOMPARE(takeLog(), (QStringList {message, message, message}));
        QCOMPARE(model.clone(model.index(0).data().value<Profile *>(), QStringLiteral("../x")),
                 nullptr);
        QCOMPARE(takeLog().size(), 1);
        QCOMPARE(aboutToBeInserted.count(), 0);
        QCOMPARE(model.rowCount(), 3);
    }

    void remove_data()
    {
        QTest::addColumn<int>("current");
        QTest::addColumn<int>("removed");
        QTest::addColumn<QString>("selected");
        QTest::addColumn<int>("announced");

        QTest::newRow("the current: the next") << 0 << 0 << QStringLiteral("b") << 1;
        QTest::newRow("the last: the new last") << 2 << 2 << QStringLiteral("b") << 1;
        QTest::newRow("another: the one then in its row") << 2 << 0 << QStringLiteral("b") << 1;
        QTest::newRow("before the current: it stays") << 2 << 1 << QStringLiteral("c") << 0;
        QTest::newRow("none was current") << -1 << 1 << QStringLiteral("c") << 1;
    }

    void remove()
    {
        QFETCH(int, current);
        QFETCH(int, removed);
        QFETCH(QString, selected);
        QFETCH(int, announced);
        writeThree();
        Overlay overlay;
        auto &model = overlay.model;
        if (current >= 0)
            QVERIFY(model.setCurrentProfileByIndex(current));
        takeLog();
        const QPointer<Profile> profile(model.index(removed).data().value<Profile *>());
        const QString path = profile->path();
        QSignalSpy changed(&model, &VideoOverlayProfilesModel::currentProfileChanged);
        QSignalSpy rowsRemoved(&model, &QAbstractItemModel::rowsRemoved);
        bool hasCurrentMeanwhile = true;
        connect(&model, &QAbstractItemModel::rowsRemoved, this, [&] {
            hasCurrentMeanwhile = model.currentProfile() != nullptr;
            takeLog();
        });

        QVERIFY(model.remove(removed));

        QCOMPARE(rowsRemoved.count(), 1);
        QCOMPARE(rowsRemoved.first().at(1).toInt(), removed);
        QCOMPARE(rowsRemoved.first().at(2).toInt(), removed);
        QCOMPARE(hasCurrentMeanwhile, current >= 0 && current != removed);
        QCOMPARE(model.rowCount(), 2);
        QVERIFY(!QFileInfo::exists(path));
        QCOMPARE(changed.count(), announced);
        QCOMPARE(model.currentProfile()->name(), selected);
        if (announced)
            QCOMPARE(takeLog(),
                     (QStringList {notice(QStringLiteral("Switch current profile to: ") + selected),
                                   stored(selected + QStringLiteral(".xml"))}));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!profile);
    }

    void removeAReadOnlyProfile()
    {
        const QString path = writeNamed(QStringLiteral("a"), {}, "true");
        writeNamed(QStringLiteral("b"));
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(1));
        takeLog();
        QSignalSpy changed(&model, &VideoOverlayProfilesModel::currentProfileChanged);
        QSignalSpy aboutToBeRemoved(&model, &QAbstractItemModel::rowsAboutToBeRemoved);

        QVERIFY(model.remove(0));

        QCOMPARE(aboutToBeRemoved.count(), 0);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(model.rowCount(), 2);
        QCOMPARE(model.currentProfileIndex(), 1);
        QVERIFY(QFileInfo::exists(path));
        QCOMPARE(takeLog(), QStringList());
    }

    void removeTheOnlyProfile()
    {
        writeNamed(QStringLiteral("a"), staticText("one"));
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(0));
        const QByteArray settings = ProfileFolders::read(COsdSettings::xmlSettingsPath());
        takeLog();
        QSignalSpy changed(&model, &VideoOverlayProfilesModel::currentProfileChanged);

        QVERIFY(model.remove(0));

        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().first().value<Profile *>(), nullptr);
        QCOMPARE(model.currentProfileIndex(), -1);
        QCOMPARE(overlay.manager.elementsCount(), 0);
        QCOMPARE(ProfileFolders::read(COsdSettings::xmlSettingsPath()), settings);
        QCOMPARE(takeLog(), QStringList());
    }

    void removeTheOnlyProfileBesideAForeignOne()
    {
        writeNamed(QStringLiteral("a"));
        Profile foreign;
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfile(&foreign));
        QCOMPARE(model.currentProfileIndex(), -1);
        QSignalSpy changed(&model, &VideoOverlayProfilesModel::currentProfileChanged);

        QVERIFY(model.remove(0));

        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().first().value<Profile *>(), nullptr);
        takeLog();
        QCOMPARE(model.currentProfile(), nullptr);
        takeLog();
    }

    void removeNoRow()
    {
        writeThree();
        Overlay overlay;
        takeLog();
        for (int row : {-1, 3}) {
            QVERIFY(!overlay.model.remove(row));
            QCOMPARE(
                takeLog(),
                QStringList {error(QStringLiteral("Fail to remove profile by index %1").arg(row))});
        }
        QCOMPARE(overlay.model.rowCount(), 3);
    }

    void renameTheCurrentProfile()
    {
        writeThree();
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(1));
        takeLog();
        QSignalSpy dataChanged(&model, &QAbstractItemModel::dataChanged);
        QSignalSpy changed(&model, &VideoOverlayProfilesModel::currentProfileChanged);

        QVERIFY(model.currentProfile()->rename(QStringLiteral("z")));

        QCOMPARE(dataChanged.count(), 1);
        QCOMPARE(dataChanged.first().at(0).toModelIndex(), model.index(1));
        QCOMPARE(dataChanged.first().at(1).toModelIndex(), model.index(1));
        QCOMPARE(changed.count(), 0);
        QCOMPARE(storedFile(), QStringLiteral("z.xml"));
        QCOMPARE(takeLog(), QStringList {stored(QStringLiteral("z.xml"))});
    }

    void renameAnother()
    {
        writeThree();
        Overlay overlay;
        auto &model = overlay.model;
        QVERIFY(model.setCurrentProfileByIndex(1));
        QCOMPARE(model.clone(0), 3);
        takeLog();
        QSignalSpy dataChanged(&model, &QAbstractItemModel::dataChanged);

        QVERIFY(model.index(3).data().value<Profile *>()->rename(QStringLiteral("z")));

        QCOMPARE(dataChanged.count(), 1);
        QCOMPARE(dataChanged.first().at(0).toModelIndex(), model.index(3));
        QCOMPARE(storedFile(), QStringLiteral("b.xml"));
        QCOMPARE(takeLog(), QStringList());
    }

    void forwardProfileLoadedDoesNothing()
    {
        Overlay overlay;
        takeLog();
        QSignalSpy loaded(&overlay.model, &VideoOverlayProfilesModel::profileLoaded);
        overlay.model.forwardProfileLoaded();
        QCOMPARE(loaded.count(), 0);
        QCOMPARE(takeLog(), QStringList());
    }

    void fromQml()
    {
        writeThree();
        Overlay overlay;
        auto &model = overlay.model;
        QQmlEngine engine;
        QStringList warnings;
        connect(&engine, &QQmlEngine::warnings, this, [&](const QList<QQmlError> &errors) {
            for (const QQmlError &error : errors)
                warnings.append(error.toString());
        });
        engine.rootContext()->setContextProperty(QStringLiteral("model"), &model);
        const auto evaluate = [&](const char *code) {
            QQmlExpression expression(engine.rootContext(), nullptr, QString::fromUtf8(code));
            const QVariant result = expression.evaluate();
            if (expression.hasError())
                warnings.append(expression.error().toString());
            return result;
        };
        takeLog();

        QCOMPARE(evaluate("model.currentProfileIndex").toInt(), -1);
        QCOMPARE(evaluate("model.setCurrentProfileByIndex(1)").toBool(), true);
        QCOMPARE(evaluate("model.currentProfile.caption").toString(), QStringLiteral("b"));
        QCOMPARE(evaluate("model.currentProfile.path").toString(), pathOf(QStringLiteral("b.xml")));
        QCOMPARE(evaluate("model.currentProfile.readOnly"), QVariant(false));
        QCOMPARE(evaluate("model.currentProfileIndex = 0").toInt(), 0);
        QCOMPARE(model.currentProfile()->name(), QStringLiteral("a"));

        // By row, by profile, by profile and name: each call finds its own overload.
        QCOMPARE(evaluate("model.clone(1)"), QVariant(3));
        QCOMPARE(evaluate("model.clone(model.currentProfile).path").toString(),
                 pathOf(QStringLiteral("a(copy).xml")));
        QCOMPARE(evaluate("model.clone(model.currentProfile, 'Q').path").toString(),
                 pathOf(QStringLiteral("Q.xml")));
        QCOMPARE(model.rowCount(), 6);
        QCOMPARE(evaluate("model.data(model.index(5, 0), 0).caption").toString(),
                 QStringLiteral("Q"));

        QCOMPARE(evaluate("model.currentProfile = model.data(model.index(4, 0), 0);"
                          "model.currentProfileIndex")
                     .toInt(),
                 4);
        QCOMPARE(evaluate("model.isCurrentProfileChanged()"), QVariant(false));
        evaluate("model.saveCurrentProfile()");
        evaluate("model.saveCurrentProfile('x')");
        evaluate("model.revertCurrentProfile()");
        QCOMPARE(evaluate("model.applyChanges(model.currentProfile) === model.currentProfile"),
                 QVariant(true));
        QCOMPARE(evaluate("model.remove(4)"), QVariant(true));

        // No engine may collect a profile.
        engine.collectGarbage();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        for (int row = 0; row < model.rowCount(); ++row)
            QVERIFY(!model.index(row).data().value<Profile *>()->caption().isEmpty());
        QCOMPARE(warnings, QStringList());
        takeLog();
    }
};

Q_DECLARE_METATYPE(std::function<void(Overlay &)>)

QTEST_MAIN(tst_VideoOverlayProfilesModel)
#include "tst_VideoOverlayProfilesModel.moc"
