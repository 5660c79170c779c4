// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/models/VideoOverlayElementListModel.h"

#include "tests/support/LiveOverlay.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"
#include "tests/support/ProfileFolders.h"
#include "tests/support/SignalJournal.h"

#include <QAbstractItemModelTester>
#include <QImage>
#include <QPointer>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlExpression>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <optional>

using namespace Velmar::VideoOverlay;
using Velmar::Test::LiveOverlay;
using Velmar::Test::SignalJournal;

namespace {

QStringList lines(std::initializer_list<const char *> entries)
{
    QStringList list;
    for (const char *entry : entries)
        list.append(QString::fromLatin1(entry));
    return list;
}

ElementParam withValue(const QString &key, const QVariant &value)
{
    ElementParam param;
    param.insert(key, value);
    return param;
}

const QString walkLine = QStringLiteral(
    "4 VideoOverlayLibrary: VideoOverlayElementListModel::hideNotPermanentElements");

} // namespace

class tst_VideoOverlayElementListModel : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override
    {
        m_folders.emplace();
        m_tester.reset(); // before its model
        m_overlay.emplace();
        m_tester = std::make_unique<QAbstractItemModelTester>(
            &m_overlay->model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    }

    /// A text that is shown, with this record.
    CVideoOverlayText *addText(CVideoOverlayElement::Type type, const ElementParam &param = {})
    {
        auto *text = m_overlay->model.createStaticText(QString()).value<QObject *>();
        auto *result = qobject_cast<CVideoOverlayText *>(text);
        result->setType(type);
        result->setParamObject(param);
        result->setEnabled(true);
        result->setVisible(true);
        return result;
    }

    std::optional<Velmar::Test::ProfileFolders> m_folders;
    std::optional<LiveOverlay> m_overlay;
    std::unique_ptr<QAbstractItemModelTester> m_tester;

private Q_SLOTS:
    void cleanupTestCase() { m_tester.reset(); }

    void metaObject()
    {
        const QMetaObject &meta = VideoOverlayElementListModel::staticMetaObject;
        QCOMPARE(Velmar::Test::propertiesOf(meta),
                 lines({"int transparency write transparencyChanged(int)",
                        "QColor textColor write textColorChanged(QColor)",
                        "QColor backgroundColor write backgroundColorChanged(QColor)",
                        "QColor invalidColor constant",
                        "Velmar::VideoOverlay::CVideoOverlayText* freeText constant",
                        "bool analogVideo write analogVideoChanged(bool)",
                        "bool kx70State write kx70Changed()", "int kx70Row write kx70Changed()",
                        "int kx70Col write kx70Changed()"}));
        QCOMPARE(Velmar::Test::methodsOf(meta),
                 lines({"signal onRemoveAt(int)", "signal createFreeText(QString)",
                        "signal transparencyChanged(int)", "signal textColorChanged(QColor)",
                        "signal backgroundColorChanged(QColor)", "signal analogVideoChanged(bool)",
                        "signal kx70Changed()", "method bool remove(int)",
                        "method QVariant createStaticText(QString)",
                        "method QVariant createImage(QString)", "method hideNotPermanentElements()",
                        "method reset()", "method beginReset()", "method endReset()",
                        "method showObservationElements()", "method showSecInspElements()",
                        "method hideStartUpInspElements()"}));
    }

    void makingAModelResetsTheTransparency()
    {
        m_overlay->manager.setGlobalTransparency(7);
        const VideoOverlayElementListModel another(m_overlay->manager);
        QCOMPARE(m_overlay->manager.getGlobalTransparency(), 44);
    }

    void roles()
    {
        const VideoOverlayElementListModel &model = m_overlay->model;
        const QHash<int, QByteArray> expected {
            {256, "index"}, {257, "type"}, {258, "columnBound"}, {259, "staticId"}};
        QCOMPARE(model.roleNames(), expected);
        ElementParam param;
        param.insert(QStringLiteral("columnBound"), QStringLiteral("INS_Length"));
        param.insert(QStringLiteral("staticId"), 12);
        addText(CVideoOverlayElement::StaticText);
        addText(CVideoOverlayElement::InspText, param);
        QCOMPARE(model.rowCount(), 2);
        QCOMPARE(model.rowCount(model.index(0)), 0);
        const QModelIndex second = model.index(1);
        QCOMPARE(second.data(256), QVariant(1));
        QCOMPARE(second.data(257), QVariant(3));
        QCOMPARE(second.data(258), QVariant(QStringLiteral("INS_Length")));
        QCOMPARE(second.data(259), QVariant(12));
        QCOMPARE(model.index(0).data(258), QVariant(QString()));
        QCOMPARE(model.index(0).data(259), QVariant(0));
        for (int role : {int(Qt::DisplayRole), 255, 260, 1000, -1})
            QCOMPARE(model.data(second, role), QVariant());
        QCOMPARE(model.data(QModelIndex(), 256), QVariant());
        m_overlay->manager.deleteElement(1); // without the model: the row is out of range
        QCOMPARE(model.data(second, 256), QVariant());
        m_overlay->model.reset();
    }

    void passesSettingsThrough()
    {
        VideoOverlayElementListModel &model = m_overlay->model;
        CVideoOverlayManager &manager = m_overlay->manager;
        manager.createText();
        model.reset();
        SignalJournal journal(model, VideoOverlayElementListModel::staticMetaObject);
        const auto taken = [&] {
            QStringList entries = journal.take();
            entries.erase(std::remove_if(entries.begin(), entries.end(),
                                         [](const QString &entry) {
                                             return entry.startsWith(QLatin1String("dataChanged"));
                                         }),
                          entries.end());
            return entries;
        };
        QCOMPARE(model.transparency(), 44);
        model.setTransparency(5);
        QCOMPARE(manager.getGlobalTransparency(), 5);
        QCOMPARE(taken(), lines({"transparencyChanged(5)"}));
        model.setTextColor(Qt::red);
        QCOMPARE(model.textColor(), QColor(Qt::red));
        QCOMPARE(taken(), lines({"textColorChanged(#ff0000)", "textColorChanged(#ff0000)"}));
        model.setBackgroundColor(Qt::blue);
        QCOMPARE(model.backgroundColor(), QColor(Qt::blue));
        QCOMPARE(taken(),
                 lines({"backgroundColorChanged(#0000ff)", "backgroundColorChanged(#0000ff)"}));
        QVERIFY(!model.invalidColor().isValid());
        model.setAnalogVideo(true);
        QVERIFY(model.analogVideo() && manager.analogVideo());
        QCOMPARE(taken(), lines({"analogVideoChanged(true)"}));
        model.setKx70State(true);
        model.setKx70Row(20);
        model.setKx70Col(30);
        QVERIFY(model.kx70State() && manager.kx70iiState());
        QCOMPARE(model.kx70Row(), 20);
        QCOMPARE(manager.kx70iiRow(), 20);
        QCOMPARE(model.kx70Col(), 30);
        QCOMPARE(manager.kx70iiCol(), 30);
        QCOMPARE(taken(), lines({"kx70Changed", "kx70Changed", "kx70Changed"}));
    }

    void theFreeTextIsNullOnceItIsGone()
    {
        VideoOverlayElementListModel &model = m_overlay->model;
        QVERIFY(!model.freeText());
        CVideoOverlayText *text = addText(CVideoOverlayElement::FreeText);
        model.setFreeText(text);
        QCOMPARE(model.freeText(), text);
        QCOMPARE(QQmlEngine::objectOwnership(text), QQmlEngine::CppOwnership);
        QVERIFY(model.remove(0));
        QVERIFY(!model.freeText());
        model.setFreeText(nullptr);
    }

    void removing_data()
    {
        QTest::addColumn<ElementParam>("param");
        QTest::addColumn<bool>("removed");
        const QString key = QStringLiteral("canDelete");
        QTest::newRow("empty record") << ElementParam() << true;
        QTest::newRow("absent") << withValue(QStringLiteral("row"), 1) << true;
        QTest::newRow("false") << withValue(key, false) << true;
        QTest::newRow("true") << withValue(key, true) << false; // the other way round, and kept so
    }

    void removing()
    {
        QFETCH(ElementParam, param);
        QFETCH(bool, removed);
        VideoOverlayElementListModel &model = m_overlay->model;
        addText(CVideoOverlayElement::StaticText);
        const QPointer<CVideoOverlayText> text = addText(CVideoOverlayElement::StaticText, param);
        QSignalSpy about(&model, &QAbstractItemModel::rowsAboutToBeRemoved);
        QSignalSpy done(&model, &QAbstractItemModel::rowsRemoved);
        QCOMPARE(model.remove(1), removed);
        QCOMPARE(text.isNull(), removed);
        QCOMPARE(model.rowCount(), removed ? 1 : 2);
        QCOMPARE(about.count(), int(removed));
        QCOMPARE(done.count(), int(removed));
        if (removed) {
            QCOMPARE(done.first().at(1).toInt(), 1);
            QCOMPARE(done.first().at(2).toInt(), 1);
        }
        QVERIFY(!model.remove(-1));
        QVERIFY(!model.remove(2));
    }

    /// Only announced; more than that must not be called.
    void removingNoRows()
    {
        m_tester.reset(); // the announcement is one of no rows
        addText(CVideoOverlayElement::StaticText);
        SignalJournal journal(m_overlay->model, QAbstractItemModel::staticMetaObject);
        QVERIFY(m_overlay->model.removeRows(1, 0));
        QCOMPARE(m_overlay->model.rowCount(), 1);
        QCOMPARE(journal.take().size(), 2);
    }

    void staticText()
    {
        VideoOverlayElementListModel &model = m_overlay->model;
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
        m_overlay->manager.createImage();
        model.reset();
        const QVariant wrapped = model.createStaticText(QStringLiteral("hello"));
        QCOMPARE(wrapped.userType(), int(QMetaType::QObjectStar));
        auto *text = qobject_cast<CVideoOverlayText *>(wrapped.value<QObject *>());
        QVERIFY(text);
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(inserted.first().at(1).toInt(), 1);
        QCOMPARE(inserted.first().at(2).toInt(), 1);
        QCOMPARE(m_overlay->manager.getElement(1), text);
        QCOMPARE(text->type(), CVideoOverlayElement::StaticText);
        QCOMPARE(text->text(), QStringLiteral("hello"));
        QCOMPARE(text->row(), 0);
        QCOMPARE(text->column(), 0);
        QVERIFY(!text->enabled());
        ElementParam expected;
        expected.insert(QStringLiteral("type"), 0);
        expected.insert(QStringLiteral("row"), 0);
        expected.insert(QStringLiteral("col"), 0);
        expected.insert(QStringLiteral("text"), QStringLiteral("hello"));
        expected.insert(QStringLiteral("id"), text->id()); // the datasource's doing
        QCOMPARE(text->getParamObject(), expected);
        QCOMPARE(QQmlEngine::objectOwnership(text), QQmlEngine::CppOwnership);
    }

    void image()
    {
        const QString path = m_folders->settings() + QStringLiteral("/picture.png");
        QImage picture(40, 20, QImage::Format_RGB32);
        picture.fill(Qt::blue);
        QVERIFY(picture.save(path));
        VideoOverlayElementListModel &model = m_overlay->model;
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
        const QVariant wrapped = model.createImage(path);
        QCOMPARE(wrapped.typeName(), "Velmar::VideoOverlay::CVideoOverlayImage*");
        auto *image = wrapped.value<CVideoOverlayImage *>();
        QVERIFY(image);
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(image->type(), CVideoOverlayElement::FreePicture);
        QVERIFY(image->visible());
        QCOMPARE(image->width(), 40.0);
        ElementParam expected;
        expected.insert(QStringLiteral("type"), 2);
        expected.insert(QStringLiteral("row"), 0);
        expected.insert(QStringLiteral("col"), 0);
        expected.insert(QStringLiteral("imagePath"), path);
        expected.insert(QStringLiteral("enabled"), true);
        expected.insert(QStringLiteral("scale"), 1.0);
        expected.insert(QStringLiteral("id"), image->id());
        QCOMPARE(image->getParamObject(), expected);
        QCOMPARE(QQmlEngine::objectOwnership(image), QQmlEngine::CppOwnership);
    }

    /// Whoever follows the rows may delete the new one at once.
    void newElementsDeletedByAFollower()
    {
        VideoOverlayElementListModel &model = m_overlay->model;
        connect(&model, &QAbstractItemModel::rowsInserted, this,
                [&] { m_overlay->manager.removeElements(); });
        QVERIFY(!model.createStaticText(QStringLiteral("x")).value<QObject *>());
        QCOMPARE(model.rowCount(), 0);
    }

    void hidingWhatIsNotPermanent_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("timeout");
        QTest::addColumn<bool>("visible");
        QTest::newRow("static text") << 0 << 0 << true;
        QTest::newRow("static text with timeout") << 0 << 1 << false;
        QTest::newRow("negative timeout") << 0 << -1 << true;
        QTest::newRow("system text") << 1 << 0 << true;
        QTest::newRow("inspection text") << 3 << 0 << false;
        QTest::newRow("free text") << 4 << 0 << false;
        QTest::newRow("inspection static text") << 6 << 0 << true;
    }

    void hidingWhatIsNotPermanent()
    {
        QFETCH(int, type);
        QFETCH(int, timeout);
        QFETCH(bool, visible);
        CVideoOverlayText *text = addText(CVideoOverlayElement::Type(type));
        text->setTimeout(timeout);
        text->setVisible(true);
        QSignalSpy expired(text, &CVideoOverlayElement::timerExpired);
        takeLog();
        m_overlay->model.hideNotPermanentElements();
        QCOMPARE(text->visible(), visible);
        QCOMPARE(expired.count(), timeout >= 1 ? 1 : 0);
        QCOMPARE(takeLog(), QStringList {walkLine});
    }

    void showingAndHidingByTable_data()
    {
        QTest::addColumn<ElementParam>("param");
        QTest::addColumn<bool>("observation");
        QTest::addColumn<bool>("inspection");
        const QString key = QStringLiteral("TDIR_Key");
        QTest::newRow("observation") << withValue(key, QStringLiteral("SECOBS")) << true << false;
        QTest::newRow("section") << withValue(key, QStringLiteral("SECINSP")) << false << true;
        QTest::newRow("empty") << withValue(key, QString()) << false << true;
        QTest::newRow("absent") << ElementParam() << false << false;
    }

    void showingAndHidingByTable()
    {
        QFETCH(ElementParam, param);
        QFETCH(bool, observation);
        QFETCH(bool, inspection);
        VideoOverlayElementListModel &model = m_overlay->model;
        CVideoOverlayText *text = addText(CVideoOverlayElement::InspText, param);
        CVideoOverlayText *fixed = addText(CVideoOverlayElement::StaticText, param);
        model.hideStartUpInspElements();
        QVERIFY(!text->visible());
        QVERIFY(fixed->visible());
        model.showObservationElements();
        QCOMPARE(text->visible(), observation);
        text->setVisible(false);
        model.showSecInspElements();
        QCOMPARE(text->visible(), inspection);
    }

    /// Elements made meanwhile announce no rows until the reset is over.
    void resetting()
    {
        VideoOverlayElementListModel &model = m_overlay->model;
        QSignalSpy about(&model, &QAbstractItemModel::modelAboutToBeReset);
        QSignalSpy done(&model, &QAbstractItemModel::modelReset);
        model.beginReset();
        QCOMPARE(about.count(), 1);
        QCOMPARE(done.count(), 0);
        m_overlay->manager.createText();
        m_overlay->manager.createImage();
        model.endReset();
        QCOMPARE(done.count(), 1);
        QCOMPARE(model.rowCount(), 2);
        model.reset();
        QCOMPARE(about.count(), 2);
        QCOMPARE(done.count(), 2);
    }

    void removingAllThroughTheManager()
    {
        addText(CVideoOverlayElement::StaticText);
        addText(CVideoOverlayElement::StaticText, withValue(QStringLiteral("canDelete"), true));
        m_overlay->manager.removeElements();
        QCOMPARE(m_overlay->model.rowCount(), 0);
    }

    void fromQml()
    {
        QQmlEngine engine;
        VideoOverlayElementListModel &model = m_overlay->model;
        QQmlEngine::setObjectOwnership(&model, QQmlEngine::CppOwnership);
        QQmlEngine::setObjectOwnership(&m_overlay->manager, QQmlEngine::CppOwnership);
        engine.rootContext()->setContextProperty(QStringLiteral("model"), &model);
        engine.rootContext()->setContextProperty(QStringLiteral("manager"), &m_overlay->manager);
        const auto evaluate = [&](const char *script) {
            QQmlExpression expression(engine.rootContext(), nullptr, QString::fromLatin1(script));
            const QVariant result = expression.evaluate();
            if (expression.hasError())
                return QVariant(expression.error().toString());
            return result;
        };
        QCOMPARE(evaluate("model.transparency"), QVariant(44));
        evaluate("model.transparency = 3");
        QCOMPARE(m_overlay->manager.getGlobalTransparency(), 3);
        QCOMPARE(evaluate("model.freeText === null"), QVariant(true));
        QCOMPARE(evaluate("model.createStaticText('hello').text"),
                 QVariant(QStringLiteral("hello")));
        QCOMPARE(evaluate("manager.getElement(0).text"), QVariant(QStringLiteral("hello")));
        QCOMPARE(evaluate("manager.getElement(9) === null"), QVariant(true));
        evaluate("model.textColor = 'red'");
        QCOMPARE(model.textColor(), QColor(Qt::red));
        evaluate("model.setFreeText"); // not for QML
        model.setFreeText(qobject_cast<CVideoOverlayText *>(m_overlay->manager.getElement(0)));
        QCOMPARE(evaluate("model.freeText.text"), QVariant(QStringLiteral("hello")));
        for (const char *walk :
             {"model.hideNotPermanentElements()", "model.showObservationElements()",
              "model.showSecInspElements()", "model.hideStartUpInspElements()", "model.reset()",
              "model.beginReset()", "model.endReset()"})
            QVERIFY2(!evaluate(walk).isValid(), walk);
        takeLog();

        const QPointer<CVideoOverlayElement> element = m_overlay->manager.getElement(0);
        engine.collectGarbage();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(element);
        QCOMPARE(evaluate("model.remove(0)"), QVariant(true));
        QVERIFY(!element);
        QCOMPARE(evaluate("model.remove(0)"), QVariant(false));
    }
};

QTEST_MAIN(tst_VideoOverlayElementListModel)
#include "tst_VideoOverlayElementListModel.moc"
