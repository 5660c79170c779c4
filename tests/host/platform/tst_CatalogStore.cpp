// SPDX-License-Identifier: Apache-2.0
#include "host/platform/CatalogStore.h"

#include "host/platform/Directories.h"
#include "platform/applogic/CoreApplication.h"
#include "platform/appstate/AppState.h"
#include "platform/catmanagement/CCatalogDescriptor.h"
#include "platform/templates/CCatalogTemplate.h"
#include "platform/templates/CProgramView.h"
#include "platform/templates/CTemplateColumn.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/TextFile.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <memory>

using namespace Velmar;
using CATManagement::CatalogStore;
using CATManagement::CCatalogDescriptor;
using Templates::CCatalogTemplate;
using Templates::CListItem;
using Templates::CProgramView;
using Templates::CTemplateColumn;
using Test::writeFile;
using TemplatePointer = QSharedPointer<CCatalogTemplate>;

namespace {

const QString idA = QStringLiteral("A");
const QString idB = QStringLiteral("B");

/// A sound catalog; the line numbers count from 1.
QByteArray catalog(const QByteArray &id = "A")
{
    return "{\n"
           "  \"uniqueId\": \""
        + id
        + "\",\n"
          "  \"name\": \"Catalogue\",\n"
          "  \"languageCode\": \"FRE\",\n"
          "  \"countryCode\": \"CH\",\n"
          "  \"tables\": [\n"
          "    { \"key\": \"T\", \"columns\": [\n"
          "      { \"key\": \"a\", \"caption\": \"\xC3\x84\", \"type\": \"text\", \"osd\": true "
          "},\n"
          "      { \"key\": \"b\", \"caption\": \"{\\\"}\", \"type\": \"list\", \"list\": \"L\" }\n"
          "    ] },\n"
          "    { \"key\": \"U\", \"columns\": [\n"
          "      { \"key\": \"a\", \"caption\": \"n\", \"type\": \"number\", \"osd\": false },\n"
          "      { \"key\": \"d\", \"caption\": \"d\", \"type\": \"date\" },\n"
          "      { \"key\": \"t\", \"caption\": \"t\", \"type\": \"time\" }\n"
          "    ] }\n"
          "  ],\n"
          "  \"lists\": [\n"
          "    { \"name\": \"L\", \"items\": [\n"
          "      { \"internalValue\": \"03\", \"caption\": \"three\" },\n"
          "      { \"internalValue\": \"3\", \"caption\": \"trois\" }\n"
          "    ] }\n"
          "  ],\n"
          "  \"programViews\": [\n"
          "    { \"key\": \"V\", \"columns\": [\"U.a\", \"T.b\", \"T.a\"] },\n"
          "    { \"key\": \"W\", \"columns\": [\"T.a\"] },\n"
          "    { \"key\": \"X\", \"columns\": [] }\n"
          "  ]\n"
          "}\n";
}

QByteArray changed(const QByteArray &from, const QByteArray &to)
{
    QByteArray content = catalog();
    const int at = content.indexOf(from);
    if (at < 0)
        qFatal("no %s in the catalog", from.constData());
    return content.replace(at, from.size(), to);
}

QString columnName(const CTemplateColumn &column)
{
    return column.tableKey() + QLatin1Char('.') + column.key();
}

/// The columns of all views, by name.
QMap<QString, const CTemplateColumn *> columnsOf(const CCatalogTemplate &from)
{
    QMap<QString, const CTemplateColumn *> columns;
    for (int i = 0; i < from.programViewCount(); ++i) {
        const CProgramView *view = from.programView(i);
        for (int j = 0; j < view->columnCount(); ++j)
            columns.insert(columnName(*view->column(j)), view->column(j));
    }
    return columns;
}

QStringList valuesOf(const QVector<CListItem> &items)
{
    QStringList values;
    for (const CListItem &item : items)
        values.append(item.internalValue());
    return values;
}

/// What must be the same in every language, one line per thing.
QStringList outline(const CCatalogTemplate &of)
{
    QStringList lines;
    for (int i = 0; i < of.programViewCount(); ++i) {
        const CProgramView *view = of.programView(i);
        lines.append(view->key());
        for (int j = 0; j < view->columnCount(); ++j) {
            const CTemplateColumn &column = *view->column(j);
            lines.append(QStringLiteral("%1 %2 %3")
                             .arg(columnName(column), QString::number(int(column.type())),
                                  QString::number(int(column.isOsd()))));
            if (const auto *items = of.itemList(column)) {
                for (const CListItem &item : *items)
                    lines.append(item.internalValue());
            }
        }
    }
    return lines;
}

/// The captions in one order, of columns and of list items.
QStringList captions(const CCatalogTemplate &of)
{
    QStringList texts;
    for (const CTemplateColumn *column : columnsOf(of)) {
        texts.append(column->caption());
        if (const auto *items = of.itemList(*column)) {
            for (const CListItem &item : *items)
                texts.append(item.caption());
        }
    }
    return texts;
}

} // namespace

class tst_CatalogStore : public Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override
    {
        m_directory = std::make_unique<QTemporaryDir>();
        writeFile(path("a.json"), catalog());
        writeFile(path("b.json"), catalog(idB.toUtf8()));
        store().setDirectory(m_directory->path());
    }

    static CatalogStore &store() { return CatalogStore::instance(); }

    QString path(const char *name) const
    {
        return m_directory->filePath(QString::fromLatin1(name));
    }

    TemplatePointer loaded(const QString &id = idA)
    {
        return store().loadTemplate(id) ? store().getTemplateFromCache(id) : TemplatePointer();
    }

    static TemplatePointer shipped(const QString &id)
    {
        store().setDirectory(QFINDTESTDATA("../../../data/catalogs"));
        return store().loadTemplate(id) ? store().getTemplateFromCache(id) : TemplatePointer();
    }

    std::unique_ptr<QTemporaryDir> m_directory;

private Q_SLOTS:
    void registry()
    {
        const auto *core = AppLogic::CoreApplication::instance();
        QCOMPARE(core, AppLogic::CoreApplication::instance());
        QCOMPARE(core->catalogTemplateRegistry(),
                 static_cast<CATManagement::CCatalogTemplateRegistry *>(&store()));
        const CCatalogDescriptor *descriptor
            = core->catalogTemplateRegistry()->catalogByUniqueId(idA);
        QVERIFY(descriptor);
        QCOMPARE(descriptor->uniqueId(), idA);
        QCOMPARE(descriptor->languageCode(), QStringLiteral("FRE")); // as it stands in the file
        QCOMPARE(descriptor->countryCode(), QStringLiteral("CH"));
        QCOMPARE(store().catalogIds(), QStringList({idA, idB}));
        QCOMPARE(store().catalogName(idA), QStringLiteral("Catalogue"));
        QCOMPARE(store().catalogName(QStringLiteral("C")), QString());
        QVERIFY(!store().catalogByUniqueId(QStringLiteral("C")));
        QVERIFY(!store().catalogByUniqueId(QString()));
    }

    void listingLoadsNothing()
    {
        QSignalSpy completed(AppState::instance(), &AppState::templateLoadCompleted);
        QVERIFY(store().catalogByUniqueId(idA));
        QVERIFY(store().getTemplateFromCache(idA).isNull());
        QCOMPARE(completed.count(), 0);
    }

    void load()
    {
        TemplatePointer whenAnnounced;
        QSignalSpy completed(AppState::instance(), &AppState::templateLoadCompleted);
        QObject receiver;
        connect(AppState::instance(), &AppState::templateLoadCompleted, &receiver,
                [&](const QString &id) { whenAnnounced = store().getTemplateFromCache(id); });
        QVERIFY(store().loadTemplate(idA));
        QCOMPARE(completed.count(), 1);
        QCOMPARE(completed.at(0).at(0).toString(), idA);
        QVERIFY(whenAnnounced);
        QCOMPARE(whenAnnounced, store().getTemplateFromCache(idA));
        QVERIFY(store().getTemplateFromCache(idB).isNull());

        const TemplatePointer first = whenAnnounced;
        QVERIFY(store().loadTemplate(idA)); // a project switch needs it again
        QCOMPARE(completed.count(), 2);
        QCOMPARE(whenAnnounced, first);
    }

    void loadUnknown()
    {
        QSignalSpy completed(AppState::instance(), &AppState::templateLoadCompleted);
        QVERIFY(!store().loadTemplate(QStringLiteral("C")));
        QCOMPARE(completed.count(), 0);
        QCOMPARE(takeLog(),
                 QStringList {QStringLiteral(
                     "2 Platform: Cannot read catalog \"C\": no such catalog is installed")});
    }

    void views()
    {
        const TemplatePointer read = loaded();
        QVERIFY(read);
        QCOMPARE(read->programViewCount(), 3);
        QCOMPARE(read->programView(0)->key(), QStringLiteral("V"));
        QCOMPARE(read->programView(1)->key(), QStringLiteral("W"));
        QCOMPARE(read->programView(2)->columnCount(), 0);
        QVERIFY(!read->programView(-1));
        QVERIFY(!read->programView(3));

        const CProgramView *view = read->programView(0);
        QCOMPARE(view->columnCount(), 3);
        QCOMPARE(columnName(*view->column(0)), QStringLiteral("U.a"));
        QCOMPARE(columnName(*view->column(1)), QStringLiteral("T.b"));
        QCOMPARE(columnName(*view->column(2)), QStringLiteral("T.a"));
        QVERIFY(!view->column(-1));
        QVERIFY(!view->column(3));
        QCOMPARE(read->programView(1)->column(0), view->column(2)); // one column, two views
    }

    void columns_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("osd");
        QTest::newRow("text") << 2 << QStringLiteral("\u00C4") << int(CTemplateColumn::Type::Text)
                              << true;
        QTest::newRow("list, osd absent")
            << 1 << QStringLiteral("{\"}") << int(CTemplateColumn::Type::List) << false;
        QTest::newRow("number, osd false")
            << 0 << QStringLiteral("n") << int(CTemplateColumn::Type::Number) << false;
    }

    void columns()
    {
        QFETCH(int, index);
        const TemplatePointer read = loaded();
        QVERIFY(read);
        const CTemplateColumn *column = read->programView(0)->column(index);
        QVERIFY(column);
        QTEST(column->caption(), "caption");
        QTEST(int(column->type()), "type");
        QTEST(column->isOsd(), "osd");
    }

    void dateAndTimeColumns()
    {
        writeFile(path("a.json"), changed("[\"T.a\"]", "[\"U.d\", \"U.t\"]"));
        const TemplatePointer read = loaded();
        QVERIFY(read);
        QCOMPARE(read->programView(1)->column(0)->type(), CTemplateColumn::Type::Date);
        QCOMPARE(read->programView(1)->column(1)->type(), CTemplateColumn::Type::Time);
    }

    void itemList()
    {
        const TemplatePointer read = loaded();
        QVERIFY(read);
        const CProgramView *view = read->programView(0);
        const QVector<CListItem> *items = read->itemList(*view->column(1));
        QVERIFY(items);
        QCOMPARE(items->size(), 2);
        QCOMPARE(items->at(0).internalValue(), QStringLiteral("03"));
        QCOMPARE(items->at(0).caption(), QStringLiteral("three"));
        QCOMPARE(items->at(1).internalValue(), QStringLiteral("3"));
        QVERIFY(!read->itemList(*view->column(0)));
        QVERIFY(!read->itemList(*view->column(2)));
    }

    void choices()
    {
        writeFile(path("a.json"), changed("\"trois\"", "\"trois\", \"table\": \"U\""));
        store().setDirectory(m_directory->path());
        const auto of = [](const char *column, const char *table) {
            return valuesOf(store().choices(idA, QStringLiteral("T"), QString::fromLatin1(column),
                                            QString::fromLatin1(table)));
        };
        QCOMPARE(of("b", "U"), QStringList()); // not loaded yet
        const TemplatePointer read = loaded();
        QVERIFY(read);
        QCOMPARE(of("b", "U"), QStringList({QStringLiteral("03"), QStringLiteral("3")}));
        QCOMPARE(of("b", "T"), QStringList(QStringLiteral("03")));
        QCOMPARE(of("b", ""), QStringList(QStringLiteral("03")));
        QCOMPARE(of("a", "U"), QStringList()); // no list
        QCOMPARE(of("x", "U"), QStringList()); // no column
        // Whatever may be chosen, a record that has the value shows its caption.
        QCOMPARE(read->itemList(*columnsOf(*read).value(QStringLiteral("T.b")))->size(), 2);
    }

    void columnOfAnEarlierReadingFindsItsList()
    {
        const TemplatePointer first = loaded();
        store().setDirectory(m_directory->path());
        const TemplatePointer second = loaded();
        QVERIFY(first && second);
        const auto *items = second->itemList(*first->programView(0)->column(1));
        QVERIFY(items);
        QCOMPARE(items->size(), 2);
    }

    void templateOutlivesANewReading()
    {
        const TemplatePointer held = loaded();
        QVERIFY(held);
        const CTemplateColumn *column = held->programView(0)->column(1);
        writeFile(path("a.json"), changed("{\\\"}", "new"));
        store().setDirectory(m_directory->path());
        QVERIFY(store().getTemplateFromCache(idA).isNull());
        QCOMPARE(column->caption(), QStringLiteral("{\"}"));
        QCOMPARE(held->itemList(*column)->at(0).caption(), QStringLiteral("three"));
        const TemplatePointer again = loaded();
        QVERIFY(again);
        QVERIFY(again != held);
        QCOMPARE(again->programView(0)->column(1)->caption(), QStringLiteral("new"));

        const QWeakPointer<CCatalogTemplate> watched = again;
        const QTemporaryDir empty;
        store().setDirectory(empty.path());
        QCOMPARE(store().catalogIds(), QStringList());
        QVERIFY(!watched.isNull()); // still held here
    }

    void newReadingReleasesTheCache()
    {
        const QWeakPointer<CCatalogTemplate> watched = loaded();
        QVERIFY(!watched.isNull());
        store().setDirectory(m_directory->path());
        QVERIFY(watched.isNull());
    }

    void installedDirectory()
    {
        const QTemporaryDir installed;
        QVERIFY(QDir(installed.path()).mkdir(QStringLiteral("catalogs")));
        writeFile(installed.filePath(QStringLiteral("catalogs/x.json")), catalog("X"));
        Directories::setReadonlyConfigDirectory(installed.path());
        store().setDirectory(QString());
        QCOMPARE(store().catalogIds(), QStringList {QStringLiteral("X")});
        Directories::setReadonlyConfigDirectory(QString());
    }

    void otherFilesAreNoCatalogs()
    {
        writeFile(path("README.md"), "# Not a catalog\n");
        QVERIFY(QDir(m_directory->path()).mkdir(QStringLiteral("folder.json")));
        store().setDirectory(m_directory->path());
        QCOMPARE(store().catalogIds(), QStringList({idA, idB}));
    }

    void unknownMembersAreIgnored()
    {
        writeFile(path("a.json"),
                  changed("\"osd\": true", "\"osd\": true, \"width\": [1, {}], \"unit\": null")
                      .replace("  \"tables\"", "  \"version\": 2,\n  \"tables\""));
        store().setDirectory(m_directory->path());
        QVERIFY(loaded());
    }

    void byteOrderMarkAndLineEnds()
    {
        writeFile(path("a.json"), "\xEF\xBB\xBF" + catalog().replace("\n", "\r\n"));
        store().setDirectory(m_directory->path());
        QVERIFY(loaded());
    }

    void brokenHead_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QStringList>("problems"); // behind the path
        const auto row = [](const char *name, const QByteArray &content, const char *problem) {
            QTest::newRow(name) << content << QStringList {QString::fromUtf8(problem)};
        };
        row("empty file", "", ":1:1: illegal value");
        row("an array", "[]", ":1:1: a catalog is an object");
        // Qt's parser stops behind the character that it did not expect.
        row("missing comma", changed("\"FRE\",", "\"FRE\""), ":5:4: unterminated object");
        row("comma too many", changed("\"W\", ", "\"W\", , "), ":25:20: unterminated object");
        row("no end", catalog().chopped(3), ":27:4: unterminated object");
        row("more behind the end", catalog() + "  x", ":29:3: garbage at the end of the document");
        row("no id", changed("\"uniqueId\"", "\"id\""), ":1:1: \"uniqueId\" is missing");
        row("empty id", changed("\"A\"", "\"\""), ":2:15: \"uniqueId\" is empty");
        row("a number", changed("\"Catalogue\"", "5"), ":3:11: \"name\" is not a text");
        row("language of two letters", changed("FRE", "FR"),
            ":4:19: \"languageCode\" is not made of 3 letters from A to Z");
        row("language in lower case", changed("FRE", "fre"),
            ":4:19: \"languageCode\" is not made of 3 letters from A to Z");
        row("country of three letters", changed("CH", "CHE"),
            ":5:18: \"countryCode\" is not made of 2 letters from A to Z");
        row("line end in a country", changed("CH", "CH\\n"),
            ":5:18: \"countryCode\" is not made of 2 letters from A to Z");
        row("twice, the last counts",
            changed("  \"name\"", "  \"uniqueId\": 7,\n\"n\\u0061me\": 1, \"name\""),
            ":3:15: \"uniqueId\" is not a text");
        QTest::newRow("several") << changed("\"A\"", "null").replace("FRE", "")
                                 << QStringList {
                                        QStringLiteral(":2:15: \"uniqueId\" is not a text"),
                                        QStringLiteral(":4:19: \"languageCode\" is empty")};
        row("escaped member name", changed("\"name\": \"Catalogue\"", "\"n\\u0061me\": 1"),
            ":3:16: \"name\" is not a text");
        row("byte order mark and line ends",
            "\xEF\xBB\xBF" + changed("\"FRE\"", "1").replace("\n", "\r\n"),
            ":4:19: \"languageCode\" is not a text");
        row("byte order mark on the line",
            "\xEF\xBB\xBF{\"uniqueId\": 1," + catalog().mid(catalog().indexOf("  \"name\"")),
            ":1:14: \"uniqueId\" is not a text");
    }

    void brokenHead()
    {
        QFETCH(QByteArray, content);
        QFETCH(QStringList, problems);
        writeFile(path("a.json"), content);
        store().setDirectory(m_directory->path());
        QStringList expected;
        for (const QString &problem : problems)
            expected.append(QStringLiteral("2 Platform: Cannot read catalog ") + path("a.json")
                            + problem);
        QCOMPARE(takeLog(), expected);
        QCOMPARE(store().catalogIds(), QStringList {idB}); // the other one is not affected
        QVERIFY(loaded(idB));
    }

    void brokenTemplate_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QStringList>("problems"); // behind the path
        const auto row = [](const char *name, const QByteArray &content, const char *problem) {
            QTest::newRow(name) << content << QStringList {QString::fromUtf8(problem)};
        };
        row("no views", changed("programViews", "views"), ":1:1: \"programViews\" is missing");
        row("a text for an array", changed("[]", "\"T.a\""), ":26:30: \"columns\" is not an array");
        row("a text for a column",
            changed("{ \"key\": \"d\", \"caption\": \"d\", \"type\": \"date\" }", "\"d\""),
            ":13:7: an entry of \"columns\" is not an object");
        row("column without key", changed("\"key\": \"t\", ", ""), ":14:7: \"key\" is missing");
        row("column without caption", changed("\"caption\": \"t\", ", ""),
            ":14:7: \"caption\" is missing");
        row("empty caption, behind a letter of two bytes",
            changed("\"type\": \"text\"", "\"caption\": \"\", \"type\": \"text\""),
            ":8:48: \"caption\" is empty");
        row("column without type", changed(", \"type\": \"date\"", ""),
            ":13:7: \"type\" is missing");
        row("unknown type", changed("\"date\"", "\"Date\""), ":13:45: unknown type \"Date\"");
        row("osd as a number", changed("true", "1"), ":8:60: \"osd\" is neither true nor false");
        row("column twice", changed("\"key\": \"t\"", "\"key\": \"d\""),
            ":14:16: \"key\" \"d\" occurs twice");
        QTest::newRow("table twice, which leaves a view without its column")
            << changed("\"key\": \"U\"", "\"key\": \"T\"")
            << QStringList {QStringLiteral(":11:14: \"key\" \"T\" occurs twice"),
                            QStringLiteral(":24:31: unknown column \"U.a\"")};
        row("list column without list", changed(", \"list\": \"L\"", ""),
            ":9:7: \"list\" is missing");
        row("unknown list", changed("\"list\": \"L\"", "\"list\": \"l\""),
            ":9:64: unknown list \"l\"");
        row("list of a text", changed("\"text\"", "\"text\", \"list\": \"L\""),
            ":8:61: only a column of type \"list\" has a list");
        row("list twice",
            changed("\"lists\": [", "\"lists\": [ { \"name\": \"L\", \"items\": [] },"),
            ":18:15: \"name\" \"L\" occurs twice");
        row("list without items", changed("\"items\"", "\"entries\""),
            ":18:5: \"items\" is missing");
        row("value that is a number", changed("\"03\"", "3"),
            ":19:26: \"internalValue\" is not a text");
        row("value twice", changed("\"3\"", "\"03\""),
            ":20:26: \"internalValue\" \"03\" occurs twice");
        row("item without caption", changed(", \"caption\": \"trois\"", ""),
            ":20:7: \"caption\" is missing");
        row("item for an unknown table", changed("\"trois\"", "\"trois\", \"table\": \"Z\""),
            ":20:60: unknown table \"Z\"");
        row("item for a number", changed("\"trois\"", "\"trois\", \"table\": 1"),
            ":20:60: \"table\" is not a text");
        row("view twice", changed("\"W\"", "\"V\""), ":25:14: \"key\" \"V\" occurs twice");
        row("view of an unknown column", changed("\"T.b\", ", "\"T.x\", "),
            ":24:38: unknown column \"T.x\"");
        row("view of a column without table", changed("\"T.b\", ", "\"b\", "),
            ":24:38: unknown column \"b\"");
        row("view of a number", changed("\"T.b\", ", "7, "),
            ":24:38: an entry of \"columns\" is not a text");
        row("column twice in a view", changed("\"T.b\", ", "\"U.a\", "),
            ":24:38: column \"U.a\" occurs twice");
        QTest::newRow("all at once")
            << changed("\"3\"", "\"03\"").replace("\"date\"", "\"day\"").replace("T.b\"", "T.c\"")
            << QStringList {QStringLiteral(":20:26: \"internalValue\" \"03\" occurs twice"),
                            QStringLiteral(":13:45: unknown type \"day\""),
                            QStringLiteral(":24:38: unknown column \"T.c\"")};
    }

    void brokenTemplate()
    {
        QFETCH(QByteArray, content);
        QFETCH(QStringList, problems);
        writeFile(path("a.json"), content);
        store().setDirectory(m_directory->path());
        QCOMPARE(takeLog(), QStringList()); // its head is sound
        QCOMPARE(store().catalogIds(), QStringList({idA, idB}));

        QSignalSpy completed(AppState::instance(), &AppState::templateLoadCompleted);
        QVERIFY(!store().loadTemplate(idA));
        QStringList expected;
        for (const QString &problem : problems)
            expected.append(QStringLiteral("2 Platform: Cannot read catalog ") + path("a.json")
                            + problem);
        QCOMPARE(takeLog(), expected);
        QCOMPARE(completed.count(), 0);
        QVERIFY(store().getTemplateFromCache(idA).isNull());
        QVERIFY(loaded(idB)); // the other one is not affected

        writeFile(path("a.json"), catalog());
        QVERIFY(store().loadTemplate(idA)); // as soon as it is repaired
    }

    void manyProblems()
    {
        QByteArray columns;
        for (int i = 0; i < 5000; ++i)
            columns += "\"T.x\",";
        writeFile(path("a.json"), changed("\"T.b\", ", columns));
        store().setDirectory(m_directory->path());
        QVERIFY(!store().loadTemplate(idA));
        const QStringList lines = takeLog();
        QCOMPARE(lines.size(), 21);
        QVERIFY(lines.at(19).endsWith(QStringLiteral(":24:152: unknown column \"T.x\"")));
        QCOMPARE(lines.at(20),
                 QStringLiteral("2 Platform: Cannot read catalog %1: more problems are not listed")
                     .arg(path("a.json")));
    }

    void damagedAnywhere_data()
    {
        QTest::addColumn<int>("kind");
        QTest::newRow("cut off") << 0;
        QTest::newRow("a quotation mark") << int('"');
        QTest::newRow("a backslash") << int('\\');
        QTest::newRow("a brace") << int('}');
        QTest::newRow("a digit") << int('7');
        QTest::newRow("half a letter") << 0xC3;
    }

    void damagedAnywhere()
    {
        QFETCH(int, kind);
        const QRegularExpression form(QStringLiteral("\\A2 Platform: Cannot read catalog %1"
                                                     "(:\\d+:\\d+)?: .+\\z")
                                          .arg(QRegularExpression::escape(path("a.json"))));
        for (int i = kind % 17; i < catalog().size(); i += 17) {
            QByteArray content = catalog();
            if (kind == 0)
                content.truncate(i);
            else
                content[i] = char(kind);
            writeFile(path("a.json"), content);
            store().setDirectory(m_directory->path());
            const QStringList ids = store().catalogIds();
            const bool sound = store().loadTemplate(ids.first());
            QVERIFY(store().loadTemplate(idB));
            const QStringList lines = takeLog();
            QCOMPARE(lines.isEmpty(), sound && ids.size() == 2);
            for (const QString &line : lines)
                QVERIFY2(form.match(line).hasMatch(), qPrintable(line));
        }
    }

    void size_data()
    {
        QTest::addColumn<int>("tooMany"); // [bytes]
        QTest::newRow("exactly 16 MiB") << 0;
        QTest::newRow("one more") << 1;
    }

    void size()
    {
        QFETCH(int, tooMany);
        const QByteArray content = catalog();
        writeFile(path("a.json"),
                  content + QByteArray(16 * 1024 * 1024 - content.size() + tooMany, ' '));
        store().setDirectory(m_directory->path());
        if (tooMany == 0) {
            QVERIFY(loaded());
            return;
        }
        QCOMPARE(
            takeLog(),
            QStringList {QStringLiteral("2 Platform: Cannot read catalog %1: larger than 16 MiB")
                             .arg(path("a.json"))});
        QCOMPARE(store().catalogIds(), QStringList {idB});
    }

    void identifierTwice()
    {
        writeFile(path("b.json"), catalog().replace("Catalogue", "Other"));
        store().setDirectory(m_directory->path());
        QCOMPARE(
            takeLog(),
            QStringList {
                QStringLiteral("2 Platform: Cannot read catalog %1: %2 has the same \"uniqueId\"")
                    .arg(path("b.json"), path("a.json"))});
        QCOMPARE(store().catalogIds(), QStringList {idA});
        QCOMPARE(store().catalogName(idA), QStringLiteral("Catalogue")); // the first file's
    }

    void identifierChanges()
    {
        writeFile(path("a.json"), catalog("C"));
        QVERIFY(!store().loadTemplate(idA));
        QCOMPARE(
            takeLog(),
            QStringList {QStringLiteral(
                             "2 Platform: Cannot read catalog %1: \"uniqueId\" is no longer \"A\"")
                             .arg(path("a.json"))});
        QVERIFY(store().getTemplateFromCache(idA).isNull());
    }

    void headBreaksLater()
    {
        writeFile(path("a.json"), changed("FRE", "F"));
        QVERIFY(!store().loadTemplate(idA));
        QCOMPARE(takeLog().size(), 1);
        QVERIFY(store().getTemplateFromCache(idA).isNull());
    }

    void fileDisappears()
    {
        QVERIFY(QFile::remove(path("a.json")));
        QVERIFY(!store().loadTemplate(idA));
        const QStringList lines = takeLog();
        QCOMPARE(lines.size(), 1);
        QVERIFY2(lines.first().startsWith(QStringLiteral("2 Platform: Cannot read catalog ")
                                          + path("a.json") + QStringLiteral(": ")),
                 qPrintable(lines.first()));
        QVERIFY(store().catalogByUniqueId(idA)); // as it was read before
    }

    void shippedCatalogs_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("country");
        QTest::addColumn<QString>("roots"); // caption of the code BBA
        QTest::newRow("EN13508-2-ENG-GB") << "ENG"
                                          << "GB"
                                          << "Roots";
        QTest::newRow("EN13508-2-DEU-DE") << "DEU"
                                          << "DE"
                                          << "Wurzeln";
        QTest::newRow("EN13508-2-FRE-CH") << "FRE"
                                          << "CH"
                                          << "Racines";
    }

    void shippedCatalogs()
    {
        QFETCH(QString, roots);
        const QString id = QString::fromLatin1(QTest::currentDataTag());
        const TemplatePointer read = shipped(id);
        QVERIFY(read);
        QCOMPARE(store().catalogIds().size(), 3);
        QTEST(store().catalogByUniqueId(id)->languageCode(), "language");
        QTEST(store().catalogByUniqueId(id)->countryCode(), "country");
        QVERIFY(!store().catalogName(id).isEmpty());

        QCOMPARE(outline(*read), outline(*shipped(QStringLiteral("EN13508-2-ENG-GB"))));
        for (const QString &caption : captions(*read))
            QCOMPARE(caption, caption.trimmed());

        const auto columns = columnsOf(*read);
        // A list shows the caption of its item, a text the code itself.
        QCOMPARE(columns.value(QStringLiteral("SECOBS.OBS_OpCode"))->type(),
                 CTemplateColumn::Type::Text);
        const auto *codes
            = read->itemList(*columns.value(QStringLiteral("SECOBS.OBS_Observation")));
        QVERIFY(codes);
        const QStringList ofSections
            = QStringLiteral("BAA BAB BAC BAD BAE BAF BAG BAH BAI BAJ BAK BAL BAM BAN BAO BAP "
                             "BBA BBB BBC BBD BBE BBF BBG BBH BCA BCB BCC BCD BCE "
                             "BDA BDB BDC BDD BDE BDF BDG")
                  .split(QLatin1Char(' '));
        const QStringList ofNodes
            = QStringLiteral("DAA DAB DAC DAD DAE DAF DAG DAH DAI DAJ DAK DAL DAM DAN DAO DAP "
                             "DAQ DAR DBA DBB DBC DBD DBE DBF DBG DBH DCA DCB DCG DCH DCI "
                             "DDA DDB DDC DDD DDE DDF DDG")
                  .split(QLatin1Char(' '));
        QCOMPARE(valuesOf(*codes), ofSections + ofNodes);
        QCOMPARE(codes->at(16).caption(), roots);
        QCOMPARE(codes->at(ofSections.size() + 18).caption(), roots);
        const auto offered = [&](const char *table) {
            return valuesOf(store().choices(id, QStringLiteral("SECOBS"),
                                            QStringLiteral("OBS_Observation"),
                                            QString::fromLatin1(table)));
        };
        QVERIFY(shipped(id)); // the comparison above read another one
        QCOMPARE(offered("SECTION"), ofSections);
        QCOMPARE(offered("NODE"), ofNodes);
    }

    void shippedLanguagesDiffer()
    {
        const auto english = captions(*shipped(QStringLiteral("EN13508-2-ENG-GB")));
        for (const char *id : {"EN13508-2-DEU-DE", "EN13508-2-FRE-CH"}) {
            const auto other = captions(*shipped(QString::fromLatin1(id)));
            QCOMPARE(other.size(), english.size());
            int same = 0;
            for (int i = 0; i < english.size(); ++i)
                same += other.at(i) == english.at(i) ? 1 : 0;
            QVERIFY2(same < 10, qPrintable(QString::number(same)));
        }
    }

    void shippedColumns_data()
    {
        QTest::addColumn<QString>("columns");
        QTest::newRow("PROJECT") << "PRJ_CatalogId PRJ_City PRJ_Client PRJ_Name PRJ_Number";
        QTest::newRow("JOB") << "JOB_Name JOB_Number JOB_Operator";
        QTest::newRow("SECTION")
            << "OBJ_City OBJ_FromNode_FK OBJ_Key OBJ_Length OBJ_Material "
               "OBJ_Shape OBJ_Size OBJ_Street OBJ_ToNode_FK OBJ_Usage OBJ_Year";
        QTest::newRow("NODE") << "OBJ_Depth OBJ_Key OBJ_Street OBJ_Type";
        QTest::newRow("SECINSP")
            << "INS_Date INS_Direction INS_Inspector INS_Job_FK INS_Method INS_Number "
               "INS_Object_REF INS_Remark INS_Time INS_Weather V_INS_Contractor V_INS_Customer "
               "V_INS_DateOfEnd V_INS_DateOfStart V_INS_TimeOfEnd V_INS_TimeOfStart";
        QTest::newRow("SECOBS") << "OBS_ClockFrom OBS_ClockTo OBS_Distance OBS_Memo "
                                   "OBS_Observation OBS_OpCode OBS_Quantification OBS_Time";
    }

    void shippedColumns() // those that the database keeps
    {
        QFETCH(QString, columns);
        const TemplatePointer read = shipped(QStringLiteral("EN13508-2-ENG-GB"));
        QVERIFY(read);
        QStringList keys;
        const auto all = columnsOf(*read);
        for (const CTemplateColumn *column : all) {
            if (column->tableKey() == QLatin1String(QTest::currentDataTag()))
                keys.append(column->key());
        }
        QCOMPARE(keys.join(QLatin1Char(' ')), columns);
    }

    void shippedKinds()
    {
        const TemplatePointer read = shipped(QStringLiteral("EN13508-2-ENG-GB"));
        QVERIFY(read);
        QStringList views;
        for (int i = 0; i < read->programViewCount(); ++i)
            views.append(read->programView(i)->key());
        QCOMPARE(views.join(QLatin1Char(' ')),
                 QStringLiteral("detail_p detail_s detail_s_inspection grid_so grid_s grid_n"));

        QSet<int> types;
        int lists = 0;
        int shown = 0;
        const auto columns = columnsOf(*read);
        for (const CTemplateColumn *column : columns) {
            types.insert(int(column->type()));
            lists += read->itemList(*column) ? 1 : 0;
            shown += column->isOsd() ? 1 : 0;
            const bool reference = column->key().endsWith(QLatin1String("_FK"))
                || column->key().endsWith(QLatin1String("_REF"));
            QVERIFY2(!reference || !column->isOsd(), qPrintable(column->key()));
        }
        QCOMPARE(types.size(), 5);
        QCOMPARE(lists, 8);
        QCOMPARE(shown, 37);
        QVERIFY(!columns.value(QStringLiteral("PROJECT.PRJ_CatalogId"))->isOsd());
    }

    void shippedListsAreUsed()
    {
        // The files' own words: a list that no column names would not be seen through a template.
        const QDir directory(QFINDTESTDATA("../../../data/catalogs"));
        const QStringList names = directory.entryList({QStringLiteral("*.json")});
        QCOMPARE(names.size(), 3);
        for (const QString &name : names) {
            QFile file(directory.filePath(name));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QByteArray content = file.readAll();
            QCOMPARE(content.count("\"items\":"), 8);
            QCOMPARE(content.count("\"list\":"), 8);
        }
    }
};

QTEST_GUILESS_MAIN(tst_CatalogStore)
#include "tst_CatalogStore.moc"
