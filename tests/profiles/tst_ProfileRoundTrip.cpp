// SPDX-License-Identifier: Apache-2.0
#include "tests/support/LoggedTest.h"
#include "videooverlay/profiles/ProfileXmlReader.h"
#include "videooverlay/profiles/ProfileXmlWriter.h"

#include <QColor>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

using namespace Velmar::VideoOverlay;

namespace {

using Records = QList<ElementParam>;

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

/// Random records of the types that the reader stores, complete enough that the reader adds
/// nothing.
class Generator
{
public:
    explicit Generator(quint32 seed)
        : m_random(seed)
    {
    }

    Records records()
    {
        Records result;
        for (int count = m_random.bounded(12); count > 0; --count)
            result.append(record());
        return result;
    }

private:
    ElementParam record()
    {
        static const int types[] = {0, 1, 2, 3, 4, 6, 7};
        const int type = types[m_random.bounded(7)];
        ElementParam param;
        if (type == 7)
            return general();
        param.insert(s("type"), type);
        fill(param, {"row", "col"}, &Generator::integer);
        param.insert(s("enabled"), boolean());
        if (type == 2) {
            fill(param, {"imagePath", "caption"}, &Generator::text);
            param.insert(s("scale"), m_random.bounded(1000000) / 1000.0); // six digits
            param.insert(s("screenSnip"), boolean());
            return param;
        }
        fill(param, {"textColor", "backgroundColor"}, &Generator::color);
        if (type == 0) {
            fillStatic(param);
            return param;
        }
        fill(param, {"max_width", "max_height"}, &Generator::integer);
        if (type == 4) {
            fill(param, {"timeout", "maxLineNumber"}, &Generator::integer);
            param.insert(s("favorites"), favorites());
            param.insert(s("columnCaption"), s("")); // as the reader sets them
            param.insert(s("captionEnabled"), false);
            param.insert(s("text"), s("null"));
            return param;
        }
        param.insert(s("captionEnabled"), boolean());
        fill(param, {"columnBound", "textDatasource"}, &Generator::text);
        if (type == 1) {
            param.insert(s("unit"), unitNumToString(QString::number(m_random.bounded(1, 18))));
            param.insert(s("align"), text());
        } else {
            param.insert(s("TDIR_Key"), text());
        }
        if (type == 3)
            param.insert(s("timeout"), integer());
        return param;
    }

    ElementParam general()
    {
        ElementParam param = ElementParam::createGeneralSettingsDefault();
        fill(param, {"globalTransparency", "kx70ii_row", "kx70ii_col"}, &Generator::integer);
        fill(param, {"analogVideo", "kx70ii_state"}, &Generator::boolean);
        param.insert(s("kx70ii_units"), text());
        return param;
    }

    void fillStatic(ElementParam &param)
    {
        const bool bound = boolean().toBool();
        param.insert(bound ? s("columnBound") : s("text"), text());
        if (bound && param.value(s("columnBound")).toString().isEmpty())
            param.insert(s("text"), text());
        if (boolean().toBool())
            param.insert(s("caption"), text());
        if (boolean().toBool())
            param.insert(s("canDelete"), boolean());
        if (boolean().toBool())
            param.insert(s("staticId"), integer());
    }

    using Make = QVariant (Generator::*)();
    void fill(ElementParam &param, std::initializer_list<const char *> keys, Make make)
    {
        for (const char *key : keys)
            param.insert(s(key), (this->*make)());
    }

    QVariant integer() { return int(m_random.generate()); }
    QVariant boolean() { return m_random.bounded(2) == 1; }
    QVariant color() { return QColor::fromRgba(m_random.generate()); }
    QVariant text() { return line(); }

    /// Not of blanks alone: such a text reads as empty.
    QString line()
    {
        static const QString letters = s("aB9 &<>\"'#°äßЖ漢🙂]]>\t");
        QString result;
        for (int length = m_random.bounded(12); length > 0; --length)
            result += letter(letters);
        return result.trimmed().isEmpty() ? QString(QLatin1String("")) : result;
    }

    QString letter(const QString &letters)
    {
        const int at = m_random.bounded(letters.size());
        if (letters.at(at).isHighSurrogate())
            return letters.mid(at, 2);
        return letters.at(at).isLowSurrogate() ? QString() : QString(letters.at(at));
    }

    QVariant favorites()
    {
        QStringList result;
        for (int count = m_random.bounded(4); count > 0; --count) {
            QStringList lines;
            for (int length = m_random.bounded(1, 15); length > 0; --length)
                lines.append(line());
            result.append(lines.join(QLatin1Char('\n')));
        }
        return result;
    }

    QRandomGenerator m_random;
};

} // namespace

class tst_ProfileRoundTrip : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void randomRecordsSurvive();
    void whatIsLost_data();
    void whatIsLost();
    void percentagesChangePlaces();
    void writeReadWrite_data();
    void writeReadWrite();
    void randomDocumentsNeverFail();

private:
    QByteArray bytes()
    {
        QFile file(m_path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    bool write(const Records &records) { return ProfileXmlWriter().writeElements(m_path, records); }

    Records read()
    {
        Records records;
        if (!ProfileXmlReader().readElements(m_path, records))
            QTest::qFail("not read", __FILE__, __LINE__);
        return records;
    }

    QTemporaryDir m_dir;
    QString m_path = m_dir.filePath(s("profile.xml"));
};

void tst_ProfileRoundTrip::randomRecordsSurvive()
{
    for (quint32 seed = 1; seed <= 300; ++seed) {
        const Records records = Generator(seed).records();
        QVERIFY(write(records));
        Records expected = records;
        for (ElementParam &param : expected) { // exchanged by one round trip, on purpose
            if (param.contains(s("general")))
                qSwap(param[s("kx70ii_row")], param[s("kx70ii_col")]);
        }
        const Records again = read();
        for (int i = 0; i < qMin(again.size(), expected.size()); ++i) {
            if (again.at(i) != expected.at(i))
                qInfo() << "seed" << seed << again.at(i) << expected.at(i);
        }
        QVERIFY(again == expected);
    }
}

void tst_ProfileRoundTrip::whatIsLost_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("afterwards");
    int number = 0;
    const auto row = [&](int type, const char *key, const QVariant &value, const QVariant &after) {
        QTest::addRow("%d: %d %s", ++number, type, key) << type << s(key) << value << after;
    };
    for (int type : {1, 3, 6})
        row(type, "columnCaption", s("c"), QVariant());
    row(6, "timeout", 5, QVariant());
    row(4, "text", s("typed"), s("null"));
    row(4, "columnCaption", s("c"), s(""));
    row(4, "captionEnabled", true, false);
    row(4, "favorites", QStringList {s("x\n").repeated(14)},
        QStringList {s("x\n").repeated(13) + s("x")});
    row(2, "scale", 1.23456789, 1.23457);
    row(0, "textColor", QColor(), QColor(0, 0, 0));
    row(0, "text", s(" \n "), s(""));
    row(0, "text", s("a\001b"), s("ab"));
    row(0, "text", QString(s("a") + QChar(0xFFFE) + QChar(0xFFFF) + s("b")), s("ab"));
    row(0, "text", QString(s("a") + QChar(0) + s("b")), s("ab"));
    row(0, "text", s("a\r\nb"), s("a\nb"));
    row(0, "text", s("a\rb"), s("ab"));
    row(0, "text", QString(s("a") + QChar(0xD800) + s("b")), s("a?b"));
    row(4, "favorites", QStringList {s("a\r\nb")}, QStringList {s("a\nb")});
    row(0, "id", 5, QVariant());
    row(2, "unknown key", 5, QVariant());
    row(1, "unit", s("4"), s("m/min"));
    row(1, "unit", s("bar"), s("bar")); // kept: no number, and no unit of the table
    row(7, "id", 5, 268435455);
}

void tst_ProfileRoundTrip::whatIsLost()
{
    QFETCH(int, type);
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    QFETCH(QVariant, afterwards);
    ElementParam param;
    param.insert(s("type"), type);
    param.insert(key, value);
    QVERIFY(write({param}));
    const Records records = read();
    QCOMPARE(records.size(), 1);
    QCOMPARE(records.first().value(key), afterwards);
}

void tst_ProfileRoundTrip::percentagesChangePlaces()
{
    ElementParam param = ElementParam::createGeneralSettingsDefault();
    param.insert(s("kx70ii_row"), 11);
    param.insert(s("kx70ii_col"), 22);
    QVERIFY(write({param}));
    const QByteArray first = bytes();
    QVERIFY(first.contains("<KX70II_RowPercent>11</KX70II_RowPercent>"));
    const Records once = read();
    QCOMPARE(once.first().value(s("kx70ii_row")), QVariant(22));
    QCOMPARE(once.first().value(s("kx70ii_col")), QVariant(11));
    QVERIFY(write(once));
    QVERIFY(bytes().contains("<KX70II_RowPercent>22</KX70II_RowPercent>"));
    QVERIFY(write(read()));
    QCOMPARE(bytes(), first);
}

void tst_ProfileRoundTrip::writeReadWrite_data()
{
    QTest::addColumn<int>("seed");
    for (int seed = 1000; seed < 1020; ++seed)
        QTest::addRow("%d", seed) << seed;
}

/// Twice, because the percentages change places each time.
void tst_ProfileRoundTrip::writeReadWrite()
{
    QFETCH(int, seed);
    QVERIFY(write(Generator(quint32(seed)).records()));
    const QByteArray first = bytes();
    QVERIFY(write(read()));
    QVERIFY(write(read()));
    QCOMPARE(bytes(), first);
}

/// Whatever characters the records hold, the file stays readable and keeps its elements.
void tst_ProfileRoundTrip::randomDocumentsNeverFail()
{
    QRandomGenerator random(7);
    for (int run = 0; run < 200; ++run) {
        QString text;
        for (int i = 0; i < 20; ++i)
            text += QChar(ushort(random.bounded(0x10000)));
        ElementParam param;
        param.insert(s("type"), 0);
        param.insert(s("text"), text);
        QVERIFY(write({param, param}));
        QCOMPARE(read().size(), 2);
    }
}

QTEST_GUILESS_MAIN(tst_ProfileRoundTrip)
#include "tst_ProfileRoundTrip.moc"
