// SPDX-License-Identifier: Apache-2.0
#include "tests/profiles/ProfileReaderTest.h"

namespace {

/// The units in the order of their numbers, spelled here once more.
const QStringList unitTexts {
    s("m/s"),  s("ft/s"), s("inch/s"), s("m/min"), s("ft/min"), s("inch/min"),
    s("hour"), s("°"),    s("%"),      s("mbar"),  s("atm"),    s("Pa"),
    s("m"),    s("ft"),   s("inch"),   s("°C"),    s("°F"),
};

} // namespace

class tst_ProfileXmlReader : public ProfileReaderTest
{
    Q_OBJECT

private Q_SLOTS:
    void types_data();
    void types();
    void values_data();
    void values();
    void missingChildren_data();
    void missingChildren();
    void general();
    void freeText();
    void favorites_data();
    void favorites();
    void colors_data();
    void colors();
    void booleans_data();
    void booleans();
    void numbers_data();
    void numbers();
    void units_data();
    void units();
    void onlyDirectChildren();
    void firstOfDuplicates();
    void skipsTheUnknown();
    void keepsDocumentOrder();
    void carriageReturns();
    void header_data();
    void header();
};

void tst_ProfileXmlReader::types_data()
{
    QTest::addColumn<QByteArray>("tag");
    QTest::addColumn<int>("type");
    QTest::newRow("static text") << QByteArray("STATICTEXT") << 0;
    QTest::newRow("system text") << QByteArray("SYSTEMTEXT") << 1;
    QTest::newRow("image") << QByteArray("IMAGE") << 2;
    QTest::newRow("inspection text") << QByteArray("INSPTEXT") << 3;
    QTest::newRow("free text") << QByteArray("FREETEXT") << 4;
    QTest::newRow("inspection static text") << QByteArray("INSPSTATICTEXT") << 6;
    QTest::newRow("general settings") << QByteArray("GENERAL") << 7;
}

void tst_ProfileXmlReader::types()
{
    QFETCH(QByteArray, tag);
    QFETCH(int, type);
    const QVariant value = readOne("<" + tag + "/>").value(s("type"));
    QCOMPARE(value.userType(), int(QMetaType::Int));
    QCOMPARE(value.toInt(), type);
}

void tst_ProfileXmlReader::values_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<QByteArray>("tag");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QVariant>("value");

    const auto row = [](const char *kind, const char *tag, const char *key, const char *text,
                        const QVariant &value) {
        QTest::addRow("%s %s", kind, tag)
            << QByteArray(kind) << QByteArray(tag) << s(key) << QByteArray(text) << value;
    };
    const auto integer = [&](const char *kind, const char *tag, const char *key) {
        row(kind, tag, key, "-12", -12);
    };
    const auto boolean = [&](const char *kind, const char *tag, const char *key) {
        row(kind, tag, key, "yes", true);
    };
    const auto string = [&](const char *kind, const char *tag, const char *key) {
        row(kind, tag, key, " a &amp; b ", s(" a & b "));
    };
    const auto color = [&](const char *kind, const char *tag, const char *key) {
        row(kind, tag, key, "#80102030", QColor(0x10, 0x20, 0x30, 0x80));
    };
    const auto place = [&](const char *kind) {
        integer(kind, "ROW", "row");
        integer(kind, "COL", "col");
        boolean(kind, "VISIBLE", "enabled");
    };
    const auto box = [&](const char *kind) {
        place(kind);
        color(kind, "BGCOLOR", "backgroundColor");
        color(kind, "FGCOLOR", "textColor");
    };
    const auto size = [&](const char *kind) {
        integer(kind, "WIDTH", "max_width");
        integer(kind, "HEIGHT", "max_height");
    };

    box("STATICTEXT");
    integer("STATICTEXT", "STATIC_ID", "staticId");
    boolean("STATICTEXT", "CANDELETE", "canDelete");
    string("STATICTEXT", "TEXT", "text");
    string("STATICTEXT", "COL_Bound_Column", "columnBound");
    string("STATICTEXT", "CAPTION", "caption");

    box("SYSTEMTEXT");
    size("SYSTEMTEXT");
    string("SYSTEMTEXT", "COL_Bound_Column", "columnBound");
    string("SYSTEMTEXT", "CAPTION", "columnCaption");
    string("SYSTEMTEXT", "SOURCE", "textDatasource");
    boolean("SYSTEMTEXT", "SHOWCAPTION", "captionEnabled");
    row("SYSTEMTEXT", "UNIT", "unit", "4", s("m/min"));
    string("SYSTEMTEXT", "ALIGN", "align");

    for (const char *kind : {"INSPTEXT", "INSPSTATICTEXT"}) {
        box(kind);
        size(kind);
        string(kind, "COL_Bound_Column", "columnBound");
        string(kind, "TDIR_Key", "TDIR_Key");
        string(kind, "CAPTION", "columnCaption");
        string(kind, "SOURCE", "textDatasource");
        integer(kind, "TIMEOUT", "timeout");
        boolean(kind, "SHOWCAPTION", "captionEnabled");
    }

    place("IMAGE");
    string("IMAGE", "PATH", "imagePath");
    row("IMAGE", "SCALE", "scale", "0.75", 0.75);
    boolean("IMAGE", "SCREENSNIP", "screenSnip");
    string("IMAGE", "CAPTION", "caption");

    box("FREETEXT");
    size("FREETEXT");
    integer("FREETEXT", "TIMEOUT", "timeout");
    integer("FREETEXT", "DEFAULT_LINE_NUMBER", "maxLineNumber");

    integer("GENERAL", "GLOBAL_TRANSPARENCY", "globalTransparency");
    row("GENERAL", "ANALOG_VIDEO", "analogVideo", "false", false);
    boolean("GENERAL", "KX70II_STATE", "kx70ii_state");
    integer("GENERAL", "KX70II_RowPercent", "kx70ii_col");
    integer("GENERAL", "KX70II_ColPercent", "kx70ii_row");
    string("GENERAL", "KX70II_Units", "kx70ii_units");
}

void tst_ProfileXmlReader::values()
{
    QFETCH(QByteArray, kind);
    QFETCH(QByteArray, tag);
    QFETCH(QString, key);
    QFETCH(QByteArray, text);
    QFETCH(QVariant, value);
    const ElementParam without = readOne("<" + kind + "/>");
    ElementParam expected = without;
    expected.insert(key, value);
    const ElementParam param
        = readOne("<" + kind + "><" + tag + ">" + text + "</" + tag + "></" + kind + ">");
    QCOMPARE(param, expected);
    QCOMPARE(param.value(key).userType(), value.userType());
    QVERIFY(param != without);
}

void tst_ProfileXmlReader::missingChildren_data()
{
    QTest::addColumn<QByteArray>("tag");
    QTest::addColumn<ElementParam>("expected");
    ElementParam box;
    box.insert(s("textColor"), QColor(255, 255, 255));
    box.insert(s("backgroundColor"), QColor(0, 0, 255));
    const auto row = [](const char *tag, ElementParam param, int type) {
        param.insert(s("type"), type);
        QTest::newRow(tag) << QByteArray(tag) << param;
    };
    row("STATICTEXT", box, 0);
    row("IMAGE", ElementParam(), 2);
    ElementParam source = box;
    source.insert(s("textDatasource"), s("DB"));
    row("INSPTEXT", source, 3);
    row("INSPSTATICTEXT", source, 6);
    source.insert(s("align"), s("LEFT"));
    row("SYSTEMTEXT", source, 1);
    box.insert(s("columnCaption"), s(""));
    box.insert(s("captionEnabled"), false);
    box.insert(s("text"), s("null"));
    row("FREETEXT", box, 4);
    row("GENERAL", ElementParam::createGeneralSettingsDefault(), 7);
}

void tst_ProfileXmlReader::missingChildren()
{
    QFETCH(QByteArray, tag);
    QFETCH(ElementParam, expected);
    const ElementParam param = readOne("<" + tag + "></" + tag + ">");
    QCOMPARE(param, expected);
    for (auto it = expected.cbegin(); it != expected.cend(); ++it)
        QCOMPARE(param.value(it.key()).userType(), it->userType());
}

void tst_ProfileXmlReader::general()
{
    const ElementParam param = readOne("<GENERAL><KX70II_RowPercent>11</KX70II_RowPercent>"
                                       "<KX70II_ColPercent>22</KX70II_ColPercent></GENERAL>");
    QCOMPARE(param.value(s("kx70ii_col")), QVariant(11)); // crossed on purpose
    QCOMPARE(param.value(s("kx70ii_row")), QVariant(22));
    QCOMPARE(param.value(s("id")), QVariant(268435455));
    QCOMPARE(param.value(s("general")), QVariant(true));
    QCOMPARE(param.value(s("analogVideo")), QVariant(true));
    QCOMPARE(param.value(s("kx70ii_units")), QVariant(s("metric")));
    QVERIFY(!param.contains(s("globalTransparency")));
}

/// What the reader adds itself is no child of the file.
void tst_ProfileXmlReader::freeText()
{
    const ElementParam param
        = readOne("<FREETEXT><CAPTION>c</CAPTION><SHOWCAPTION>true</SHOWCAPTION>"
                  "<TEXT>t</TEXT></FREETEXT>");
    QCOMPARE(param.value(s("columnCaption")), QVariant(s("")));
    QCOMPARE(param.value(s("captionEnabled")), QVariant(false));
    QCOMPARE(param.value(s("text")), QVariant(s("null")));
    QVERIFY(!param.contains(s("favorites")));
}

void tst_ProfileXmlReader::favorites_data()
{
    QTest::addColumn<QByteArray>("favorites");
    QTest::addColumn<QStringList>("expected");
    QByteArray fifteen;
    QStringList fourteen;
    for (int i = 15; i >= 1; --i) { // backwards: their numbers decide, not their places
        const QByteArray number = QByteArray::number(i);
        fifteen += "<LINE" + number + ">l" + number + "</LINE" + number + ">";
        if (i < 15)
            fourteen.prepend(s("l") + QString::number(i));
    }
    QTest::newRow("none") << QByteArray() << QStringList();
    QTest::newRow("one line") << QByteArray("<TEXT><LINE1>a</LINE1></TEXT>")
                              << QStringList {s("a")};
    QTest::newRow("three lines") << QByteArray(
        "<TEXT><LINE1>a</LINE1><LINE2/><LINE3>c</LINE3></TEXT>")
                                 << QStringList {s("a\n\nc")};
    QTest::newRow("missing lines are skipped")
        << QByteArray("<TEXT><LINE2>b</LINE2><LINE14>n</LINE14></TEXT>") << QStringList {s("b\nn")};
    QTest::newRow("any name") << QByteArray("<A><LINE1>a</LINE1></A><B><LINE1>b</LINE1></B>")
                              << QStringList {s("a"), s("b")};
    QTest::newRow("no lines") << QByteArray("<TEXT/><TEXT>x</TEXT>") << QStringList {s(""), s("")};
    QTest::newRow("no elements") << QByteArray("x<!-- y --><?z z?>") << QStringList();
    QTest::newRow("a line 0") << QByteArray("<TEXT><LINE0>a</LINE0><LINE>b</LINE></TEXT>")
                              << QStringList {s("")};
    QTest::newRow("fifteen lines") << QByteArray("<TEXT>" + fifteen + "</TEXT>")
                                   << QStringList {fourteen.join(QLatin1Char('\n'))};
}

void tst_ProfileXmlReader::favorites()
{
    QFETCH(QByteArray, favorites);
    QFETCH(QStringList, expected);
    const ElementParam param
        = readOne("<FREETEXT><FAVORITES>" + favorites + "</FAVORITES></FREETEXT>");
    const QVariant value = param.value(s("favorites"));
    QCOMPARE(value.userType(), int(QMetaType::QStringList));
    QCOMPARE(value.toStringList(), expected);
    QCOMPARE(param.value(s("text")), QVariant(s("null")));
}

void tst_ProfileXmlReader::colors_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QColor>("expected");
    QTest::newRow("rgb") << QByteArray("#010203") << QColor(1, 2, 3);
    QTest::newRow("argb") << QByteArray("#04010203") << QColor(1, 2, 3, 4);
    QTest::newRow("name") << QByteArray("red") << QColor(255, 0, 0);
    QTest::newRow("transparent") << QByteArray("transparent") << QColor(0, 0, 0, 0);
    QTest::newRow("nonsense") << QByteArray("nonsense") << QColor();
    QTest::newRow("empty") << QByteArray() << QColor();
    QTest::newRow("blank in front") << QByteArray(" #ff0000") << QColor();
    QTest::newRow("too short") << QByteArray("#1") << QColor();
}

void tst_ProfileXmlReader::colors()
{
    QFETCH(QByteArray, text);
    QFETCH(QColor, expected);
    const ElementParam param = readOne("<STATICTEXT><FGCOLOR>" + text + "</FGCOLOR><BGCOLOR>" + text
                                       + "</BGCOLOR></STATICTEXT>");
    for (const char *key : {"textColor", "backgroundColor"}) {
        QCOMPARE(param.value(s(key)).userType(), int(QMetaType::QColor));
        QCOMPARE(param.value(s(key)).value<QColor>(), expected);
        QCOMPARE(param.value(s(key)).value<QColor>().isValid(), expected.isValid());
    }
}

void tst_ProfileXmlReader::booleans_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("expected");
    for (const char *text : {"", "0", "false", "False", "FALSE"})
        QTest::addRow("false: '%s'", text) << QByteArray(text) << false;
    for (const char *text : {"1", "true", "yes", "no", "00", "x false ", "off"})
        QTest::addRow("true: '%s'", text) << QByteArray(text) << true;
    QTest::newRow("true: blanks around false") << QByteArray(" false ") << true;
}

void tst_ProfileXmlReader::booleans()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, expected);
    const ElementParam param = readOne("<IMAGE><VISIBLE>" + text + "</VISIBLE></IMAGE>");
    QCOMPARE(param.value(s("enabled")), QVariant(expected));
}

void tst_ProfileXmlReader::numbers_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("integer");
    QTest::addColumn<double>("number");
    QTest::newRow("plain") << QByteArray("42") << 42 << 42.0;
    QTest::newRow("blanks around") << QByteArray(" 42 ") << 42 << 42.0;
    QTest::newRow("plus") << QByteArray("+7") << 7 << 7.0;
    QTest::newRow("fraction") << QByteArray("1.5") << 0 << 1.5;
    QTest::newRow("exponent") << QByteArray("1e3") << 0 << 1000.0;
    QTest::newRow("comma") << QByteArray("1,5") << 0 << 0.0;
    QTest::newRow("word") << QByteArray("ten") << 0 << 0.0;
    QTest::newRow("empty") << QByteArray() << 0 << 0.0;
    QTest::newRow("hexadecimal") << QByteArray("0x10") << 0 << 0.0;
    QTest::newRow("leading zero") << QByteArray("010") << 10 << 10.0;
    QTest::newRow("too large") << QByteArray("4294967297") << 0 << 4294967297.0;
}

void tst_ProfileXmlReader::numbers()
{
    QFETCH(QByteArray, text);
    QFETCH(int, integer);
    QFETCH(double, number);
    const ElementParam param
        = readOne("<IMAGE><ROW>" + text + "</ROW><SCALE>" + text + "</SCALE></IMAGE>");
    QCOMPARE(param.value(s("row")), QVariant(integer));
    QCOMPARE(param.value(s("scale")), QVariant(number));
}

void tst_ProfileXmlReader::units_data()
{
    QTest::addColumn<QString>("number");
    QTest::addColumn<QString>("text");
    for (int i = 0; i < unitTexts.size(); ++i)
        QTest::addRow("%d", i + 1) << QString::number(i + 1) << unitTexts.at(i);
    for (const char *text : {"99", "0", "18", "01", " 1", "m/s", "bar", ""})
        QTest::addRow("unchanged '%s'", text) << s(text) << s(text);
}

void tst_ProfileXmlReader::units()
{
    QFETCH(QString, number);
    QFETCH(QString, text);
    QCOMPARE(unitNumToString(number), text);
    const ElementParam param
        = readOne("<SYSTEMTEXT><UNIT>" + number.toUtf8() + "</UNIT></SYSTEMTEXT>");
    QCOMPARE(param.value(s("unit")), QVariant(text));
}

void tst_ProfileXmlReader::onlyDirectChildren()
{
    const ElementParam param
        = readOne("<STATICTEXT><X><TEXT>deep</TEXT><ROW>1</ROW></X></STATICTEXT>");
    QVERIFY(!param.contains(s("text")));
    QVERIFY(!param.contains(s("row")));
    QCOMPARE(readOne("<STATICTEXT><TEXT>a<B>b</B><![CDATA[<c>]]><!-- x --></TEXT></STATICTEXT>")
                 .value(s("text")),
             QVariant(s("ab<c>")));
    QVERIFY(read("<X><STATICTEXT/></X>").isEmpty());
}

void tst_ProfileXmlReader::firstOfDuplicates()
{
    const ElementParam param = readOne("<IMAGE><ROW/><ROW>2</ROW><COL>3</COL><COL>4</COL></IMAGE>");
    QCOMPARE(param.value(s("row")), QVariant(0));
    QCOMPARE(param.value(s("col")), QVariant(3));
}

void tst_ProfileXmlReader::skipsTheUnknown()
{
    const Records records
        = read("text<!-- IMAGE --><IMAGE/><WATERMARK/><image/><?GENERAL x?><![CDATA[<IMAGE/>]]>"
               "<IMAGE2/><STATICTEXT><row>1</row><UNKNOWN>2</UNKNOWN></STATICTEXT>");
    QCOMPARE(records.size(), 2);
    QCOMPARE(records.at(0).value(s("type")), QVariant(2));
    QCOMPARE(records.at(1).value(s("type")), QVariant(0));
    QCOMPARE(records.at(1).size(), 3);
}

void tst_ProfileXmlReader::keepsDocumentOrder()
{
    const Records records = read("<GENERAL/><FREETEXT/><IMAGE/><UNKNOWN/><INSPTEXT/><STATICTEXT/>"
                                 "<INSPSTATICTEXT/><SYSTEMTEXT/><GENERAL/>");
    QVector<int> types;
    for (const ElementParam &param : records)
        types.append(param.value(s("type")).toInt());
    QCOMPARE(types, (QVector<int> {7, 4, 2, 3, 0, 6, 1, 7}));
}

void tst_ProfileXmlReader::carriageReturns()
{
    QCOMPARE(readOne("<STATICTEXT>\r\n<TEXT>a\r\nb</TEXT>\r\n</STATICTEXT>\r\n").value(s("text")),
             QVariant(s("a\nb")));
}

void tst_ProfileXmlReader::header_data()
{
    QTest::addColumn<QByteArray>("attributes");
    QTest::addColumn<QString>("caption"); // null: the path
    QTest::addColumn<QString>("readonly");
    QTest::newRow("none") << QByteArray() << QString() << s("false");
    QTest::newRow("name") << QByteArray(" name=\"DN 1.5 &quot;\xC3\xA4&quot;\"")
                          << s("DN 1.5 \"ä\"") << s("false");
    QTest::newRow("empty name is a name") << QByteArray(" name=\"\"") << s("") << s("false");
    QTest::newRow("read-only") << QByteArray(" readonly=\"true\"") << QString() << s("true");
    QTest::newRow("its text as it is") << QByteArray(" readonly=\"Yes\"") << QString() << s("Yes");
}

void tst_ProfileXmlReader::header()
{
    QFETCH(QByteArray, attributes);
    QFETCH(QString, caption);
    QFETCH(QString, readonly);
    const QString path = file("<PROFILE" + attributes + "><IMAGE/></PROFILE>");
    Header header {{s("caption"), 1}, {s("readonly"), 2}, {s("other"), 3}};
    QVERIFY(ProfileXmlReader().readHeader(path, header));
    QCOMPARE(header,
             (Header {{s("caption"), caption.isNull() ? path : caption},
                      {s("readonly"), readonly},
                      {s("other"), 3}}));
    QCOMPARE(header.value(s("readonly")).userType(), int(QMetaType::QString));
}

QTEST_GUILESS_MAIN(tst_ProfileXmlReader)
#include "tst_ProfileXmlReader.moc"
