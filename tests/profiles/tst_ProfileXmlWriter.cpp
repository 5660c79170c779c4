// SPDX-License-Identifier: Apache-2.0
#include "tests/support/LoggedTest.h"
#include "videooverlay/elements/CVideoOverlayElement.h"
#include "videooverlay/profiles/ProfileXmlReader.h"
#include "videooverlay/profiles/ProfileXmlWriter.h"

#include <QColor>
#include <QFile>
#include <QMetaEnum>
#include <QTemporaryDir>
#include <QTest>
#include <QTextCodec>

#include <cmath>
#include <limits>
#include <type_traits>

using namespace Velmar::VideoOverlay;

namespace {

using Records = QList<ElementParam>;

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

ElementParam record(int type, std::initializer_list<std::pair<const char *, QVariant>> values = {})
{
    ElementParam param;
    param.insert(s("type"), type);
    for (const auto &value : values)
        param.insert(s(value.first), value.second);
    return param;
}

/// Every key that records know, in one: what a kind does not write must not appear.
ElementParam filled(int type)
{
    return record(type,
                  {{"id", 17},
                   {"row", 3},
                   {"col", -4},
                   {"enabled", true},
                   {"timeout", 30},
                   {"backgroundColor", QColor(0, 0, 255)},
                   {"textColor", QColor(1, 2, 3, 4)},
                   {"captionEnabled", true},
                   {"caption", s("Caption")},
                   {"columnCaption", s("Column caption")},
                   {"columnBound", s("OBJ_Name")},
                   {"TDIR_Key", s("{key}")},
                   {"textDatasource", s("DB")},
                   {"text", s("Text")},
                   {"maxLineNumber", 5},
                   {"favorites", QStringList {s("one"), s("a\nb\nc")}},
                   {"max_width", 20},
                   {"max_height", 2},
                   {"unit", s("°C")},
                   {"align", s("RIGHT")},
                   {"staticId", 9},
                   {"canDelete", false},
                   {"imagePath", s("/pictures/a.png")},
                   {"scale", 0.1234567},
                   {"screenSnip", true},
                   {"general", true},
                   {"globalTransparency", 40},
                   {"analogVideo", true},
                   {"kx70ii_state", true},
                   {"kx70ii_col", 11},
                   {"kx70ii_row", 22},
                   {"kx70ii_units", s("imperial")}});
}

template <typename Value, typename = void> struct IsWritable : std::false_type
{
};
template <typename Value>
struct IsWritable<Value,
                  std::void_t<decltype(ProfileXmlWriter::createTextElement(
                      std::declval<QXmlStreamWriter &>(), QString(), std::declval<Value>()))>>
    : std::true_type
{
};
static_assert(IsWritable<QString>::value && IsWritable<bool>::value);
static_assert(!IsWritable<const char *>::value, "would be written as a truth value");

} // namespace

class tst_ProfileXmlWriter : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void golden_data();
    void golden();
    void integers_data();
    void integers();
    void doubles_data();
    void doubles();
    void colors_data();
    void colors();
    void favorites_data();
    void favorites();
    void units_data();
    void units();
    void withoutAType();
    void typeByItsName_data();
    void typeByItsName();
    void staticTextConditions();
    void characters();
    void codecOfTheSystem();
    void replacesOldContent();
    void cannotOpen();

private:
    QByteArray write(const Records &records)
    {
        const QString path = m_dir.filePath(s("profile.xml"));
        if (!ProfileXmlWriter().writeElements(path, records))
            QTest::qFail("not written", __FILE__, __LINE__);
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            QTest::qFail("not there", __FILE__, __LINE__);
        return file.readAll();
    }

    /// What stands between the tags of the first child of that name.
    QByteArray written(const ElementParam &param, const char *tag)
    {
        const QByteArray bytes = write({param});
        const QByteArray start = QByteArray("<") + tag + ">";
        const int from = bytes.indexOf(start) + start.size();
        return bytes.mid(from, bytes.indexOf(QByteArray("</") + tag + ">") - from);
    }

    QTemporaryDir m_dir;
};

void tst_ProfileXmlWriter::golden_data()
{
    QTest::addColumn<Records>("records");
    QTest::newRow("empty") << Records();
    QTest::newRow("static-text") << Records {record(0,
                                                    {{"text", s("5 < 6 & \"°\"")},
                                                     {"col", 1},
                                                     {"row", 2},
                                                     {"enabled", true},
                                                     {"textColor", QColor(255, 255, 255)},
                                                     {"backgroundColor", QColor(0, 0, 255)}})};
    QTest::newRow("static-text-bound") << Records {filled(0)};
    QTest::newRow("system-text") << Records {filled(1)};
    QTest::newRow("image") << Records {filled(2)};
    QTest::newRow("inspection-text") << Records {filled(3)};
    QTest::newRow("free-text") << Records {filled(4)};
    QTest::newRow("watermark-left-out") << Records {filled(5), filled(8), filled(-1)};
    QTest::newRow("inspection-static-text") << Records {filled(6)};
    QTest::newRow("general") << Records {filled(7)};
    QTest::newRow("general-default") << Records {ElementParam::createGeneralSettingsDefault()};
    Records bare;
    for (int type = 0; type <= 7; ++type)
        bare.append(record(type));
    QTest::newRow("bare") << bare;
    QTest::newRow("list-order") << Records {record(7), record(2), record(5), record(0)};
    QTest::newRow("favorites") << Records {
        record(4, {{"favorites", QStringList {s(""), s("a\n\nb\n"), s("\n")}}})};
}

/// Byte by byte the files under tests/data/profiles. After an intended change of the format:
///     XQ_UPDATE_GOLDEN=1 ctest --preset dev -R tst_ProfileXmlWriter
/// rewrites them; look at the difference before it is committed.
void tst_ProfileXmlWriter::golden()
{
    QFETCH(Records, records);
    const QByteArray bytes = write(records);
    QFile file(s(GOLDEN_DIR "/%1.xml").arg(s(QTest::currentDataTag())));
    if (qEnvironmentVariableIsSet("XQ_UPDATE_GOLDEN")) {
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), qint64(bytes.size()));
        return;
    }
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.fileName()));
    QCOMPARE(bytes, file.readAll());
}

void tst_ProfileXmlWriter::integers_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("none") << QVariant() << QByteArray("0");
    QTest::newRow("negative") << QVariant(-7) << QByteArray("-7");
    QTest::newRow("smallest") << QVariant(std::numeric_limits<int>::min())
                              << QByteArray("-2147483648");
    QTest::newRow("largest") << QVariant(std::numeric_limits<int>::max())
                             << QByteArray("2147483647");
    QTest::newRow("text") << QVariant(s(" 12 ")) << QByteArray("12");
    QTest::newRow("text of the largest") << QVariant(s("2147483647")) << QByteArray("2147483647");
    QTest::newRow("text with a zero in front") << QVariant(s("010")) << QByteArray("10");
    QTest::newRow("hexadecimal text") << QVariant(s("0x10")) << QByteArray("0");
    QTest::newRow("text of a fraction") << QVariant(s("1.5")) << QByteArray("0");
    QTest::newRow("word") << QVariant(s("ten")) << QByteArray("0");
    QTest::newRow("text too large") << QVariant(s("4294967297")) << QByteArray("0");
    QTest::newRow("number too large") << QVariant(4294967297LL) << QByteArray("0");
    QTest::newRow("not a number") << QVariant(std::nan("")) << QByteArray("0");
    QTest::newRow("truth value") << QVariant(true) << QByteArray("1");
    QTest::newRow("list") << QVariant(QStringList {s("1"), s("2")}) << QByteArray("0");
}

void tst_ProfileXmlWriter::integers()
{
    QFETCH(QVariant, value);
    QFETCH(QByteArray, text);
    QCOMPARE(written(record(2, {{"row", value}}), "ROW"), text);
}

void tst_ProfileXmlWriter::doubles_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("none") << QVariant() << QByteArray("0");
    QTest::newRow("one") << QVariant(1.0) << QByteArray("1");
    QTest::newRow("six digits") << QVariant(1.23456789) << QByteArray("1.23457");
    QTest::newRow("tenth") << QVariant(0.1) << QByteArray("0.1");
    QTest::newRow("large") << QVariant(1234567.0) << QByteArray("1.23457e+06");
    QTest::newRow("small") << QVariant(0.00001) << QByteArray("1e-05");
    QTest::newRow("word") << QVariant(s("half")) << QByteArray("0");
}

void tst_ProfileXmlWriter::doubles()
{
    QFETCH(QVariant, value);
    QFETCH(QByteArray, text);
    QCOMPARE(written(record(2, {{"scale", value}}), "SCALE"), text);
}

void tst_ProfileXmlWriter::colors_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("opaque blue") << QVariant(QColor(0, 0, 255)) << QByteArray("#ff0000ff");
    QTest::newRow("lower case, alpha first")
        << QVariant(QColor(0xAB, 0xCD, 0xEF, 0x12)) << QByteArray("#12abcdef");
    QTest::newRow("invalid") << QVariant(QColor()) << QByteArray("#ff000000");
    QTest::newRow("none") << QVariant() << QByteArray("#ff000000");
    QTest::newRow("text") << QVariant(s("red")) << QByteArray("#ffff0000");
    QTest::newRow("no colour") << QVariant(s("nonsense")) << QByteArray("#ff000000");
    QTest::newRow("number") << QVariant(3.5) << QByteArray("#ff000000");
}

void tst_ProfileXmlWriter::colors()
{
    QFETCH(QVariant, value);
    QFETCH(QByteArray, text);
    QCOMPARE(written(record(3, {{"textColor", value}}), "FGCOLOR"), text);
    QCOMPARE(written(record(4, {{"backgroundColor", value}}), "BGCOLOR"), text);
}

void tst_ProfileXmlWriter::favorites_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QStringList>("lines"); // one text per favourite: its number of lines
    QTest::newRow("none") << QVariant() << QStringList();
    QTest::newRow("empty list") << QVariant(QStringList()) << QStringList();
    QTest::newRow("unconvertible") << QVariant(3.5) << QStringList();
    QTest::newRow("null text") << QVariant(QString()) << QStringList {s("1")};
    QTest::newRow("one text") << QVariant(s("a\nb")) << QStringList {s("2")};
    QTest::newRow("variants") << QVariant(QVariantList {s("a"), 5}) << QStringList {s("1"), s("1")};
    QTest::newRow("empty text") << QVariant(QStringList {s("")}) << QStringList {s("1")};
    QTest::newRow("three lines") << QVariant(QStringList {s("a\nb\nc")}) << QStringList {s("3")};
    QTest::newRow("twenty lines") << QVariant(QStringList {s("x\n").repeated(19)})
                                  << QStringList {s("20")};
}

void tst_ProfileXmlWriter::favorites()
{
    QFETCH(QVariant, value);
    QFETCH(QStringList, lines);
    const QByteArray bytes = write({record(4, {{"favorites", value}})});
    QCOMPARE(bytes.contains("<FAVORITES/>"), lines.isEmpty());
    QCOMPARE(bytes.count("<TEXT>"), lines.size());
    int total = 0;
    for (const QString &count : lines)
        total += count.toInt();
    QCOMPARE(bytes.count("<LINE"), total);
    for (int i = 1; lines.size() == 1 && i <= total; ++i)
        QCOMPARE(bytes.count("<LINE" + QByteArray::number(i) + ">"), 1);
}

void tst_ProfileXmlWriter::units_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("number");
    const QStringList texts {s("m/s"),      s("ft/s"), s("inch/s"), s("m/min"), s("ft/min"),
                             s("inch/min"), s("hour"), s("°"),      s("%"),     s("mbar"),
                             s("atm"),      s("Pa"),   s("m"),      s("ft"),    s("inch"),
                             s("°C"),       s("°F")};
    for (int i = 0; i < texts.size(); ++i)
        QTest::addRow("%d", i + 1) << texts.at(i) << QString::number(i + 1);
    for (const char *text : {"bar", "", "1", "M/S", "Â°"})
        QTest::addRow("unchanged '%s'", text) << s(text) << s(text);
}

void tst_ProfileXmlWriter::units()
{
    QFETCH(QString, text);
    QFETCH(QString, number);
    QCOMPARE(unitStringToNum(text), number);
    QCOMPARE(written(record(1, {{"unit", text}}), "UNIT"), number.toUtf8());
}

/// What is missing or does not convert is zero, here as everywhere: a static text.
void tst_ProfileXmlWriter::withoutAType()
{
    const QByteArray staticText = write({record(0)});
    QCOMPARE(write({ElementParam()}), staticText);
    ElementParam param;
    for (const QVariant &type : {QVariant(), QVariant(s("two")), QVariant(4294967298LL)}) {
        param.insert(s("type"), type);
        QCOMPARE(write({param}), staticText);
    }
    param.insert(s("type"), s("2"));
    QCOMPARE(write({param}), write({record(2)}));
}

void tst_ProfileXmlWriter::typeByItsName_data()
{
    QTest::addColumn<int>("type");
    const QMetaEnum types = QMetaEnum::fromType<CVideoOverlayElement::Type>();
    for (int i = 0; i < types.keyCount(); ++i)
        QTest::newRow(types.key(i)) << types.value(i);
}

/// A record may hold the type as any value that converts to it.
void tst_ProfileXmlWriter::typeByItsName()
{
    QFETCH(int, type);
    const QByteArray byNumber = write({filled(type)});
    const auto named = CVideoOverlayElement::Type(type);
    ElementParam param = filled(type);
    for (const QVariant &value : {QVariant::fromValue(named), QVariant(s(QTest::currentDataTag())),
                                  QVariant(QByteArray(QTest::currentDataTag())),
                                  QVariant(qlonglong(type)), QVariant(double(type))}) {
        param.insert(s("type"), value);
        QCOMPARE(write({param}), byNumber);
    }
}

void tst_ProfileXmlWriter::staticTextConditions()
{
    const QByteArray bare = write({record(0)});
    QVERIFY(bare.contains("<TEXT></TEXT>"));
    for (const char *tag : {"COL_Bound_Column", "CAPTION", "CANDELETE", "STATIC_ID"})
        QVERIFY2(!bare.contains(tag), tag);

    const QByteArray emptyColumn = write({record(0, {{"columnBound", s("")}})});
    QVERIFY(emptyColumn.contains("<TEXT></TEXT>"));
    QVERIFY(emptyColumn.contains("<COL_Bound_Column></COL_Bound_Column>"));

    const QByteArray present
        = write({record(0, {{"caption", QVariant()}, {"canDelete", 0}, {"staticId", QVariant()}})});
    QVERIFY(present.contains("<CAPTION></CAPTION>"));
    QVERIFY(present.contains("<CANDELETE>false</CANDELETE>"));
    QVERIFY(present.contains("<STATIC_ID>0</STATIC_ID>"));
}

/// A character that XML cannot hold costs itself, not what follows, and fails nothing.
void tst_ProfileXmlWriter::characters()
{
    const QString half(QChar(0xD800));
    const auto text = [&](const QString &value) {
        return written(record(0, {{"text", value}}), "TEXT");
    };
    QCOMPARE(text(s("<&>\"'")), QByteArray("&lt;&amp;&gt;&quot;'"));
    QCOMPARE(text(s("a\001b")), QByteArray("ab"));
    const QByteArray bytes = write({record(0, {{"text", half}}), record(2)});
    QVERIFY(bytes.contains("<IMAGE>"));
    QVERIFY(bytes.endsWith("</PROFILE>\n"));
}

/// The declaration says UTF-8 in every case.
void tst_ProfileXmlWriter::codecOfTheSystem()
{
    const ElementParam param = record(0, {{"text", s("°")}});
    QTextCodec *system = QTextCodec::codecForLocale();
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    const QByteArray latin = write({param});
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    const QByteArray utf8 = write({param});
    QTextCodec::setCodecForLocale(system);
    QVERIFY(latin.contains("<TEXT>\xB0</TEXT>"));
    QVERIFY(utf8.contains("<TEXT>\xC2\xB0</TEXT>"));
    for (const QByteArray &bytes : {latin, utf8})
        QVERIFY(bytes.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<PROFILE"));
}

void tst_ProfileXmlWriter::replacesOldContent()
{
    const QByteArray empty = write({});
    write(Records {filled(4), filled(4)});
    QCOMPARE(write({}), empty);
}

void tst_ProfileXmlWriter::cannotOpen()
{
    for (const QString &path :
         {m_dir.filePath(s("missing/profile.xml")), m_dir.path(), QString()}) {
        QVERIFY(!ProfileXmlWriter().writeElements(path, {filled(0)}));
        QCOMPARE(
            takeLog(),
            QStringList {s("1 VideoOverlayLibrary: Cannot open profile file for save:") + path});
    }
    QVERIFY(!QFile::exists(m_dir.filePath(s("missing"))));
}

QTEST_GUILESS_MAIN(tst_ProfileXmlWriter)
#include "tst_ProfileXmlWriter.moc"
