// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/captions/TemplateCaptionResolver.h"

#include "host/platform/AppStateControl.h"
#include "host/platform/CatalogStore.h"
#include "platform/templates/CProgramView.h"
#include "platform/templates/CTemplateColumn.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"
#include "tests/support/SignalJournal.h"
#include "tests/support/VirtualSlot.h"
#include "videooverlay/elements/ElementParam.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <type_traits>

using namespace Velmar;
using namespace Velmar::VideoOverlay;
using CATManagement::CatalogStore;
using Templates::CCatalogTemplate;
using Test::methodsOf;
using Test::SignalJournal;
using Test::slotOf;
using TemplatePointer = QSharedPointer<CCatalogTemplate>;

static_assert(std::is_abstract_v<CaptionResolver>);
static_assert(std::is_base_of_v<QObject, CaptionResolver>);
static_assert(std::is_base_of_v<CaptionResolver, TemplateCaptionResolver>);

namespace {

const QString catalogId = QStringLiteral("C");

/// One column of each name in each table; the last view alone has the column "late".
const char catalog[] = R"({
  "uniqueId": "C", "name": "C", "languageCode": "ENG", "countryCode": "GB",
  "tables": [
    { "key": "SECTION", "columns": [
      { "key": "OBJ_Key", "caption": "Section", "type": "text", "osd": true },
      { "key": "hidden", "caption": "Hidden", "type": "text", "osd": true },
      { "key": "s_inspection", "caption": "From detail_s_inspection", "type": "text" },
      { "key": "s", "caption": "From detail_s", "type": "text" },
      { "key": "p", "caption": "From detail_p", "type": "text" },
      { "key": "so", "caption": "From grid_so", "type": "text" }
    ] },
    { "key": "NODE", "columns": [
      { "key": "OBJ_Key", "caption": "Node", "type": "text", "osd": true }
    ] }
  ],
  "lists": [],
  "programViews": [
    { "key": "grid_s", "columns": ["SECTION.hidden"] },
    { "key": "detail_s_inspection", "columns": ["SECTION.s_inspection"] },
    { "key": "detail_s", "columns": ["SECTION.s", "SECTION.OBJ_Key"] },
    { "key": "detail_p", "columns": ["SECTION.p"] },
    { "key": "grid_so", "columns": ["SECTION.so", "NODE.OBJ_Key"] }
  ]
})";

class Column : public Templates::CTemplateColumn
{
public:
    Column(const char *key, const char *table, const char *caption)
        : m_key(QString::fromLatin1(key))
        , m_table(QString::fromLatin1(table))
        , m_caption(QString::fromLatin1(caption))
    {
    }
    QString key() const override { return m_key; }
    QString tableKey() const override { return m_table; }
    QString caption() const override { return m_caption; }
    Type type() const override { return Type::Text; }
    bool isOsd() const override { return true; }

private:
    QString m_key, m_table, m_caption;
};

class View : public Templates::CProgramView
{
public:
    QString key() const override { return QStringLiteral("detail_s"); }
    int columnCount() const override { return columns.size(); }
    const Templates::CTemplateColumn *column(int index) const override { return columns.at(index); }
    QVector<const Templates::CTemplateColumn *> columns;
};

/// What no catalog file holds: views that are null.
class PatchyTemplate : public CCatalogTemplate
{
public:
    int programViewCount() const override { return views.size(); }
    const Templates::CProgramView *programView(int index) const override { return views.at(index); }
    const QVector<Templates::CListItem> *
    itemList(const Templates::CTemplateColumn &column) const override
    {
        Q_UNUSED(column)
        return nullptr;
    }
    QVector<const Templates::CProgramView *> views;
};

ElementParam boundTo(const QVariant &column, const QVariant &table)
{
    ElementParam param;
    param.insert(QStringLiteral("columnBound"), column);
    param.insert(QStringLiteral("TDIR_Key"), table);
    return param;
}

QString cannotFind(const char *what)
{
    return QStringLiteral("2 VideoOverlayLibrary: Cannot find caption for ")
        + QString::fromLatin1(what);
}

} // namespace

class tst_TemplateCaptionResolver : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_directory.isValid());
        QFile file(m_directory.filePath(QStringLiteral("c.json")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(catalog);
    }

    void cleanupTestCase() { CatalogStore::instance().setDirectory(QString()); }

    void theMetaObjectsNameTheIdentifierType()
    {
        QCOMPARE(methodsOf(CaptionResolver::staticMetaObject),
                 (QStringList {
                     QStringLiteral("signal resolverReady()"),
                     QStringLiteral("slot setTemplate(Velmar::Base::GUID,"
                                    "QSharedPointer<Velmar::Templates::CCatalogTemplate>)"),
                 }));
        QCOMPARE(methodsOf(TemplateCaptionResolver::staticMetaObject),
                 (QStringList {
                     QStringLiteral("signal resolverReady()"),
                     QStringLiteral("signal templateReady()"),
                     QStringLiteral("slot setTemplate(Velmar::Base::GUID,"
                                    "QSharedPointer<Velmar::Templates::CCatalogTemplate>)"),
                     QStringLiteral("slot templateLoadCompleted(Velmar::Base::GUID)"),
                 }));
    }

    void virtualOperationsStandInOrder()
    {
        QCOMPARE(slotOf(&CaptionResolver::getCaption), Test::qObjectSlots);
        QCOMPARE(slotOf(&CaptionResolver::setTemplate), Test::qObjectSlots + 1);
        QCOMPARE(slotOf(&TemplateCaptionResolver::getCaption), Test::qObjectSlots);
    }

    void canBeInvokedByName_data()
    {
        QTest::addColumn<Qt::ConnectionType>("connection");
        QTest::newRow("direct") << Qt::DirectConnection;
        QTest::newRow("queued") << Qt::QueuedConnection;
    }

    void canBeInvokedByName()
    {
        QFETCH(Qt::ConnectionType, connection);
        TemplateCaptionResolver resolver(loadedStore());
        const TemplatePointer loaded = CatalogStore::instance().getTemplateFromCache(catalogId);

        QVERIFY(QMetaObject::invokeMethod(
            &resolver, "setTemplate", connection, Q_ARG(Velmar::Base::GUID, catalogId),
            Q_ARG(QSharedPointer<Velmar::Templates::CCatalogTemplate>, loaded)));
        QCoreApplication::sendPostedEvents(&resolver);
        QCOMPARE(resolver.catalogTemplate(), loaded);

        // By its other name, too.
        QVERIFY(QMetaObject::invokeMethod(
            &resolver, "setTemplate", connection, Q_ARG(QString, catalogId),
            Q_ARG(QSharedPointer<Velmar::Templates::CCatalogTemplate>, TemplatePointer())));
        QCoreApplication::sendPostedEvents(&resolver);
        QVERIFY(!resolver.catalogTemplate());
    }

    void isEmptyAtFirst()
    {
        TemplateCaptionResolver resolver(loadedStore());
        QVERIFY(!resolver.catalogTemplate());
        QVERIFY(!resolver.getColumn(QStringLiteral("OBJ_Key"), QStringLiteral("SECTION")));
        QCOMPARE(takeLog(), QStringList {cannotFind("OBJ_Key in SECTION")});
    }

    void announcesATemplateBeforeItsCaptions()
    {
        TemplateCaptionResolver resolver(loadedStore());
        QStringList order;
        connect(&resolver, &TemplateCaptionResolver::templateReady, this, [&] {
            QVERIFY(resolver.catalogTemplate());
            order.append(QStringLiteral("templateReady"));
        });
        connect(&resolver, &TemplateCaptionResolver::resolverReady, this,
                [&] { order.append(QStringLiteral("resolverReady")); });
        connect(&resolver, &CaptionResolver::resolverReady, this,
                [&] { order.append(QStringLiteral("the base's resolverReady")); });

        AppStateControl::announceTemplate(catalogId);

        QCOMPARE(order.size(), 3); // the two that are one step may come in either order
        QCOMPARE(order.takeFirst(), QStringLiteral("templateReady"));
        QVERIFY(order.contains(QStringLiteral("resolverReady")));
        QVERIFY(order.contains(QStringLiteral("the base's resolverReady")));
        QCOMPARE(resolver.catalogTemplate(),
                 CatalogStore::instance().getTemplateFromCache(catalogId));
    }

    void everyAnnouncementCounts()
    {
        TemplateCaptionResolver resolver(loadedStore());
        QSignalSpy templates(&resolver, &TemplateCaptionResolver::templateReady);
        QSignalSpy captions(&resolver, &TemplateCaptionResolver::resolverReady);
        QSignalSpy ofBase(&resolver, &CaptionResolver::resolverReady);
        AppStateControl::announceTemplate(catalogId);
        AppStateControl::announceTemplate(catalogId); // the same again
        QCOMPARE(templates.count(), 2);
        QCOMPARE(captions.count(), 2);
        QCOMPARE(ofBase.count(), 2);
    }

    void anUnknownTemplateChangesNothing_data()
    {
        QTest::addColumn<QString>("id");
        QTest::newRow("empty") << QStringLiteral("");
        QTest::newRow("null") << QString();
        QTest::newRow("not in the cache") << QStringLiteral("X");
    }

    void anUnknownTemplateChangesNothing()
    {
        QFETCH(QString, id);
        TemplateCaptionResolver resolver(loadedStore());
        AppStateControl::announceTemplate(catalogId);
        const TemplatePointer before = resolver.catalogTemplate();
        SignalJournal journal(resolver, TemplateCaptionResolver::staticMetaObject);

        AppStateControl::announceTemplate(id);

        QCOMPARE(journal.take(), QStringList());
        QCOMPARE(resolver.catalogTemplate(), before);
    }

    void releasesTheTemplateItReplaces()
    {
        TemplateCaptionResolver resolver(loadedStore());
        TemplatePointer first(new PatchyTemplate);
        const QWeakPointer<CCatalogTemplate> watch(first);
        resolver.setTemplate(catalogId, first);
        first.clear();
        QVERIFY(watch);
        resolver.setTemplate(catalogId, {});
        QVERIFY(!watch);
        QVERIFY(!resolver.catalogTemplate());
        QSignalSpy captions(&resolver, &TemplateCaptionResolver::resolverReady);
        resolver.setTemplate(QString(), {});
        QCOMPARE(captions.count(), 1);
    }

    void findsCaptions_data()
    {
        QTest::addColumn<QVariant>("column");
        QTest::addColumn<QVariant>("table");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("complaint"); // empty: found

        const auto row = [](const char *name, const char *column, const char *table,
                            const char *caption, const char *complaint) {
            QTest::newRow(name) << QVariant(QString::fromLatin1(column))
                                << QVariant(QString::fromLatin1(table))
                                << QString::fromLatin1(caption) << QString::fromLatin1(complaint);
        };
        row("view detail_s_inspection", "s_inspection", "SECTION", "From detail_s_inspection", "");
        row("view detail_s", "s", "SECTION", "From detail_s", "");
        row("view detail_p", "p", "SECTION", "From detail_p", "");
        row("view grid_so", "so", "SECTION", "From grid_so", "");
        row("one name, first table", "OBJ_Key", "SECTION", "Section", "");
        row("one name, second table", "OBJ_Key", "NODE", "Node", "");
        row("view not allowed", "hidden", "SECTION", "", "hidden in SECTION");
        row("unknown column", "x", "SECTION", "", "x in SECTION");
        row("other table", "p", "NODE", "", "p in NODE");
        row("no table", "p", "", "", "p in ");
        row("case of the column", "obj_key", "NODE", "", "obj_key in NODE");
        row("case of the table", "OBJ_Key", "node", "", "OBJ_Key in node");
        row("part of the name", "OBJ", "NODE", "", "OBJ in NODE");
        row("names swapped", "NODE", "OBJ_Key", "", "NODE in OBJ_Key");
        row("no column", "", "NODE", "", "empty columnBound");
        QTest::newRow("nothing") << QVariant() << QVariant() << QString()
                                 << QStringLiteral("empty columnBound");
        QTest::newRow("no strings")
            << QVariant(1) << QVariant(2) << QString() << QStringLiteral("1 in 2");
    }

    void findsCaptions()
    {
        QFETCH(QVariant, column);
        QFETCH(QVariant, table);
        QFETCH(QString, caption);
        QFETCH(QString, complaint);
        TemplateCaptionResolver resolver(loadedStore());
        AppStateControl::announceTemplate(catalogId);
        ElementParam param = boundTo(column, table);

        QCOMPARE(resolver.getCaption(param), caption);

        const QStringList lines = complaint.isEmpty()
            ? QStringList()
            : QStringList {cannotFind(complaint.toLatin1().constData())};
        QCOMPARE(takeLog(), lines);
        QCOMPARE(param, boundTo(column, table));
        QCOMPARE(resolver.getColumn(column.toString(), table.toString()) != nullptr,
                 complaint.isEmpty());
        QCOMPARE(takeLog(), lines);
        QVERIFY(resolver.catalogTemplate());
    }

    void takesTheFirstOfEqualColumnsAndSkipsNullViews()
    {
        const Column first("k", "T", "first");
        const Column second("k", "T", "second");
        View one;
        one.columns = {nullptr, &first, &second};
        View two;
        two.columns = {&second};
        auto *const patchy = new PatchyTemplate;
        patchy->views = {nullptr, &one, &two};
        const TemplatePointer held(patchy);
        TemplateCaptionResolver resolver(loadedStore());
        resolver.setTemplate(QStringLiteral("p"), held);

        QCOMPARE(resolver.getColumn(QStringLiteral("k"), QStringLiteral("T")), &first);
        patchy->views = {nullptr, &two, &one};
        QCOMPARE(resolver.getColumn(QStringLiteral("k"), QStringLiteral("T")), &second);
        patchy->views = {nullptr};
        QVERIFY(!resolver.getColumn(QStringLiteral("k"), QStringLiteral("T")));
        QCOMPARE(takeLog(), QStringList {cannotFind("k in T")});
    }

private:
    CatalogStore &loadedStore()
    {
        CatalogStore &store = CatalogStore::instance();
        store.setDirectory(m_directory.path());
        if (!store.loadTemplate(catalogId))
            qFatal("%s", qPrintable(takeLog().join(QLatin1Char('\n'))));
        takeLog();
        return store;
    }

    QTemporaryDir m_directory;
};

QTEST_GUILESS_MAIN(tst_TemplateCaptionResolver)
#include "tst_TemplateCaptionResolver.moc"
