// SPDX-License-Identifier: Apache-2.0
#include "host/platform/CatalogStore.h"
#include "host/platform/TranslationStore.h"
#include "platform/appstate/AppState.h"
#include "tests/support/LiveOverlay.h"
#include "tests/support/LoggedTest.h"
#include "videooverlay/captions/DictCaptionResolver.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/osd/COsdValueDatasource.h"

#include <QPointer>
#include <QSharedPointer>
#include <QTest>

#include <memory>
#include <optional>

using namespace Velmar::VideoOverlay;
using Velmar::CATManagement::CatalogStore;
using Velmar::Test::LiveOverlay;
using Velmar::Test::RecordingDisplayBackend;
using Velmar::Translation::TranslationStore;

namespace {

ElementParam boundTo(const QString &column)
{
    ElementParam param;
    param.insert(QStringLiteral("type"), int(CVideoOverlayElement::SystemText));
    param.insert(QStringLiteral("enabled"), true);
    param.insert(QStringLiteral("captionEnabled"), true);
    param.insert(QStringLiteral("columnBound"), column);
    return param;
}

} // namespace

/// Parts of a running overlay that go away or are replaced.
class tst_LostParts : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override
    {
        TranslationStore::instance().setDirectory(QStringLiteral(SOURCE_DATA_DIR "/translations"));
        TranslationStore::instance().setLocale(QLocale(QStringLiteral("en_GB")));
        CatalogStore::instance().setDirectory(QStringLiteral(SOURCE_DATA_DIR "/catalogs"));
        m_overlay.emplace();
    }

    std::optional<LiveOverlay> m_overlay;

private Q_SLOTS:
    void elementWithAQueuedValue()
    {
        ElementParam param = boundTo(ElementParam::NAME_SPEED);
        const QPointer<CVideoOverlayText> text = m_overlay->manager.createText(param);
        auto *source = new COsdValueDatasource({}, text, param);
        QMetaObject::invokeMethod(
            source, [source] { source->update(QVariant(QStringLiteral("12"))); },
            Qt::QueuedConnection);
        m_overlay->takeShown();
        QVERIFY(m_overlay->manager.deleteElement(0));
        QVERIFY(!text);
        m_overlay->takeShown();
        QCoreApplication::processEvents();
        QCOMPARE(m_overlay->takeShown(), QStringList());
    }

    /// Deleted by a handler of the very change that the value makes.
    void elementDeletedByItsOwnValue()
    {
        ElementParam param = boundTo(ElementParam::NAME_SPEED);
        const QPointer<CVideoOverlayText> text = m_overlay->manager.createText(param);
        auto *source = new COsdValueDatasource(
            QSharedPointer<DictCaptionResolver>::create(CatalogStore::instance()), text, param);
        const int id = text->id();
        text->setTimeout(5); // showing it would start its timer, with a line in the log
        takeLog();
        connect(text, &CVideoOverlayText::textChanged, this,
                [this] { m_overlay->manager.removeElements(); });
        m_overlay->takeShown();
        source->update(QVariant(QStringLiteral("12")));
        QVERIFY(text);
        QCOMPARE(m_overlay->takeShown().last(), QStringLiteral("deleteElement %1").arg(id));
        const QString caption = text->caption();
        TranslationStore::instance().setLocale(QLocale(QStringLiteral("de_DE")));
        QCOMPARE(text->caption(), caption); // its datasource follows nothing any more
        QCOMPARE(m_overlay->takeShown(), QStringList());
        QCOMPARE(takeLog(), // the resolver's own line, as there is no project
                 QStringList {QStringLiteral("2 VideoOverlayLibrary: Invalid project.")});
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!text);
    }

    void displayReplacedAndDestroyed()
    {
        ElementParam param = boundTo(ElementParam::NAME_SPEED);
        CVideoOverlayText *text = m_overlay->manager.createText(param);
        auto *source = new COsdValueDatasource({}, text, param);
        {
            RecordingDisplayBackend other;
            m_overlay->control.setBackend(&other);
            m_overlay->takeShown();
            source->update(QVariant(QStringLiteral("12")));
            QVERIFY(
                other.takeCalls().contains(QStringLiteral("displayElement %1").arg(text->id())));
            QCOMPARE(m_overlay->takeShown(), QStringList());
        }
        QVERIFY(!m_overlay->manager.videoOverlayAvailable());
        source->update(QVariant(QStringLiteral("345"))); // nobody shows it
        m_overlay->control.setBackend(&m_overlay->display);
        m_overlay->takeShown();
        m_overlay->manager.onSettingsChanged(); // as a host does when a display is back
        QVERIFY(
            m_overlay->takeShown().contains(QStringLiteral("displayElement %1").arg(text->id())));
        QVERIFY(text->text().endsWith(QStringLiteral("345")));
        m_overlay->control.setBackend(nullptr);
        m_overlay->manager.removeElements();
        QCOMPARE(m_overlay->manager.elementsCount(), 0);
    }

    void templateReplaced()
    {
        CatalogStore &catalogs = CatalogStore::instance();
        const auto resolver = QSharedPointer<TemplateCaptionResolver>::create(catalogs);
        ElementParam param = boundTo(QStringLiteral("OBS_OpCode"));
        param.insert(QStringLiteral("TDIR_Key"), QStringLiteral("SECOBS"));
        CVideoOverlayText *text = m_overlay->manager.createText(param);
        auto *source = new COsdValueDatasource(resolver, text, param);
        QCOMPARE(takeLog(), // there is no template yet
                 QStringList {QStringLiteral(
                     "2 VideoOverlayLibrary: Cannot find caption for OBS_OpCode in SECOBS")});
        source->update(QVariant(QStringLiteral("BAB")));
        QStringList captions;
        const QStringList ids = catalogs.catalogIds();
        QVERIFY(ids.size() >= 2);
        for (const QString &id : ids) {
            QVERIFY(catalogs.loadTemplate(id));
            captions.append(text->caption());
            QCOMPARE(text->text(), text->caption() + QStringLiteral(": BAB"));
            m_overlay->takeShown();
        }
        captions.removeDuplicates();
        QVERIFY(captions.size() >= 2);
        catalogs.setDirectory(QStringLiteral(SOURCE_DATA_DIR "/catalogs")); // forgets them
        source->update(QVariant(QStringLiteral("BAC")));
        QCOMPARE(text->text(), text->caption() + QStringLiteral(": BAC"));
    }

    void translatorSwitched()
    {
        const auto resolver = QSharedPointer<DictCaptionResolver>::create(CatalogStore::instance());
        ElementParam param = boundTo(ElementParam::NAME_SPEED);
        CVideoOverlayText *text = m_overlay->manager.createText(param);
        auto *source = new COsdValueDatasource(resolver, text, param);
        source->update(QVariant(QStringLiteral("12")));
        takeLog();
        QStringList captions;
        for (const char *locale : {"en_GB", "de_DE", "fr_FR", "de_DE"}) {
            TranslationStore::instance().setLocale(QLocale(QString::fromLatin1(locale)));
            captions.append(text->caption());
            QVERIFY(!text->caption().isEmpty());
            QVERIFY2(text->text().startsWith(text->caption() + QStringLiteral(": 12")),
                     qPrintable(text->text()));
        }
        QCOMPARE(captions.at(1), captions.at(3));
        QVERIFY(captions.at(0) != captions.at(1));
        QVERIFY(captions.at(1) != captions.at(2));
        takeLog();
    }
};

QTEST_MAIN(tst_LostParts)
#include "tst_LostParts.moc"
