// SPDX-License-Identifier: Apache-2.0
#include "host/check/ProfileCheck.h"
#include "host/feed/SystemValues.h"

#include <QByteArrayList>
#include <QImage>
#include <QTemporaryDir>
#include <QTextCodec>
#include <QtTest>

using namespace Velmar::Host;

class tst_ProfileCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void findings_data();
    void findings();
    void pictures();
    void deepNestingIsRefused();
    void largeFileIsRefused();
    void otherEncodings_data();
    void otherEncodings();

private:
    ProfileCheckContext context() const;
    QByteArrayList check(const QByteArray &document) const;

    QTemporaryDir m_directory;
};

void tst_ProfileCheck::initTestCase()
{
    QVERIFY(m_directory.isValid());
    QImage picture(100, 60, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QVERIFY(picture.save(m_directory.filePath(QStringLiteral("picture.png"))));
    QFile text(m_directory.filePath(QStringLiteral("text.png")));
    QVERIFY(text.open(QIODevice::WriteOnly));
    text.write("no picture");
}

ProfileCheckContext tst_ProfileCheck::context() const
{
    ProfileCheckContext context;
    context.cell = QSizeF(25, 40);
    context.rules.knowsValue
        = [](const QString &name) { return SystemValues::find(name) != nullptr; };
    context.rules.takesUnit = [](const QString &name, const QString &unit) {
        return SystemValues::takesUnit(*SystemValues::find(name), unit);
    };
    context.rules.knowsColumn = [](const QString &table, const QString &column) {
        return (column == QLatin1String("OBJ_Key")
                && (table.isEmpty() || table == QLatin1String("SECTION")))
            || (column == QLatin1String("PRJ_Name") && table.isEmpty());
    };
    context.captionOf = [](const QString &, const QString &) { return QStringLiteral("Speed"); };
    return context;
}

QByteArrayList tst_ProfileCheck::check(const QByteArray &document) const
{
    QByteArrayList lines;
    const QVector<ProfileFinding> findings = checkProfile(document, context());
    for (const ProfileFinding &finding : findings)
        lines.append(QByteArray::number(finding.line) + ':' + QByteArray::number(finding.column)
                     + ": " + finding.reason.toUtf8());
    return lines;
}

void tst_ProfileCheck::findings_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArrayList>("expected");

    const auto row = [](const char *name, const QByteArray &inside,
                        const QByteArrayList &expected) {
        QTest::newRow(name) << QByteArray("<PROFILE>\n" + inside + "\n</PROFILE>\n") << expected;
    };
    QTest::newRow("nothing in it")
        << QByteArray("<PROFILE readonly=\"false\" name=\"\"/>") << QByteArrayList();
    QTest::newRow("no markup") << QByteArray("hello")
                               << QByteArrayList {"1:2: Start tag expected."};
    QTest::newRow("not closed") << QByteArray("<PROFILE>\n  <GENERAL>\n</PROFILE>")
                                << QByteArrayList {"3:11: Opening and ending tag mismatch."};
    QTest::newRow("another root") << QByteArray("<OSD>\n</OSD>")
                                  << QByteArrayList {"1:1: 0 elements PROFILE instead of one"};
    QTest::newRow("two profiles") << QByteArray("<X>\n<PROFILE/><PROFILE/></X>")
                                  << QByteArrayList {"1:1: 2 elements PROFILE instead of one"};
    QTest::newRow("a profile below another root") << QByteArray("<X>\n <PROFILE><A/></PROFILE></X>")
                                                  << QByteArrayList {"2:11: unknown element A"};
    QTest::newRow("entities") << QByteArray("<!DOCTYPE P [<!ENTITY a 'b'>]>\n<PROFILE/>")
                              << QByteArrayList {"1:1: entities are declared"};
    // One parser takes it, the other, which the overlay reads with, does not.
    QTest::newRow("a letter that no name has")
        << QByteArray("<PROFILE>\n <GENERAL n\x01=\"\"/></PROFILE>")
        << QByteArrayList {"2:12: unexpected character"};
    QTest::newRow("another encoding than it says")
        << QByteArray("<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n<PROFILE/>")
        << QByteArrayList {"1:2: Start tag expected."};
    QTest::newRow("windows line ends")
        << QByteArray("<PROFILE>\r\n  <A/>\r\n   <B/>\r\n</PROFILE>")
        << QByteArrayList({"2:3: unknown element A", "3:4: unknown element B"});

    row("unknown kind", "  <CLOCK><ROW>99</ROW></CLOCK>", {"2:3: unknown element CLOCK"});
    row("kinds are case-sensitive", "<statictext/>", {"2:1: unknown element statictext"});
    row("unknown tag", "<STATICTEXT><ROW>1</ROW><ROWS>1</ROWS></STATICTEXT>",
        {"2:25: unknown element ROWS in STATICTEXT"});
    row("a tag of another kind", "<STATICTEXT><TIMEOUT>1</TIMEOUT></STATICTEXT>",
        {"2:13: unknown element TIMEOUT in STATICTEXT"});
    row("a tag twice", "<STATICTEXT>\n<ROW>1</ROW>\n<ROW>2</ROW></STATICTEXT>",
        {"4:1: ROW again: only the first counts"});
    row("unreadable numbers", "<STATICTEXT><ROW>x</ROW><COL></COL></STATICTEXT>",
        {"2:13: ROW: \"x\" is no whole number", "2:25: COL: \"\" is no whole number"});
    row("a number that is too large", "<FREETEXT><TIMEOUT>99999999999</TIMEOUT></FREETEXT>",
        {"2:11: TIMEOUT: \"99999999999\" is no whole number"});
    row("blanks around a number", "<FREETEXT><TIMEOUT> 3 </TIMEOUT></FREETEXT>", {});
    row("a switch that is read as on", "<STATICTEXT><VISIBLE>no</VISIBLE></STATICTEXT>",
        {"2:13: VISIBLE: \"no\" is no switch (true or false)"});
    for (const char *word : {"True", "FALSE", "0", "1", "yes", ""})
        row(qPrintable(QStringLiteral("a switch that is read as it says: \"%1\"")
                           .arg(QString::fromLatin1(word))),
            QByteArray("<STATICTEXT><VISIBLE>") + word + "</VISIBLE></STATICTEXT>", {});
    row("colours",
        "<STATICTEXT><BGCOLOR>#ff0000ff</BGCOLOR><FGCOLOR>blueish</FGCOLOR></STATICTEXT>",
        {"2:41: FGCOLOR: \"blueish\" is no colour"});
    const auto unit = [&](const char *name, const char *value, const char *text,
                          const QByteArrayList &expected) {
        row(name,
            QByteArray("<SYSTEMTEXT><COL_Bound_Column>") + value + "</COL_Bound_Column><UNIT>"
                + text + "</UNIT></SYSTEMTEXT>",
            expected);
    };
    unit("the user's unit", "SPEED", "", {});
    unit("a unit by its number", "SPEED", "4", {});
    unit("a unit by its name", "SPEED", "m/min", {});
    unit("a unit without a number", "SPEED", "cm/s", {});
    unit("a distance with the shorter precision", "SECTION_DISTANCE_COUNTER", "m[.x]", {});
    unit("a distance with another mark", "SECTION_DISTANCE_COUNTER", "ft[abc", {});
    unit("a length without a number", "TOTAL_DISTANCE_COUNTER", "cm", {});
    unit("a pattern of a date", "DATE", "dd.MM.yyyy", {});
    unit("a pattern with words", "DATE", "d 'of' MMMM", {});
    unit("a pattern of a time", "TIME", "hh:mm:ss t", {});
    unit("a pattern of minutes", "TIME", "m", {});
    unit("a pattern of an elapsed time", "VIDEO_TIME_COUNTER", "h:mm:ss.zzz", {});
    unit("a unit of a text, which shows none", "PAN AND TILT", "8", {});
    unit("a number of a unit", "SPEED", "18", {"2:55: UNIT: \"18\" is no unit of SPEED"});
    unit("a unit of another quantity", "SPEED", "16",
         {"2:55: UNIT: \"16\" (\xC2\xB0"
          "C) is no unit of SPEED"});
    unit("an unknown unit", "CRAWLER_PITCH", "furlong",
         {"2:63: UNIT: \"furlong\" is no unit of CRAWLER_PITCH"});
    unit("a mark of something else than a distance", "SPEED", "m/min[.x]",
         {"2:55: UNIT: \"m/min[.x]\" is no unit of SPEED"});
    unit("a unit for a date", "DATE", "4", {"2:54: UNIT: \"4\" (m/min) is no unit of DATE"});
    unit("a pattern that shows nothing", "DATE", "hh:mm",
         {"2:54: UNIT: \"hh:mm\" is no unit of DATE"});
    row("unknown value", "<SYSTEMTEXT><COL_Bound_Column>SPED</COL_Bound_Column></SYSTEMTEXT>",
        {"2:13: no system value is called \"SPED\""});
    row("a system text without a value", "<SYSTEMTEXT/>", {"2:1: no system value is called \"\""});
    row("known column",
        "<INSPTEXT><COL_Bound_Column>OBJ_Key</COL_Bound_Column>"
        "<TDIR_Key>SECTION</TDIR_Key></INSPTEXT>",
        {});
    row("a path of names: the last decides",
        "<INSPTEXT><COL_Bound_Column>INS_Object_FK.OBJ_Key</COL_Bound_Column>"
        "<TDIR_Key>SECTION</TDIR_Key></INSPTEXT>",
        {});
    row("unknown column",
        "<INSPSTATICTEXT><COL_Bound_Column>OBJ_Kez</COL_Bound_Column>"
        "<TDIR_Key>SECTION</TDIR_Key></INSPSTATICTEXT>",
        {"2:17: no catalog has a column \"OBJ_Kez\" in a table \"SECTION\""});
    row("a column of the project",
        "<STATICTEXT><COL_Bound_Column>PRJ_Name</COL_Bound_Column></STATICTEXT>", {});
    row("a static text of an unknown column",
        "<STATICTEXT><COL_Bound_Column>PRJ_Nmae</COL_Bound_Column></STATICTEXT>",
        {"2:13: no catalog has a column \"PRJ_Nmae\""});
    row("alignments",
        "<SYSTEMTEXT><COL_Bound_Column>SPEED</COL_Bound_Column><ALIGN>CENTER</ALIGN></SYSTEMTEXT>"
        "<SYSTEMTEXT><COL_Bound_Column>SPEED</COL_Bound_Column><ALIGN>center</ALIGN></SYSTEMTEXT>",
        {"2:143: ALIGN: \"center\" is none of LEFT, RIGHT and CENTER"});
    row("a source that is none",
        "<SYSTEMTEXT><COL_Bound_Column>SPEED</COL_Bound_Column><SOURCE>FILE</SOURCE></SYSTEMTEXT>",
        {"2:55: SOURCE: \"FILE\" is not DB, and there is no other source"});
    row("a text of the inspection without a source",
        "<INSPTEXT><COL_Bound_Column>OBJ_Key</COL_Bound_Column>"
        "<TDIR_Key>SECTION</TDIR_Key><SOURCE></SOURCE></INSPTEXT>",
        {"2:83: SOURCE: \"\" is not DB, and there is no other source"});
    row("favourites",
        "<FREETEXT><FAVORITES><TEXT><LINE1>a</LINE1><LINE15>b</LINE15><X/></TEXT>"
        "</FAVORITES></FREETEXT>",
        {"2:44: unknown element LINE15 in a favourite", "2:62: unknown element X in a favourite"});
    row("a line that is not found by its name",
        "<FREETEXT><FAVORITES><TEXT><LINE01>a</LINE01></TEXT></FAVORITES></FREETEXT>",
        {"2:28: unknown element LINE01 in a favourite"});
    row("general settings", "<GENERAL><GLOBAL_TRANSPARENCY>40%</GLOBAL_TRANSPARENCY></GENERAL>",
        {"2:10: GLOBAL_TRANSPARENCY: \"40%\" is no whole number"});

    row("the last cell", "<STATICTEXT><ROW>26</ROW><COL>53</COL><TEXT>x</TEXT></STATICTEXT>", {});
    row("one row too low", "<STATICTEXT><ROW>27</ROW></STATICTEXT>",
        {"2:1: STATICTEXT at row 27, column 0 is outside the grid of 27 rows and 54 columns"});
    row("left of the grid", "<STATICTEXT><COL>-1</COL></STATICTEXT>",
        {"2:1: STATICTEXT at row 0, column -1 is outside the grid of 27 rows and 54 columns"});
    row("a value that leaves the grid",
        "<SYSTEMTEXT><COL_Bound_Column>SPEED</COL_Bound_Column><COL>40</COL><WIDTH>10</WIDTH>"
        "<SHOWCAPTION>true</SHOWCAPTION></SYSTEMTEXT>", // 5 + 2 + 10 cells
        {"2:1: SYSTEMTEXT leaves the grid: it reaches row 0, column 56"});
    row("the same without its caption",
        "<SYSTEMTEXT><COL_Bound_Column>SPEED</COL_Bound_Column><COL>44</COL><WIDTH>10</WIDTH>"
        "<SHOWCAPTION>false</SHOWCAPTION></SYSTEMTEXT>",
        {});
    row("a long text breaks its lines",
        "<STATICTEXT><ROW>26</ROW><COL>50</COL><TEXT>1234 678</TEXT></STATICTEXT>",
        {"2:1: STATICTEXT leaves the grid: it reaches row 27, column 53"});
    row("a word does not break",
        "<STATICTEXT><ROW>26</ROW><COL>50</COL><TEXT>12345</TEXT></STATICTEXT>",
        {"2:1: STATICTEXT is cut off: it has a word for more than the 4 columns that are left"});

    const QByteArray box = "<STATICTEXT><ROW>1</ROW><COL>1</COL><TEXT>abc</TEXT>"
                           "<VISIBLE>true</VISIBLE></STATICTEXT>\n";
    row("overlap",
        box
            + "<STATICTEXT><ROW>1</ROW><COL>3</COL><TEXT>d</TEXT><VISIBLE>true</VISIBLE>"
              "</STATICTEXT>",
        {"3:1: STATICTEXT overlaps STATICTEXT of line 2"});
    row("neighbours",
        box
            + "<STATICTEXT><ROW>1</ROW><COL>4</COL><TEXT>d</TEXT>"
              "<VISIBLE>true</VISIBLE></STATICTEXT>",
        {});
    row("switched off",
        box
            + "<STATICTEXT><ROW>1</ROW><COL>1</COL><TEXT>d</TEXT>"
              "<VISIBLE>false</VISIBLE></STATICTEXT>",
        {});
    const auto inspection = [](const char *column, const QByteArray &rest) {
        return "<INSPSTATICTEXT><COL_Bound_Column>OBJ_Key</COL_Bound_Column>"
               "<TDIR_Key>SECTION</TDIR_Key><ROW>1</ROW><VISIBLE>true</VISIBLE><COL>"
            + QByteArray(column) + "</COL>" + rest + "</INSPSTATICTEXT>\n";
    };
    row("texts of the inspection in one place", inspection("9", {}) + inspection("9", {}),
        {"3:1: INSPSTATICTEXT overlaps INSPSTATICTEXT of line 2"});
    row("texts of the inspection beside each other", inspection("9", {}) + inspection("10", {}),
        {});
    const QByteArray captioned = "<SHOWCAPTION>true</SHOWCAPTION>";
    row("a caption of the inspection counts", inspection("9", captioned) + inspection("16", {}),
        {"3:1: INSPSTATICTEXT overlaps INSPSTATICTEXT of line 2"}); // "Speed: " and one letter
    row("what is beyond a caption does not", inspection("9", captioned) + inspection("17", {}), {});
    row("a width of the inspection counts",
        inspection("9", captioned + "<WIDTH>3</WIDTH>") + inspection("18", {}),
        {"3:1: INSPSTATICTEXT overlaps INSPSTATICTEXT of line 2"});
    row("a text of the project has its place",
        box
            + "<STATICTEXT><ROW>1</ROW><COL>3</COL><COL_Bound_Column>PRJ_Name</COL_Bound_Column>"
              "<VISIBLE>true</VISIBLE></STATICTEXT>",
        {"3:1: STATICTEXT overlaps STATICTEXT of line 2"});
    row("lines count",
        box
            + "<STATICTEXT><ROW>0</ROW><COL>1</COL><TEXT>d\ne</TEXT>"
              "<VISIBLE>true</VISIBLE></STATICTEXT>",
        {"3:1: STATICTEXT overlaps STATICTEXT of line 2"});
}

void tst_ProfileCheck::findings()
{
    QFETCH(QByteArray, document);
    QFETCH(QByteArrayList, expected);

    QCOMPARE(check(document), expected);
}

void tst_ProfileCheck::pictures()
{
    const QByteArray folder = m_directory.path().toUtf8();
    const auto picture = [&](const QByteArray &path, const QByteArray &rest) {
        return check("<PROFILE><IMAGE><PATH>" + path + "</PATH>" + rest + "</IMAGE></PROFILE>");
    };
    QCOMPARE(picture(folder + "/picture.png", "<SCALE>1</SCALE>"), QByteArrayList());
    QCOMPARE(picture(folder + "/none.png", ""),
             QByteArrayList {"1:17: there is no picture \"" + folder + "/none.png\""});
    QCOMPARE(picture(folder + "/text.png", ""),
             QByteArrayList {"1:17: \"" + folder + "/text.png\" cannot be read as a picture"});
    QCOMPARE(picture("", "<SCREENSNIP>true</SCREENSNIP>"), QByteArrayList());
    // Beside the profile, where that is known.
    ProfileCheckContext beside = context();
    const QByteArray document = "<PROFILE><IMAGE><PATH>picture.png</PATH></IMAGE></PROFILE>";
    QCOMPARE(checkProfile(document, beside).size(), 1);
    beside.directory = m_directory.path();
    QCOMPARE(checkProfile(document, beside).size(), 0);
    // 100 x 60 pixels twice as large on cells of 25 x 40: 8 columns, 3 rows
    QCOMPARE(picture(folder + "/picture.png", "<SCALE>2</SCALE><COL>46</COL><ROW>24</ROW>"),
             QByteArrayList());
    QCOMPARE(picture(folder + "/picture.png", "<SCALE>2</SCALE><COL>47</COL><ROW>25</ROW>"),
             QByteArrayList {"1:10: IMAGE leaves the grid: it reaches row 27, column 54"});
    for (const char *scale : {"1e20", "1e308"}) // more cells than can be counted
        QCOMPARE(
            picture(folder + "/picture.png", "<SCALE>" + QByteArray(scale) + "</SCALE>"),
            QByteArrayList {"1:10: IMAGE leaves the grid: it reaches row 999999, column 999999"});
    const QByteArrayList unscaled = picture(folder + "/picture.png", "<SCALE>nan</SCALE>");
    QCOMPARE(unscaled.size(), 1);
    QVERIFY(unscaled.first().endsWith(": SCALE: \"nan\" is no number"));
}

void tst_ProfileCheck::deepNestingIsRefused()
{
    QByteArray document;
    for (int i = 0; i < 100000; ++i)
        document += "<A>";
    QCOMPARE(check(document), QByteArrayList {"1:193: nested deeper than 64 levels"});
}

void tst_ProfileCheck::largeFileIsRefused()
{
    QCOMPARE(check("<PROFILE>" + QByteArray(16 * 1024 * 1024, ' ') + "</PROFILE>"),
             QByteArrayList {"1:1: larger than 16 MiB"});
}

void tst_ProfileCheck::otherEncodings_data()
{
    QTest::addColumn<QByteArray>("codec");
    QTest::addColumn<QByteArray>("declaration");
    QTest::newRow("none said") << QByteArray("UTF-8") << QByteArray();
    QTest::newRow("UTF-8") << QByteArray("UTF-8")
                           << QByteArray("<?xml version='1.0' encoding='UTF-8'?>");
    QTest::newRow("Latin 1") << QByteArray("ISO-8859-1")
                             << QByteArray("<?xml version='1.0' encoding='ISO-8859-1'?>");
    QTest::newRow("UTF-16") << QByteArray("UTF-16")
                            << QByteArray("<?xml version='1.0' encoding='UTF-16'?>");
}

void tst_ProfileCheck::otherEncodings()
{
    QFETCH(QByteArray, codec);
    QFETCH(QByteArray, declaration);
    const QString text
        = QString::fromLatin1(declaration)
        + QStringLiteral(
              "\n<PROFILE><STATICTEXT><TEXT>\u00E4\u00F6\u00FC</TEXT><X/></STATICTEXT></PROFILE>");
    if (declaration.isEmpty())
        QCOMPARE(check(text.mid(1).toUtf8()),
                 QByteArrayList {"1:38: unknown element X in STATICTEXT"});
    else
        QCOMPARE(check(QTextCodec::codecForName(codec)->fromUnicode(text)),
                 QByteArrayList {"2:38: unknown element X in STATICTEXT"});
}

QTEST_GUILESS_MAIN(tst_ProfileCheck)
#include "tst_ProfileCheck.moc"
