// SPDX-License-Identifier: Apache-2.0
#include "tests/profiles/ProfileReaderTest.h"

class tst_ProfileXmlReaderLimits : public ProfileReaderTest
{
    Q_OBJECT

private Q_SLOTS:
    void refusesFilledList();
    void cannotOpen();
    void cannotParse_data();
    void cannotParse();
    void wrongNumberOfProfiles_data();
    void wrongNumberOfProfiles();
    void profileBelowAnotherRoot();
    void encodings_data();
    void encodings();
    void hostile_data();
    void hostile();
    void sizeLimit();
    void nodeLimit();
    void manyElements();
    void zeroBytes();
    void depthLimit();
};

void tst_ProfileXmlReaderLimits::refusesFilledList()
{
    ElementParam param;
    param.insert(s("row"), 5);
    Records records {param};
    QVERIFY(!ProfileXmlReader().readElements(s("/no/such/file"), records)); // not even opened
    QCOMPARE(takeLog(),
             QStringList {s("1 VideoOverlayLibrary: "
                            "Profile setting storage should be empty before load data")});
    QCOMPARE(records, Records {param});
}

void tst_ProfileXmlReaderLimits::cannotOpen()
{
    for (const QString &path : {m_dir.filePath(s("missing.xml")), m_dir.path(), QString()}) {
        const QStringList expected {s("1 VideoOverlayLibrary: "
                                      "Cannot open osd xml settings file:")
                                    + path};
        Records records;
        QVERIFY(!ProfileXmlReader().readElements(path, records));
        QCOMPARE(takeLog(), expected);
        QVERIFY(records.isEmpty());
        Header header {{s("caption"), s("old")}};
        QVERIFY(!ProfileXmlReader().readHeader(path, header));
        QCOMPARE(takeLog(), expected);
        QCOMPARE(header, (Header {{s("caption"), s("old")}}));
        takeQtWarnings(); // Qt's own about an empty name
    }
}

void tst_ProfileXmlReaderLimits::cannotParse_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("message");
    QTest::newRow("empty") << QByteArray() << s("unexpected end of file");
    QTest::newRow("cut off") << QByteArray("<PROFILE><IMAGE>") << s("unexpected end of file");
    QTest::newRow("wrong end") << QByteArray("<PROFILE></PROFIL>") << s("tag mismatch");
    QTest::newRow("two roots") << QByteArray("<PROFILE/><PROFILE/>") << s("unexpected character");
    QTest::newRow("not in the encoding that it declares")
        << QByteArray("<?xml version=\"1.0\" encoding=\"UTF-16\"?><PROFILE/>")
        << s("error occurred while parsing element");
    QTest::newRow("a zero byte in a tag")
        << QByteArray("<PRO\0FILE/>", 11) << s("error occurred while parsing element");
    QTest::newRow("no XML") << QByteArray("[profile]\nname=x\n")
                            << s("error occurred while parsing element");
    QTest::newRow("error behind elements") << QByteArray("<PROFILE><IMAGE/><IMAGE/><</PROFILE>")
                                           << s("error occurred while parsing content");
}

void tst_ProfileXmlReaderLimits::cannotParse()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, message);
    const QString path = file(content);
    const QStringList expected {s("1 VideoOverlayLibrary: ") + message};
    Records records;
    QVERIFY(!ProfileXmlReader().readElements(path, records));
    QCOMPARE(takeLog(), expected);
    QVERIFY(records.isEmpty());
    Header header;
    QVERIFY(!ProfileXmlReader().readHeader(path, header));
    QCOMPARE(takeLog(), expected);
    QVERIFY(header.isEmpty());
}

void tst_ProfileXmlReaderLimits::wrongNumberOfProfiles_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("name"); // of the header; null: the path
    QTest::newRow("none") << QByteArray("<ROOT><IMAGE/></ROOT>") << QString();
    QTest::newRow("other case") << QByteArray("<Profile name=\"a\"/>") << QString();
    QTest::newRow("two below another root")
        << QByteArray("<ROOT><PROFILE name=\"a\"/><PROFILE name=\"b\"/></ROOT>") << QString();
    QTest::newRow("one in the other")
        << QByteArray("<PROFILE name=\"a\"><IMAGE/><PROFILE name=\"b\"/></PROFILE>") << s("a");
}

void tst_ProfileXmlReaderLimits::wrongNumberOfProfiles()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, name);
    const QString path = file(content);
    Records records;
    QVERIFY(!ProfileXmlReader().readElements(path, records));
    QVERIFY(records.isEmpty());
    Header header;
    QVERIFY(ProfileXmlReader().readHeader(path, header));
    QCOMPARE(header.value(s("caption")), QVariant(name.isNull() ? path : name));
    QCOMPARE(header.value(s("readonly")), QVariant(s("false")));
    QCOMPARE(takeLog(), QStringList());
}

void tst_ProfileXmlReaderLimits::profileBelowAnotherRoot()
{
    const QString path
        = file("<ROOT><PROFILE name=\"x\" readonly=\"true\"><IMAGE/></PROFILE></ROOT>");
    Records records;
    QVERIFY(ProfileXmlReader().readElements(path, records));
    QCOMPARE(records.size(), 1);
    Header header;
    QVERIFY(ProfileXmlReader().readHeader(path, header));
    QCOMPARE(header, (Header {{s("caption"), path}, {s("readonly"), s("false")}}));
}

void tst_ProfileXmlReaderLimits::encodings_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("text");
    const QString degree = s("<PROFILE><STATICTEXT><TEXT>5 °</TEXT></STATICTEXT></PROFILE>");
    const auto utf16 = [&](QChar mark) {
        const QString text = mark.isNull() ? degree : mark + degree;
        return QByteArray(reinterpret_cast<const char *>(text.utf16()), text.size() * 2);
    };
    QTest::newRow("UTF-8") << degree.toUtf8() << s("5 °");
    QTest::newRow("UTF-8 with mark") << QByteArray("\xEF\xBB\xBF" + degree.toUtf8()) << s("5 °");
    QTest::newRow("UTF-16 with mark") << utf16(QChar(QChar::ByteOrderMark)) << s("5 °");
    for (const char *codec : {"UTF-16LE", "UTF-16BE"}) {
        QTextCodec::ConverterState plain(QTextCodec::IgnoreHeader);
        const QByteArray bytes = QTextCodec::codecForName(codec)->fromUnicode(
            degree.constData(), degree.size(), &plain);
        QTest::addRow("%s without mark", codec) << bytes << s("5 °");
    }
    QTest::newRow("declared Latin-1")
        << QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + degree.toLatin1())
        << s("5 °");
    const QByteArray latin = degree.toLatin1();
    QTest::newRow("declared in single quotes, with blanks")
        << QByteArray("<?xml version='1.0' encoding = 'ISO-8859-1'?>" + latin) << s("5 °");
    QTest::newRow("declared behind many blanks") << QByteArray(
        "<?xml version=\"1.0\"" + QByteArray(60, ' ') + "encoding=\"ISO-8859-1\"?>" + latin)
                                                 << s("5 °");
    QTest::newRow("the mark before the declaration") << QByteArray(
        "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + degree.toUtf8())
                                                     << s("5 °");
    QTest::newRow("an encoding that is not the declaration's")
        << QByteArray("<?xml version=\"1.0\"?><!-- encoding=\"ISO-8859-1\" -->" + degree.toUtf8())
        << s("5 °");
    QTest::newRow("unknown declared")
        << QByteArray("<?xml version=\"1.0\" encoding=\"nonsense\"?>" + degree.toUtf8())
        << s("5 °");
    QTest::newRow("Latin-1 undeclared") << degree.toLatin1() << s("5 \xEF\xBF\xBD");
}

void tst_ProfileXmlReaderLimits::encodings()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, text);
    Records records;
    QVERIFY(ProfileXmlReader().readElements(file(content), records));
    QCOMPARE(records.size(), 1);
    QCOMPARE(records.first().value(s("text")), QVariant(text));
}

/// What would hurt is refused in no time, with one line in the log, and nothing else happens.
void tst_ProfileXmlReaderLimits::hostile_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *name, const QByteArray &content, const char *message) {
        QTest::newRow(name) << content << s(message);
    };
    const auto nest = [](int levels) {
        return QByteArray("<A>").repeated(levels) + QByteArray("</A>").repeated(levels);
    };
    const char *declares = "declarations inside the document are not supported";
    const char *deep = "nested deeper than 200 levels";
    const char *many = "more than 500000 tags, attributes and references";
    row("entity bomb",
        "<!DOCTYPE P [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\">"
        "<!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\">]><PROFILE>&c;</PROFILE>",
        declares);
    row("external entity",
        "<!DOCTYPE P [<!ENTITY a SYSTEM \"file:///etc/passwd\">]><PROFILE>&a;</PROFILE>", declares);
    row("bracket behind quotes", "<!DOCTYPE P SYSTEM \">[\" [<!ENTITY a \"a\">]><PROFILE/>",
        declares);
    row("100,000 levels", nest(100000), deep);
    row("100,000 levels, never closed", QByteArray("<A>").repeated(100000), deep);
    row("levels behind a comment", "<P><!-- </x> <?-->" + nest(100000) + "</P>", deep);
    row("levels behind quotes", "<P a=\"/>\" b='\"/>'>" + nest(100000) + "</P>", deep);
    row("levels behind a sham comment", "<!DOCTYPE P SYSTEM \"><!--\"><P>" + nest(100000) + "</P>",
        deep);
    row("levels in UTF-7",
        "<?xml version=\"1.0\" encoding=\"UTF-7\"?>" + QByteArray("+ADw-A+AD4-").repeated(100000),
        deep);
    row("a million elements", "<PROFILE>" + QByteArray("<A/>").repeated(1000000) + "</PROFILE>",
        many);
    QByteArray attributes("<PROFILE");
    for (int i = 0; i < 600000; ++i)
        attributes += " a" + QByteArray::number(i) + "=\"\"";
    row("many attributes", attributes + "/>", many);
    row("many references", "<PROFILE>" + QByteArray("&a;").repeated(600000) + "</PROFILE>", many);
    row("zero bytes only", QByteArray(1000, '\0'), "error occurred while parsing element");
    row("a character that ends the parser's input", "<PROFILE>\xEF\xBF\xBE</PROFILE>",
        "unexpected end of file");
    row("a comment that never ends", "<PROFILE><!--" + nest(100000), "unexpected end of file");
}

void tst_ProfileXmlReaderLimits::hostile()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, message);
    const QString path = file(content);
    const QStringList expected {s("1 VideoOverlayLibrary: ") + message};
    QElapsedTimer timer;
    timer.start();
    Records records;
    QVERIFY(!ProfileXmlReader().readElements(path, records));
    QCOMPARE(takeLog(), expected);
    QVERIFY(records.isEmpty());
    Header header;
    QVERIFY(!ProfileXmlReader().readHeader(path, header));
    QCOMPARE(takeLog(), expected);
    QVERIFY(header.isEmpty());
    QVERIFY2(timer.elapsed() < 60000, qPrintable(QString::number(timer.elapsed())));
}

void tst_ProfileXmlReaderLimits::sizeLimit()
{
    const QString path = file("<PROFILE/>");
    QVERIFY(QFile::resize(path, 100 * 1024 * 1024));
    Records records;
    QVERIFY(!ProfileXmlReader().readElements(path, records));
    QCOMPARE(takeLog(), QStringList {s("1 VideoOverlayLibrary: larger than 16777216 bytes")});

    const QByteArray profile("<PROFILE><IMAGE/></PROFILE>");
    const QByteArray largest = profile + QByteArray(16777216 - profile.size(), ' ');
    QVERIFY(ProfileXmlReader().readElements(file(largest), records));
    QCOMPARE(records.size(), 1);
    // A file that cannot tell its size.
    records.clear();
    QVERIFY(!ProfileXmlReader().readElements(s("/dev/zero"), records));
    QCOMPARE(takeLog(), QStringList {s("1 VideoOverlayLibrary: larger than 16777216 bytes")});
}

void tst_ProfileXmlReaderLimits::nodeLimit()
{
    const auto profile = [](int count) { // with the tags, that is the number of nodes
        return "<PROFILE>" + QByteArray(count - 4, '=') + "<IMAGE/><X/></PROFILE>";
    };
    Records records;
    QVERIFY(ProfileXmlReader().readElements(file(profile(500000)), records));
    QCOMPARE(records.size(), 1);
    records.clear();
    QVERIFY(!ProfileXmlReader().readElements(file(profile(500001)), records));
    QCOMPARE(takeLog(),
             QStringList {s("1 VideoOverlayLibrary: "
                            "more than 500000 tags, attributes and references")});
}

void tst_ProfileXmlReaderLimits::manyElements()
{
#ifdef __SANITIZE_ADDRESS__
    constexpr int count = 10000; // every allocation walks the stack
#else
    constexpr int count = 100000;
#endif
    QElapsedTimer timer;
    timer.start();
    const Records records = read(QByteArray("<IMAGE><ROW>7</ROW></IMAGE>").repeated(count));
    QCOMPARE(records.size(), count);
    QCOMPARE(records.last().value(s("row")), QVariant(7));
    QVERIFY2(timer.elapsed() < 60000, qPrintable(QString::number(timer.elapsed())));
}

/// A zero byte is a character like others, and no end.
void tst_ProfileXmlReaderLimits::zeroBytes()
{
    const QByteArray text("<STATICTEXT><TEXT>a\0b</TEXT></STATICTEXT>", 41);
    QCOMPARE(readOne(text).value(s("text")).toString(), QString(s("a") + QChar(0) + s("b")));
}

void tst_ProfileXmlReaderLimits::depthLimit()
{
    const auto nest = [](int levels) {
        return QByteArray("<A>").repeated(levels) + QByteArray("</A>").repeated(levels);
    };
    QCOMPARE(read(nest(199) + nest(199) + "<IMAGE/>").size(), 1); // below the profile
    Records records;
    QVERIFY(
        !ProfileXmlReader().readElements(file("<PROFILE>" + nest(200) + "</PROFILE>"), records));
    QCOMPARE(takeLog(), QStringList {s("1 VideoOverlayLibrary: nested deeper than 200 levels")});
    // A document type without declarations does no harm: other programs write one.
    QVERIFY(ProfileXmlReader().readElements(
        file("<!DOCTYPE PROFILE><PROFILE>" + nest(199) + "</PROFILE>"), records));
    // An element that is closed at once is a level of its own only.
    QCOMPARE(read(QByteArray("<IMAGE/>").repeated(300)).size(), 300);
    // What looks like a tag where none can be is no level.
    const QByteArray sham = QByteArray("<A>").repeated(300);
    const QByteArray text = "<![CDATA[" + sham + "]]>";
    QCOMPARE(readOne("<STATICTEXT><TEXT>" + text + "</TEXT></STATICTEXT>").value(s("text")),
             QVariant(QString::fromLatin1(sham)));
    for (const QByteArray &hidden : {"<!--" + sham + "-->", "<!-->" + sham + "-->",
                                     "<?a " + sham + "?>", "<?a ?" + sham + "?>"})
        QCOMPARE(read(hidden + "<IMAGE/>" + hidden).size(), 1);
    // Nor does it close one, and neither does what stands in quotes, or behind the other kind of
    // them.
    const QByteArray closing = QByteArray("</A>").repeated(300);
    const QByteArray ends = QByteArray("</A>").repeated(200);
    for (const QByteArray &levels :
         {"<![CDATA[" + closing + "]]>" + nest(200), "<!--" + closing + "-->" + nest(200),
          "<?a " + closing + "?>" + nest(200), QByteArray("<A b=\"'/>\">").repeated(200) + ends,
          QByteArray("<A b='\"/>'>").repeated(200) + ends}) {
        records.clear();
        QVERIFY(
            !ProfileXmlReader().readElements(file("<PROFILE>" + levels + "</PROFILE>"), records));
        QCOMPARE(takeLog(),
                 QStringList {s("1 VideoOverlayLibrary: nested deeper than 200 levels")});
    }
}

QTEST_GUILESS_MAIN(tst_ProfileXmlReaderLimits)
#include "tst_ProfileXmlReaderLimits.moc"
