// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/elements/CVideoOverlayText.h"

#include "tests/support/FakeCapabilitiesBackend.h"
#include "tests/support/LockProbe.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"
#include "tests/support/SignalJournal.h"
#include "videooverlay/display/CVideoOverlayCapabilities.h"
#include "videooverlay/display/VideoOverlaySettings.h"

#include <QMetaProperty>
#include <QPainter>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlExpression>
#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>

using Velmar::Test::FakeCapabilitiesBackend;
using Velmar::Test::LockProbe;
using Velmar::Test::methodsOf;
using Velmar::Test::propertiesOf;
using Velmar::Test::SignalJournal;
using Velmar::Test::waitsForLock;
using Velmar::VideoOverlay::CVideoOverlayCapabilities;
using Velmar::VideoOverlay::CVideoOverlayElement;
using Velmar::VideoOverlay::CVideoOverlayText;
using Velmar::VideoOverlay::ElementParam;
using Velmar::VideoOverlay::RenderedElement;
using Velmar::VideoOverlay::VideoOverlaySettings;

using Action = std::function<void(CVideoOverlayText &)>;
Q_DECLARE_METATYPE(Action)

namespace {

constexpr QRgb ground = 0x0000ff00;
const QColor white(255, 255, 255);
const QColor orange(200, 100, 50);

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

/// A display of 1920 x 1080.
struct Display
{
    Display() { capabilities.setBackend(&backend); }

    FakeCapabilitiesBackend backend;
    CVideoOverlayCapabilities capabilities;
};

/// The default grid on it.
struct Grid : Display
{
    double right() const { return settings.marginRect().left() + settings.marginRect().width(); }

    VideoOverlaySettings settings {capabilities};
};

/// Places @p element so that a line may take @p available pixels.
void leaveRoom(CVideoOverlayElement &element, const Grid &grid, int available)
{
    element.setPosition(grid.right() - (available - 1) - 0.5, 0.0);
}

/// One pixel of straight alpha, every value 0 to 1.
struct Pixel
{
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;
    double alpha = 0.0;

    void paintOver(const QColor &color, double cover)
    {
        const double rest = alpha * (1.0 - cover);
        const double sum = cover + rest;
        if (sum > 0.0) {
            red = (color.redF() * cover + red * rest) / sum;
            green = (color.greenF() * cover + green * rest) / sum;
            blue = (color.blueF() * cover + blue * rest) / sum;
        }
        alpha = sum;
    }

    QRgb toRgba() const
    {
        if (alpha <= 0.0)
            return ground;
        return qRgba(qRound(red * 255), qRound(green * 255), qRound(blue * 255),
                     qRound(alpha * 255));
    }
};

/// How much of each pixel one line of text covers, its colour's alpha included: 0 to 255.
QImage coverage(const QSize &size, const QFont &font, const QColor &color, const QRect &rect,
                int flags, const QString &line)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setFont(font);
    painter.setPen(QColor(255, 255, 255, color.alpha()));
    painter.drawText(rect, flags, line);
    return image;
}

struct Look
{
    QColor text = white;
    QColor background = Qt::blue;
    int alignment = Qt::AlignLeft;
};

/// What @p lines look like, one after the other, each box before its text, with exact alpha.
QImage reference(const QStringList &lines, const QSize &size, const VideoOverlaySettings &settings,
                 const Look &look)
{
    const QFont font = settings.font();
    const QFontMetrics metrics(font);
    QVector<Pixel> pixels(size.width() * size.height());
    for (int i = 0; i < lines.size(); ++i) {
        if (lines.at(i).isEmpty())
            continue;
        const int top = int(i * settings.rowHeight());
        const QRect bounds = metrics.boundingRect(QRect(0, top, 0, 0), 0, lines.at(i));
        const QRect box(bounds.left(), bounds.top(), bounds.width(), int(settings.rowHeight()));
        const QImage text = coverage(size, font, look.text, bounds.translated(1, -1),
                                     look.alignment | Qt::AlignVCenter, lines.at(i));
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                Pixel &pixel = pixels[y * size.width() + x];
                if (box.contains(x, y))
                    pixel.paintOver(look.background, look.background.alphaF());
                if (const int cover = qAlpha(text.pixel(x, y)))
                    pixel.paintOver(look.text, cover / 255.0);
            }
        }
    }
    QImage image(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, pixels.at(y * size.width() + x).toRgba());
    }
    return image;
}

/// Equal in colour but for one step of rounding, which ties need.
bool isNear(QRgb a, QRgb b, int alphaTolerance)
{
    return std::abs(qRed(a) - qRed(b)) <= 1 && std::abs(qGreen(a) - qGreen(b)) <= 1
        && std::abs(qBlue(a) - qBlue(b)) <= 1 && std::abs(qAlpha(a) - qAlpha(b)) <= alphaTolerance;
}

/// Empty when the pictures are equal, otherwise what differs first. The ground is exact.
QString difference(const QImage &actual, const QImage &expected, int alphaTolerance = 0)
{
    if (actual.size() != expected.size() || actual.format() != expected.format())
        return QStringLiteral("size or format differs");
    for (int y = 0; y < actual.height(); ++y) {
        for (int x = 0; x < actual.width(); ++x) {
            const QRgb a = actual.pixel(x, y);
            const QRgb b = expected.pixel(x, y);
            if (qAlpha(b) == 0 ? a != b : !isNear(a, b, alphaTolerance)) {
                return QStringLiteral("pixel %1,%2 is %3 instead of %4")
                    .arg(x)
                    .arg(y)
                    .arg(a, 8, 16, QLatin1Char('0'))
                    .arg(b, 8, 16, QLatin1Char('0'));
            }
        }
    }
    return QString();
}

template <class Element> void setLook(Element &element, const Look &look)
{
    element.setTextColor(look.text);
    element.setBackgroundColor(look.background);
}

} // namespace

class tst_CVideoOverlayText : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void metaObject()
    {
        QCOMPARE(propertiesOf(CVideoOverlayText::staticMetaObject),
                 QStringList({QStringLiteral("QString text write textChanged()"),
                              QStringLiteral("QColor textColor write textColorChanged(QColor)"),
                              QStringLiteral("QColor backgroundColor write "
                                             "backgroundColorChanged(QColor)"),
                              QStringLiteral("QFont font fontChanged()")}));
        QCOMPARE(
            methodsOf(CVideoOverlayText::staticMetaObject),
            QStringList(
                {QStringLiteral("signal textChanged()"), QStringLiteral("signal rowChanged()"),
                 QStringLiteral("signal fontChanged()"), QStringLiteral("signal columnChanged()"),
                 QStringLiteral("signal visibleChanged()"),
                 QStringLiteral("signal backgroundColorChanged(QColor)"),
                 QStringLiteral("signal textColorChanged(QColor)"),
                 QStringLiteral("signal idChanged()"), QStringLiteral("signal alignmentChanged()"),
                 QStringLiteral("slot setBackgroundColor(QColor)"),
                 QStringLiteral("slot setTextColor(QColor)"), QStringLiteral("slot typeset()")}));
    }

    void initialValues()
    {
        CVideoOverlayText element;
        QCOMPARE(element.text(), QString());
        QCOMPARE(element.unit(), QString());
        QCOMPARE(element.font(), QFont());
        QCOMPARE(element.alignment(), 1);
        QVERIFY(!element.textColor().isValid());
        QVERIFY(!element.backgroundColor().isValid());
        QCOMPARE(element.type(), CVideoOverlayElement::Invalid);
        QVERIFY(element.getElement().getImage().isNull());
    }

    // --- the four signals that the class declares again

    void repeatedSignalsCountOnce_data()
    {
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<Action>("change");
        QTest::newRow("row") << QByteArray("row") << Action([](auto &e) { e.setRow(5); });
        QTest::newRow("column") << QByteArray("column") << Action([](auto &e) { e.setColumn(5); });
        QTest::newRow("visible") << QByteArray("visible")
                                 << Action([](auto &e) { e.setVisible(true); });
        QTest::newRow("id") << QByteArray("id") << Action([](auto &e) { e.setId(5); });
    }

    void repeatedSignalsCountOnce()
    {
        QFETCH(QByteArray, property);
        QFETCH(Action, change);
        CVideoOverlayText element;
        element.setType(CVideoOverlayElement::FreeText);
        element.setEnabled(true);
        const QMetaObject &base = CVideoOverlayElement::staticMetaObject;
        const QMetaObject &derived = CVideoOverlayText::staticMetaObject;
        const QByteArray signature = property + "Changed()";
        const int ofBase = base.indexOfSignal(signature.constData());
        const int ofDerived = derived.indexOfSignal(signature.constData());
        QVERIFY(ofBase < ofDerived);

        QSignalSpy byBaseMethod(&element, base.method(ofBase));
        QSignalSpy byDerivedMethod(&element, derived.method(ofDerived));
        QSignalSpy byString(&element, QByteArray::number(QSIGNAL_CODE) + signature);
        QSignalSpy byProperty(
            &element,
            derived.property(derived.indexOfProperty(property.constData())).notifySignal());

        QQmlEngine engine;
        QQmlEngine::setObjectOwnership(&element, QQmlEngine::CppOwnership);
        engine.rootContext()->setContextProperty(QStringLiteral("element"), &element);
        QQmlExpression binding(engine.rootContext(), nullptr,
                               QStringLiteral("element.") + QString::fromLatin1(property));
        binding.setNotifyOnValueChanged(true);
        QSignalSpy byBinding(&binding, &QQmlExpression::valueChanged);
        binding.evaluate();
        const QJSValue counter
            = engine
                  .evaluate(QStringLiteral("(function(element) {"
                                           "    var counter = { count: 0 };"
                                           "    element.%1Changed.connect(function() {"
                                           "        ++counter.count;"
                                           "    });"
                                           "    return counter;"
                                           "})")
                                .arg(QString::fromLatin1(property)))
                  .call({engine.newQObject(&element)});
        QVERIFY2(!counter.isError(), qPrintable(counter.toString()));

        change(element);
        QCOMPARE(byBaseMethod.count(), 1);
        QCOMPARE(byDerivedMethod.count(), 1);
        QCOMPARE(byString.count(), 1);
        QCOMPARE(byProperty.count(), 1);
        QCOMPARE(byBinding.count(), 1);
        QCOMPARE(counter.property(QStringLiteral("count")).toInt(), 1);
    }

    void repeatedSignalsByPointerToMember()
    {
        CVideoOverlayText element;
        element.setType(CVideoOverlayElement::FreeText);
        QSignalSpy baseRow(&element, &CVideoOverlayElement::rowChanged);
        QSignalSpy row(&element, &CVideoOverlayText::rowChanged);
        QSignalSpy baseColumn(&element, &CVideoOverlayElement::columnChanged);
        QSignalSpy column(&element, &CVideoOverlayText::columnChanged);
        QSignalSpy baseVisible(&element, &CVideoOverlayElement::visibleChanged);
        QSignalSpy visible(&element, &CVideoOverlayText::visibleChanged);
        QSignalSpy baseId(&element, &CVideoOverlayElement::idChanged);
        QSignalSpy id(&element, &CVideoOverlayText::idChanged);
        element.setRow(2);
        element.setColumn(3);
        element.setVisible(true);
        element.setTemporaryHide(true);
        element.setId(4);
        QCOMPARE(baseRow.count(), 1);
        QCOMPARE(row.count(), 1);
        QCOMPARE(baseColumn.count(), 1);
        QCOMPARE(column.count(), 1);
        QCOMPARE(baseVisible.count(), 2);
        QCOMPARE(visible.count(), 2);
        QCOMPARE(baseId.count(), 1);
        QCOMPARE(id.count(), 1);
    }

    // --- properties

    void setterEmitsOncePerChange_data()
    {
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<QVariant>("value");
        QTest::newRow("text") << QByteArray("text") << QVariant(QStringLiteral("12.4 m"));
        QTest::newRow("textColor") << QByteArray("textColor") << QVariant(orange);
        QTest::newRow("backgroundColor") << QByteArray("backgroundColor") << QVariant(orange);
        QTest::newRow("unit") << QByteArray("unit") << QVariant(QStringLiteral("m"));
        QTest::newRow("row") << QByteArray("row") << QVariant(3);
    }

    void setterEmitsOncePerChange()
    {
        QFETCH(QByteArray, property);
        QFETCH(QVariant, value);
        LockProbe<CVideoOverlayText> element;
        const QMetaObject *meta = element.metaObject();
        const QMetaProperty p = meta->property(meta->indexOfProperty(property.constData()));
        SignalJournal journal(element, CVideoOverlayText::staticMetaObject);
        bool alwaysLocked = true;
        journal.setObserver(
            [&](const QString &) { alwaysLocked = alwaysLocked && element.isLocked(); });
        QSignalSpy changed(&element, p.notifySignal());

        QVERIFY(p.write(&element, value));
        QVERIFY(p.write(&element, value)); // the same value again: silent
        QCOMPARE(p.read(&element), value);
        QCOMPARE(changed.count(), 1);
        QVERIFY(alwaysLocked);
        QVERIFY(!element.isLocked());
    }

    void fontIsReadOnly()
    {
        CVideoOverlayText element;
        QVERIFY(!element.setProperty("font", QFont(QStringLiteral("DejaVu Sans Mono"))));
    }

    void colorSignalsCarryTheNewColor()
    {
        CVideoOverlayText element;
        QSignalSpy text(&element, &CVideoOverlayText::textColorChanged);
        QSignalSpy background(&element, &CVideoOverlayText::backgroundColorChanged);
        element.setTextColor(orange);
        QCOMPARE(text.count(), 1);
        QCOMPARE(text.first().first().value<QColor>(), orange);
        QCOMPARE(background.count(), 0);
        element.setBackgroundColor(white);
        QCOMPARE(background.count(), 1);
        QCOMPARE(background.first().first().value<QColor>(), white);
        QCOMPARE(text.count(), 1);
    }

    /// Two colours of different specifications are different, even where they look alike.
    void colorsOfAnotherSpecificationDiffer()
    {
        CVideoOverlayText element;
        element.setTextColor(orange);
        QSignalSpy text(&element, &CVideoOverlayText::textColorChanged);
        element.setTextColor(orange.toHsv());
        QCOMPARE(text.count(), 1);
        QCOMPARE(element.textColor().spec(), QColor::Hsv);

        element.setBackgroundColor(orange);
        QSignalSpy background(&element, &CVideoOverlayText::backgroundColorChanged);
        element.setBackgroundColor(orange.toHsv());
        QCOMPARE(background.count(), 1);
    }

    void readersWaitForTheLock_data()
    {
        QTest::addColumn<Action>("read");
        const auto row = [](const char *name, const Action &read) { QTest::newRow(name) << read; };
        row("text", [](CVideoOverlayText &e) { e.text(); });
        row("textColor", [](CVideoOverlayText &e) { e.textColor(); });
        row("backgroundColor", [](CVideoOverlayText &e) { e.backgroundColor(); });
        row("unit", [](CVideoOverlayText &e) { e.unit(); });
        row("font", [](CVideoOverlayText &e) { e.font(); });
        row("alignment", [](CVideoOverlayText &e) { e.alignment(); });
        row("getElement", [](CVideoOverlayText &e) { e.getElement(); });
        row("getChangedProperties", [](CVideoOverlayText &e) { e.getChangedProperties(); });
        row("typeset", [](CVideoOverlayText &e) { e.typeset(); });
    }

    void readersWaitForTheLock()
    {
        QFETCH(Action, read);
        CVideoOverlayText element;
        QVERIFY(waitsForLock(element, read));
    }

    void setAlignment_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<int>("flags");
        QTest::newRow("left") << "LEFT" << 1;
        QTest::newRow("right") << "RIGHT" << 2;
        QTest::newRow("center") << "CENTER" << 132;
        QTest::newRow("lower case is another word") << "center" << 1;
        QTest::newRow("lower case right") << "right" << 1;
        QTest::newRow("blank") << "RIGHT " << 1;
        QTest::newRow("empty") << "" << 1;
    }

    void setAlignment()
    {
        QFETCH(QString, word);
        QFETCH(int, flags);
        LockProbe<CVideoOverlayText> element;
        SignalJournal journal(element, CVideoOverlayText::staticMetaObject);
        bool alwaysLocked = true;
        journal.setObserver(
            [&](const QString &) { alwaysLocked = alwaysLocked && element.isLocked(); });
        element.setAlignment(QStringLiteral("RIGHT"));
        element.setAlignment(word);
        element.setAlignment(word);
        QCOMPARE(element.alignment(), flags);
        QCOMPARE(journal.take(), words("alignmentChanged alignmentChanged alignmentChanged"));
        QVERIFY(alwaysLocked);
    }

    // --- the grid's font

    void takesTheFontOfTheGrid()
    {
        Grid grid;
        LockProbe<CVideoOverlayText> element;
        SignalJournal journal(element, CVideoOverlayText::staticMetaObject);
        bool locked = false;
        journal.setObserver([&](const QString &name) {
            if (name == QLatin1String("fontChanged"))
                locked = element.isLocked();
        });
        element.setSettings(&grid.settings);
        QCOMPARE(element.font(), grid.settings.font());
        QCOMPARE(journal.take().count(QStringLiteral("fontChanged")), 1);
        QVERIFY(locked);

        grid.settings.calculateSettings(); // always taken and announced, changed or not
        QCOMPARE(journal.take(), words("fontChanged"));
        QFont font = grid.settings.font();
        font.setPixelSize(20);
        QVERIFY(grid.settings.setFont(font));
        QCOMPARE(journal.take(), words("fontChanged"));
        QCOMPARE(element.font(), font);

        element.onSettingsChanged();
        QCOMPARE(journal.take(), words("fontChanged"));
        grid.settings.calculateSettings();
        QCOMPARE(journal.take(), words("fontChanged")); // followed once all the same
    }

    void withoutGridTheFontStays()
    {
        CVideoOverlayText element;
        SignalJournal journal(element, CVideoOverlayText::staticMetaObject);
        element.onSettingsChanged();
        element.updateFontsFromSettings();
        QCOMPARE(journal.take(), QStringList());
        QCOMPARE(element.font(), QFont());
    }

    void anotherGridDisconnectsTheFirst()
    {
        Grid first;
        Grid second;
        CVideoOverlayText element;
        element.setSettings(&first.settings);
        element.setSettings(&second.settings);
        SignalJournal journal(element, CVideoOverlayText::staticMetaObject);
        first.settings.calculateSettings();
        QCOMPARE(journal.take(), QStringList());
        second.settings.calculateSettings();
        QCOMPARE(journal.take(), words("fontChanged"));
        element.setSettings(nullptr);
        journal.take();
        second.settings.calculateSettings();
        QCOMPARE(journal.take(), QStringList());
    }

    void newFontDoesNotTypeset()
    {
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        element.setText(QStringLiteral("Tilt 12"));
        const double width = element.width();
        QFont font = grid.settings.font();
        font.setPixelSize(20);
        QVERIFY(grid.settings.setFont(font));
        QCOMPARE(element.width(), width);
        QCOMPARE(element.height(), 40.0);
        element.typeset();
        QCOMPARE(element.width(), double(QFontMetrics(font).horizontalAdvance(element.text())));
        QCOMPARE(element.height(), grid.settings.rowHeight());
    }

    void gridDiesFirst()
    {
        auto grid = std::make_unique<Grid>();
        CVideoOverlayText element;
        element.setSettings(&grid->settings);
        element.setText(QStringLiteral("Tilt 12"));
        grid.reset();
        element.setText(QStringLiteral("Tilt 13 and more\nPan"));
        QCOMPARE(element.height(), 0.0);
        QVERIFY(element.getElement().getImage().isNull());
        element.onSettingsChanged();
        Grid next;
        element.setSettings(&next.settings);
        element.typeset();
        QCOMPARE(element.height(), 80.0);
        SignalJournal journal(element, CVideoOverlayText::staticMetaObject);
        next.settings.calculateSettings();
        QCOMPARE(journal.take(), words("fontChanged")); // the new one is followed
    }

    // --- typesetting

    void typesetWithoutGrid()
    {
        CVideoOverlayText element;
        const QString longLine = QStringLiteral("word ").repeated(200);
        element.setText(QStringLiteral("a\n") + longLine);
        QCOMPARE(element.width(), double(QFontMetrics(QFont()).horizontalAdvance(longLine)));
        QCOMPARE(element.height(), 0.0);
    }

    void factsOfTheFont()
    {
        Grid grid;
        const QFontMetrics metrics(grid.settings.font());
        QCOMPARE(metrics.horizontalAdvance(QStringLiteral(" ")), 26);
        QCOMPARE(metrics.horizontalAdvance(QStringLiteral("a abcd")), 154);
        QCOMPARE(metrics.horizontalAdvance(QStringLiteral("a")) + 26
                     + metrics.horizontalAdvance(QStringLiteral("abcd")),
                 155);
    }

    void typeset_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("available");
        QTest::addColumn<QStringList>("lines");

        const auto row
            = [](const char *name, const char *text, int available, const QStringList &lines) {
                  QTest::newRow(name) << QString::fromUtf8(text) << available << lines;
              };
        const QString ellipsis(QChar(0x2026));

        row("one word", "Speed", 500, {QStringLiteral("Speed")});
        row("two words that fit", "one two", 500, {QStringLiteral("one two")});
        row("two words, room for the first", "one two", 100,
            {QStringLiteral("one"), QStringLiteral("two")});
        row("longer word second", "one three", 140,
            {QStringLiteral("one"), QStringLiteral("three")});
        row("word by word 155: strictly less", "a abcd", 155,
            {QStringLiteral("a"), QStringLiteral("abcd")});
        row("word by word 155: one pixel more", "a abcd", 156, {QStringLiteral("a abcd")});
        row("three words, two fit", "aa bb cc", 150,
            {QStringLiteral("aa bb"), QStringLiteral("cc")});
        row("blanks in a row are kept", "a  b", 500, {QStringLiteral("a  b")});
        row("leading and trailing blank", " a ", 500, {QStringLiteral(" a ")});
        row("blanks where there is no room", "abc  def", 100,
            {QStringLiteral("abc"), QString(), QStringLiteral("def")});
        row("paragraphs", "one\ntwo", 500, {QStringLiteral("one"), QStringLiteral("two")});
        row("empty paragraph in between", "one\n\ntwo", 500,
            {QStringLiteral("one"), QString(), QStringLiteral("two")});
        row("empty paragraph at the end", "one\n", 500, {QStringLiteral("one"), QString()});
        row("empty paragraph at the start", "\none", 500, {QString(), QStringLiteral("one")});
        row("lines break per paragraph", "aa bb\ncc dd", 100,
            {QStringLiteral("aa"), QStringLiteral("bb"), QStringLiteral("cc"),
             QStringLiteral("dd")});
        row("last word too wide: not elided", "Measurements", 100,
            {QStringLiteral("Measurements")});
        row("second word too wide: not elided", "a Measurements", 100,
            {QStringLiteral("a"), QStringLiteral("Measurements")});
        row("too wide in every paragraph", "Measurements\nMeasurements", 100,
            {QStringLiteral("Measurements"), QStringLiteral("Measurements")});
        row("pushed out by a following word: elided", "Measurements b", 100,
            {QStringLiteral("Mea") + ellipsis, QStringLiteral("b")});
        row("pushed out by an empty word: elided", "Measurements ", 100,
            {QStringLiteral("Mea") + ellipsis, QString()});
        row("no room for an ellipsis: empty, and stays", "Measurements b", 21,
            {QString(), QStringLiteral("b")});
        row("ellipsis wider than the room", "Measurements i", 24, {ellipsis, QStringLiteral("i")});
        row("beyond the right margin", "Measurements b", -300, {QString(), QStringLiteral("b")});
        row("tabulator is no blank", "a\tb", 30, {QStringLiteral("a\tb")});
    }

    void typeset()
    {
        QFETCH(QString, text);
        QFETCH(int, available);
        QFETCH(QStringList, lines);
        Grid grid;
        const QFontMetrics metrics(grid.settings.font());
        int widest = 0;
        for (const QString &line : qAsConst(lines))
            widest = std::max(widest, metrics.horizontalAdvance(line));
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        leaveRoom(element, grid, available);
        const Look look;
        setLook(element, look);
        element.setText(text);

        QCOMPARE(element.height(), lines.size() * 40.0);
        QCOMPARE(element.width(), double(widest));
        if (widest == 0)
            return;
        // the lines themselves show in the picture
        const QImage image = element.getElement().getImage();
        QCOMPARE(difference(image, reference(lines, image.size(), grid.settings, look)), QString());
    }

    /// The elided line is measured after eliding; the letter spacing of the ellipsis may take it
    /// beyond the available width.
    void widthOfAnElidedLine()
    {
        Grid grid;
        const QFontMetrics metrics(grid.settings.font());
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        bool exceeded = false;
        for (int available = 40; available < 120; ++available) {
            leaveRoom(element, grid, available);
            element.setText(QStringLiteral("Measurements i"));
            const QString elided
                = metrics.elidedText(QStringLiteral("Measurements"), Qt::ElideRight, available);
            QCOMPARE(element.width(), double(metrics.horizontalAdvance(elided)));
            exceeded = exceeded || element.width() > available;
            element.setText(QString());
        }
        QVERIFY(exceeded);
    }

    void availableWidthUsesThePosition()
    {
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        const double right = grid.right();
        QCOMPARE(right, 1653.5625);
        // 155 pixels are needed and 156 must be there: the integer part of what is left, plus 1
        element.setPosition(right - 155.0, 500.0);
        element.setText(QStringLiteral("a abcd"));
        QCOMPARE(element.height(), 40.0);
        element.setPosition(right - 154.9375, 500.0);
        element.typeset();
        QCOMPARE(element.height(), 80.0);
    }

    void typesetFarOut_data()
    {
        QTest::addColumn<int>("columns");
        QTest::addColumn<double>("x");
        QTest::addColumn<int>("lines");

        const double infinite = std::numeric_limits<double>::infinity();
        QTest::newRow("more columns than pixels can be counted") << 2000000000 << 0.0 << 1;
        QTest::newRow("far to the left") << 54 << -2.6e9 << 1;
        QTest::newRow("farthest to the left") << 54 << -infinite << 1;
        QTest::newRow("just beyond what an int holds") << 54 << -2147481995.0 << 1;
        QTest::newRow("far to the right") << 54 << 2.6e9 << 3;
        QTest::newRow("as far right as the elided text can count") << 54 << 67108864.0 << 3;
        QTest::newRow("farthest to the right") << 54 << infinite << 3;
        QTest::newRow("nowhere") << 54 << std::numeric_limits<double>::quiet_NaN() << 3;
    }

    /// The room for a line is counted where no int could.
    void typesetFarOut()
    {
        QFETCH(int, columns);
        QFETCH(double, x);
        QFETCH(int, lines);
        Grid grid;
        QVERIFY(grid.settings.setGrid(10, columns)); // the row count carries the column count
        const QFontMetrics metrics(grid.settings.font());
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        element.setPosition(x, 0.0);
        element.setText(QStringLiteral("abcdef b def"));
        QCOMPARE(element.height(), lines * grid.settings.rowHeight());
        // Where nothing fits, all but the last word are elided, down to nothing or one letter.
        const QString widest = lines == 1 ? element.text() : QStringLiteral("def");
        QCOMPARE(element.width(), double(metrics.horizontalAdvance(widest)));
    }

    void movingDoesNotTypeset()
    {
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        element.setText(QStringLiteral("one two"));
        leaveRoom(element, grid, 100);
        QCOMPARE(element.height(), 40.0);
        element.typeset();
        QCOMPARE(element.height(), 80.0);
    }

    void emptyTextIsOneEmptyLine()
    {
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        element.setText(QString()); // equal to the stored text
        QCOMPARE(journal.take(), QStringList());
        QCOMPARE(element.height(), 0.0);
        element.typeset();
        QCOMPARE(element.width(), 0.0);
        QCOMPARE(element.height(), 40.0);
        QCOMPARE(journal.take(), words("heightChanged"));
        QVERIFY(element.getElement().getImage().isNull());

        element.setText(QStringLiteral("a"));
        element.setText(QString());
        QCOMPARE(element.width(), 0.0);
        QCOMPARE(element.height(), 40.0);
    }

    void numberOfLinesIsNotLimitedHere()
    {
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        element.setMaxLineNumber(2);
        element.setText(QStringLiteral("a\nb\nc\nd"));
        QCOMPARE(element.height(), 160.0);
    }

    void setTextSignals()
    {
        Grid grid;
        LockProbe<CVideoOverlayText> element;
        element.setSettings(&grid.settings);
        SignalJournal journal(element, CVideoOverlayText::staticMetaObject);
        bool alwaysLocked = true;
        QStringList textInSignals;
        double heightInWidthChanged = -1.0;
        journal.setObserver([&](const QString &name) {
            alwaysLocked = alwaysLocked && element.isLocked();
            textInSignals.append(element.text());
            if (name == QLatin1String("widthChanged"))
                heightInWidthChanged = element.height();
        });
        element.setText(QStringLiteral("one\ntwo"));
        QCOMPARE(journal.take(), words("widthChanged heightChanged textChanged"));
        QCOMPARE(heightInWidthChanged, 0.0); // the old height still stands
        QCOMPARE(textInSignals.count(QStringLiteral("one\ntwo")), 3);
        QVERIFY(alwaysLocked);

        element.setText(QStringLiteral("one\ntwo"));
        QCOMPARE(journal.take(), QStringList());
        element.setText(QStringLiteral("six\nten"));
        QCOMPARE(journal.take(), words("textChanged")); // of the same size
        element.setText(QStringLiteral("six"));
        QCOMPARE(journal.take(), words("heightChanged textChanged"));
    }

    // --- the finished picture

    void elementRecord()
    {
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        element.setId(9);
        element.setType(CVideoOverlayElement::StaticText);
        element.setEnabled(true);
        element.setPosition(100.5, 40.25);
        element.setText(QStringLiteral("Pan"));
        element.setWidth(60.9);
        element.setHeight(39.9);
        const RenderedElement rendered = element.getElement();
        QCOMPARE(rendered.id(), 9);
        QCOMPARE(rendered.type(), 0);
        QCOMPARE(rendered.x(), 100.5);
        QCOMPARE(rendered.y(), 40.25);
        QCOMPARE(rendered.visible(), true);
        QCOMPARE(rendered.repaint(), true);
        QCOMPARE(rendered.getImage().size(), QSize(60, 39)); // each cut off
        QCOMPARE(rendered.getImage().format(), QImage::Format_ARGB32);
    }

    void pictureBeyondTheBound_data()
    {
        QTest::addColumn<double>("width");
        QTest::addColumn<double>("height");
        QTest::addColumn<QString>("size");

        // 512 MiB are 16384 x 8192 pixels
        QTest::newRow("one row too many") << 16384.0 << 8193.0 << "16384 x 8193";
        QTest::newRow("one column too many") << 16385.0 << 8192.0 << "16385 x 8192";
        QTest::newRow("high") << 1387.0 << 98000.0 << "1387 x 98000";
        QTest::newRow("largest") << 1e300 << 1e300 << "2147483647 x 2147483647";
    }

    /// Such a picture is not made; that is said once, and again when it happens anew.
    void pictureBeyondTheBound()
    {
        QFETCH(double, width);
        QFETCH(double, height);
        QFETCH(QString, size);
        Grid grid;
        CVideoOverlayText element;
        element.setId(9);
        element.setSettings(&grid.settings);
        element.setText(QStringLiteral("x"));
        element.setWidth(width);
        element.setHeight(height);
        const QStringList tooLarge(
            QStringLiteral("1 VideoOverlayLibrary: ID 9 text too large for a picture: %1 pixels")
                .arg(size));
        const RenderedElement rendered = element.getElement();
        QVERIFY(rendered.getImage().isNull());
        QCOMPARE(rendered.id(), 9);
        QCOMPARE(takeLog(), tooLarge);
        QVERIFY(element.getElement().getImage().isNull());
        QCOMPARE(takeLog(), QStringList());

        element.setText(QStringLiteral("fits"));
        QVERIFY(!element.getElement().getImage().isNull());
        QCOMPARE(takeLog(), QStringList());
        element.setWidth(width);
        element.setHeight(height);
        QVERIFY(element.getElement().getImage().isNull());
        QCOMPARE(takeLog(), tooLarge);
    }

    void pictureOfALongText()
    {
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        QString text;
        while (text.size() < 200000)
            text += QStringLiteral("word ");
        element.setText(text);
        QVERIFY(element.width() * element.height() * 4 > 512.0 * 1024 * 1024);
        QVERIFY(element.getElement().getImage().isNull());
        QCOMPARE(takeLog().size(), 1);
    }

    void picture_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QColor>("textColor");
        QTest::addColumn<QColor>("background");

        const QColor backgrounds[]
            = {QColor(0, 0, 255),       QColor(200, 100, 50, 128), QColor(200, 100, 50, 10),
               QColor(200, 100, 50, 1), QColor(200, 100, 50, 254), QColor(200, 100, 50, 0),
               QColor(0, 0, 0, 0)};
        const QColor texts[] = {QColor(255, 255, 255), QColor(0, 0, 0), QColor(250, 10, 120),
                                QColor(250, 10, 120, 128), QColor(250, 10, 120, 0)};
        for (const QColor &background : backgrounds) {
            for (const QColor &text : texts) {
                QTest::addRow("%s on %s", qPrintable(text.name(QColor::HexArgb)),
                              qPrintable(background.name(QColor::HexArgb)))
                    << "Agj 12,4" << text << background;
            }
        }
        const QColor translucent(200, 100, 50, 128);
        QTest::newRow("two lines") << "Ag\nBj" << white << translucent;
        QTest::newRow("line without box in between") << "Ag\n\nBj" << white << translucent;
        QTest::newRow("lines of different width") << "A\nwider\nB" << white << translucent;
        QTest::newRow("blank has a box") << "A\n \nB" << white << translucent;
        // letters that reach into the next row: its box comes later and lies over them
        const QString tall = QStringLiteral("|\u00c5g\u2588\n\u00c5|\u2588g");
        QTest::newRow("tall letters, opaque") << tall << white << QColor(0, 0, 255);
        QTest::newRow("tall letters, translucent") << tall << white << translucent;
        QTest::newRow("tall letters, nothing behind") << tall << white << QColor(0, 0, 0, 0);
        QTest::newRow("tall letters, empty row")
            << QStringLiteral("|\u2588\n\n|") << white << translucent;
        QTest::newRow("more than 64 pixels at once") << "WWWWWWWWWW" << white << translucent;
        QTest::newRow("emoji and accents")
            << QStringLiteral("21 \u00b0C \u00c4\u0301") << white << translucent;
    }

    void picture()
    {
        QFETCH(QString, text);
        QFETCH(QColor, textColor);
        QFETCH(QColor, background);
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        Look look;
        look.text = textColor;
        look.background = background;
        setLook(element, look);
        element.setText(text);
        const QImage image = element.getElement().getImage();
        QVERIFY(!image.isNull());
        const QImage expected
            = reference(text.split(QLatin1Char('\n')), image.size(), grid.settings, look);
        // where letters of two lines meet, their coverage is rounded once more
        const int alphaTolerance = text.contains(QLatin1Char('|')) ? 1 : 0;
        QCOMPARE(difference(image, expected, alphaTolerance), QString());
    }

    void alignment_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<int>("flags");
        QTest::newRow("left") << "LEFT" << int(Qt::AlignLeft);
        QTest::newRow("right") << "RIGHT" << int(Qt::AlignRight);
        QTest::newRow("center") << "CENTER" << int(Qt::AlignHCenter | Qt::AlignVCenter);
    }

    void alignment()
    {
        QFETCH(QString, word);
        QFETCH(int, flags);
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        Look look;
        look.alignment = flags;
        setLook(element, look);
        element.setAlignment(word);
        element.setText(QStringLiteral("wider line\nA"));
        const QImage image = element.getElement().getImage();
        QCOMPARE(difference(image,
                            reference({QStringLiteral("wider line"), QStringLiteral("A")},
                                      image.size(), grid.settings, look)),
                 QString());
    }

    /// Known pixels, independent of any other drawing: corners of the box, the ground beside it.
    void boxAndGround_data()
    {
        QTest::addColumn<QColor>("background");
        QTest::addColumn<QRgb>("interior");
        QTest::newRow("opaque") << QColor(0, 0, 255) << QRgb(0xff0000ff);
        QTest::newRow("translucent") << QColor(200, 100, 50, 128) << QRgb(0x80c86432);
        QTest::newRow("hardly there") << QColor(200, 100, 50, 10) << QRgb(0x0ac86432);
        QTest::newRow("least of all") << QColor(200, 100, 50, 1) << QRgb(0x01c86432);
        QTest::newRow("transparent") << QColor(200, 100, 50, 0) << ground;
        QTest::newRow("never set") << QColor() << QRgb(0xff000000);
    }

    void boxAndGround()
    {
        QFETCH(QColor, background);
        QFETCH(QRgb, interior);
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        element.setTextColor(white);
        element.setBackgroundColor(background);
        element.setText(QStringLiteral("A\n\nwider"));
        QImage image(300, 150, QImage::Format_ARGB32);
        image.fill(0xff123456);
        element.renderText(image);
        QCOMPARE(image.size(), QSize(300, 150));

        const QFontMetrics metrics(grid.settings.font());
        const QRect first = metrics.boundingRect(QRect(0, 0, 0, 0), 0, QStringLiteral("A"));
        const QRect last = metrics.boundingRect(QRect(0, 80, 0, 0), 0, QStringLiteral("wider"));
        QCOMPARE(image.pixel(0, 0), interior);
        QCOMPARE(image.pixel(first.right(), 0), interior);
        QCOMPARE(image.pixel(first.right(), 39), interior); // 40 rows high, not the letters' 42
        QCOMPARE(image.pixel(last.right(), 119), interior);
        QCOMPARE(image.pixel(first.right() + 1, 0), ground);
        QCOMPARE(image.pixel(first.right() + 1, 39), ground);
        for (int x = 0; x < image.width(); ++x) {
            QCOMPARE(image.pixel(x, 60), ground); // the empty line has no box
            QCOMPARE(image.pixel(x, 130), ground);
        }
        for (int y = 0; y < image.height(); ++y)
            QCOMPARE(image.pixel(299, y), ground);
    }

    /// Neither green from the ground nor black from nothing mixes into the letters' edges.
    void edgesOverNothingHaveTheTextColor()
    {
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        element.setTextColor(QColor(250, 10, 120));
        element.setBackgroundColor(QColor(0, 0, 0, 0));
        element.setText(QStringLiteral("Speed 12"));
        const QImage image = element.getElement().getImage();
        int partly = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QRgb pixel = image.pixel(x, y);
                if (qAlpha(pixel) == 0) {
                    QCOMPARE(pixel, ground);
                    continue;
                }
                QCOMPARE(pixel & 0x00ffffff, QRgb(0x00fa0a78));
                partly += qAlpha(pixel) < 255;
            }
        }
        QVERIFY(partly > 50);
    }

    void unsetColorsPaintBlackOnBlack()
    {
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        element.setText(QStringLiteral("Pan"));
        const QImage image = element.getElement().getImage();
        QVERIFY(!image.isNull());
        for (int x = 0; x < image.width(); ++x)
            QCOMPARE(image.pixel(x, 20), QRgb(0xff000000));
    }

    void textOfZeroWidth_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("line feed") << "\n";
        QTest::newRow("line feeds") << "\n\n\n";
    }

    void textOfZeroWidth()
    {
        QFETCH(QString, text);
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        element.setText(text);
        QCOMPARE(element.width(), 0.0);
        QCOMPARE(element.height(), (text.size() + 1) * 40.0);
        QVERIFY(element.getElement().getImage().isNull());
        QCOMPARE(takeQtWarnings(), QStringList());

        QImage image(10, 10, QImage::Format_ARGB32);
        image.fill(Qt::red);
        element.renderText(image); // there is room here, but nothing to draw
        QCOMPARE(image.pixel(5, 5), ground);
    }

    void renderEmptyText()
    {
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        QImage image(10, 10, QImage::Format_ARGB32);
        element.renderText(image);
        QVERIFY(image.isNull());
    }

    void renderIntoIsRenderText()
    {
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        element.setText(QStringLiteral("Pan"));
        QImage one(90, 40, QImage::Format_ARGB32);
        QImage other(90, 40, QImage::Format_ARGB32);
        element.renderText(one);
        static_cast<const CVideoOverlayElement &>(element).renderInto(other);
        QCOMPARE(one, other);
        element.setText(QString());
        element.renderInto(other);
        QVERIFY(other.isNull());
    }

    void imagesThatCannotBePaintedOn_data()
    {
        QTest::addColumn<QImage>("image");
        QTest::newRow("null") << QImage();
        QTest::newRow("indexed") << QImage(90, 40, QImage::Format_Indexed8);
    }

    void imagesThatCannotBePaintedOn()
    {
        QFETCH(QImage, image);
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        element.setText(QStringLiteral("Pan"));
        element.renderText(image);
        QVERIFY(image.isNull());
    }

    void otherFormats_data()
    {
        QTest::addColumn<int>("format");
        QTest::newRow("premultiplied") << int(QImage::Format_ARGB32_Premultiplied);
        QTest::newRow("without alpha") << int(QImage::Format_RGB32);
    }

    void otherFormats()
    {
        QFETCH(int, format);
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        element.setBackgroundColor(Qt::blue);
        element.setTextColor(white);
        element.setText(QStringLiteral("Pan"));
        QImage image(200, 50, QImage::Format(format));
        element.renderText(image);
        QCOMPARE(int(image.format()), format);
        QCOMPARE(image.pixel(0, 0), QRgb(0xff0000ff));
        QCOMPARE(image.pixel(199, 49),
                 image.hasAlphaChannel() ? QRgb(0x00000000) : QRgb(0xff00ff00));
    }

    /// The picture that was handed out before stays as it was.
    void picturesAreIndependent()
    {
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        element.setTextColor(white);
        element.setText(QStringLiteral("8"));
        QImage mine(26, 40, QImage::Format_ARGB32);
        mine.fill(Qt::red);
        const QImage shared = mine;
        element.renderText(mine);
        QCOMPARE(shared.pixel(3, 3), QRgb(0xffff0000));
        const QImage first = element.getElement().getImage();
        const QImage copy = first.copy();
        element.setText(QStringLiteral("1"));
        QVERIFY(element.getElement().getImage() != first);
        QCOMPARE(first, copy);
    }

    void transparencyIsNotAppliedHere()
    {
        Grid grid;
        CVideoOverlayText element;
        element.setSettings(&grid.settings);
        element.setText(QStringLiteral("8"));
        const QImage before = element.getElement().getImage();
        element.setTransparency(30);
        QCOMPARE(element.getElement().getImage(), before);
    }

    // --- change tracking

    void changesOfANewElement()
    {
        const CVideoOverlayText element;
        QStringList keys = element.getChangedProperties().keys();
        keys.sort();
        QCOMPARE(keys, words("captionEnabled maxLineNumber"));
    }

    void changedProperty_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<ElementParam>("record");
        QTest::addColumn<Action>("edit");
        QTest::addColumn<QVariant>("expected"); // invalid: not changed

        const auto record = [](const char *key, const QVariant &value) {
            return ElementParam {{QString::fromLatin1(key), value}};
        };
        const auto bound = [](const QString &column) {
            return ElementParam {{QStringLiteral("columnBound"), column},
                                 {QStringLiteral("text"), QStringLiteral("old")}};
        };
        const Action none = [](CVideoOverlayText &) {};
        const Action background = [](CVideoOverlayText &e) { e.setBackgroundColor(orange); };
        const Action color = [](CVideoOverlayText &e) { e.setTextColor(orange); };
        const Action text = [](CVideoOverlayText &e) { e.setText(QStringLiteral("new")); };
        const Action unit = [](CVideoOverlayText &e) { e.setUnit(QStringLiteral("m")); };
        const QVariant unchanged;

        QTest::newRow("background, never set")
            << "backgroundColor" << ElementParam() << none << unchanged;
        QTest::newRow("background, absent")
            << "backgroundColor" << ElementParam() << background << QVariant(orange);
        QTest::newRow("background, the same")
            << "backgroundColor" << record("backgroundColor", orange) << background << unchanged;
        QTest::newRow("background, converted")
            << "backgroundColor" << record("backgroundColor", QStringLiteral("#c86432"))
            << background << unchanged;
        QTest::newRow("background, other") << "backgroundColor" << record("backgroundColor", white)
                                           << background << QVariant(orange);
        QTest::newRow("background, other alpha")
            << "backgroundColor" << record("backgroundColor", QColor(200, 100, 50, 128))
            << background << QVariant(orange);
        QTest::newRow("text colour, the same")
            << "textColor" << record("textColor", orange) << color << unchanged;
        QTest::newRow("text colour, other")
            << "textColor" << record("textColor", white) << color << QVariant(orange);
        QTest::newRow("text, absent and empty") << "text" << ElementParam() << none << unchanged;
        QTest::newRow("text, other") << "text" << record("text", QStringLiteral("old")) << text
                                     << QVariant(QStringLiteral("new"));
        QTest::newRow("text, the same")
            << "text" << record("text", QStringLiteral("new")) << text << unchanged;
        QTest::newRow("text, a column is bound")
            << "text" << bound(QStringLiteral("SPEED")) << text << unchanged;
        QTest::newRow("text, the bound column is empty")
            << "text" << bound(QString()) << text << QVariant(QStringLiteral("new"));
        QTest::newRow("unit, absent and empty") << "unit" << ElementParam() << none << unchanged;
        QTest::newRow("unit, other") << "unit" << record("unit", QStringLiteral("ft")) << unit
                                     << QVariant(QStringLiteral("m"));
        QTest::newRow("unit, also of a bound element")
            << "unit" << bound(QStringLiteral("SPEED")) << unit << QVariant(QStringLiteral("m"));
    }

    void changedProperty()
    {
        QFETCH(QString, key);
        QFETCH(ElementParam, record);
        QFETCH(Action, edit);
        QFETCH(QVariant, expected);
        CVideoOverlayText element;
        element.setParamObject(record);
        edit(element);
        const QVariant changed = element.getChangedProperties().value(key);
        QCOMPARE(changed, expected);
        QCOMPARE(changed.userType(), expected.userType());
        QCOMPARE(element.getAllProperties().value(key),
                 expected.isValid() ? expected : record.value(key));
    }

    void applyChanges()
    {
        CVideoOverlayText element;
        element.setParamObject(ElementParam::createInspTextDefault());
        element.setText(QStringLiteral("new"));
        element.setTextColor(orange);
        element.setUnit(QStringLiteral("m"));
        element.setColumn(4);
        element.applyChangesToOrigParams();
        QVERIFY(element.getChangedProperties().isEmpty());
        const ElementParam record = element.getParamObject();
        QCOMPARE(record.value(QStringLiteral("text")), QVariant(QStringLiteral("new")));
        QCOMPARE(record.value(QStringLiteral("textColor")), QVariant(orange));
        QCOMPARE(record.value(QStringLiteral("unit")), QVariant(QStringLiteral("m")));
        QCOMPARE(record.value(QStringLiteral("col")), QVariant(4));
        QCOMPARE(record.value(QStringLiteral("textDatasource")), QVariant(QStringLiteral("DB")));
    }
};

QTEST_MAIN(tst_CVideoOverlayText)
#include "tst_CVideoOverlayText.moc"
