// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace {

struct Outcome
{
    int status = -1;
    QStringList out;
    QStringList err;
};

QStringList lines(const QByteArray &output)
{
    return QString::fromUtf8(output).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QStringList words(const char *line)
{
    return QString::fromUtf8(line).split(QLatin1Char('|'));
}

} // namespace

/// What the program refuses, and what it says then: one line that names the reason, and a status.
/// What it accepts is there afterwards.
class tst_xqosd_messages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void noDisplay_data();
    void noDisplay();
    void languageWithoutCaptions_data();
    void languageWithoutCaptions();
    void editRefuses_data();
    void editRefuses();
    void editKeepsWhatItAccepts_data();
    void editKeepsWhatItAccepts();
    void editOfTwoKinds();
    void namesAreRefusedWithAReason_data();
    void namesAreRefusedWithAReason();
    void nameOrPath();
    void listIsOneLineEach();
    void emptyFileIsNoProject();
    void observationsAreAddedOnce();

private:
    QString path(const QString &name) const { return m_directory->filePath(name); }
    Outcome run(QStringList arguments, const QMap<QString, QString> &environment = {}) const;
    Outcome runHere(const QStringList &arguments) const; ///< with settings of its own
    void write(const QString &name, const QByteArray &content) const;
    QByteArray read(const QString &name) const;

    std::unique_ptr<QTemporaryDir> m_directory;
};

void tst_xqosd_messages::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
}

Outcome tst_xqosd_messages::run(QStringList arguments,
                                const QMap<QString, QString> &environment) const
{
    QProcess program;
    QProcessEnvironment all = QProcessEnvironment::systemEnvironment();
    for (auto it = environment.cbegin(); it != environment.cend(); ++it)
        all.insert(it.key(), it.value());
    program.setProcessEnvironment(all);
    program.setWorkingDirectory(m_directory->path());
    program.start(QStringLiteral(XQOSD_PROGRAM), arguments);
    Outcome outcome;
    if (!program.waitForFinished(60000))
        return outcome;
    outcome.status = program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -2;
    outcome.out = lines(program.readAllStandardOutput());
    outcome.err = lines(program.readAllStandardError());
    return outcome;
}

Outcome tst_xqosd_messages::runHere(const QStringList &arguments) const
{
    return run(arguments.mid(0, 1)
               + QStringList {QStringLiteral("--settings-dir"), QStringLiteral("settings")}
               + arguments.mid(1));
}

void tst_xqosd_messages::write(const QString &name, const QByteArray &content) const
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
}

QByteArray tst_xqosd_messages::read(const QString &name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void tst_xqosd_messages::noDisplay_data()
{
    QTest::addColumn<QString>("platform");
    QTest::addColumn<QString>("reason");
    QTest::newRow("no such platform")
        << QStringLiteral("nonsense")
        << QStringLiteral("Could not find the Qt platform plugin \"nonsense\" in \"\"");
    const QString unreachable = QStringLiteral("could not connect to display :4095");
    QTest::newRow("no server") << QStringLiteral("xcb") << unreachable;
    QTest::newRow("no server, by default") << QString() << unreachable;
}

void tst_xqosd_messages::noDisplay()
{
    QFETCH(QString, platform);
    QFETCH(QString, reason);
    const QStringList commands {QStringLiteral("live"), QStringLiteral("values")};
    for (const QString &command : commands) {
        if (platform.isEmpty() && command != QLatin1String("live"))
            continue; // shows nothing, so that it needs no display
        const Outcome outcome = run({command},
                                    {{QStringLiteral("QT_QPA_PLATFORM"), platform},
                                     {QStringLiteral("DISPLAY"), QStringLiteral(":4095")}});
        QCOMPARE(outcome.err, QStringList(QStringLiteral("xqosd: There is no display: ") + reason));
        QCOMPARE(outcome.status, 1);
    }
}

void tst_xqosd_messages::languageWithoutCaptions_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<bool>("isTold");
    QTest::newRow("none") << QStringLiteral("pt") << true;
    QTest::newRow("none, with a country") << QStringLiteral("pt_BR") << true;
    QTest::newRow("some") << QStringLiteral("de") << false;
    QTest::newRow("some, of another country") << QStringLiteral("fr_CA") << false;
}

void tst_xqosd_messages::languageWithoutCaptions()
{
    QFETCH(QString, language);
    QFETCH(bool, isTold);
    const Outcome outcome = run({QStringLiteral("values"), QStringLiteral("--language"), language});
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.err,
             isTold ? QStringList(QStringLiteral(
                 "xqosd: warning: --language: there are no captions in \"pt\", these will "
                 "be English; there are: cs, de, en, es, fr, it, nl, pl, sv"))
                    : QStringList());
}

void tst_xqosd_messages::editRefuses_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *change, const char *error) {
        QTest::newRow(change) << QString::fromUtf8(change)
                              << QStringLiteral("xqosd: --set: ") + QString::fromUtf8(error);
    };
    row("SPEED|text=fast",
        "a profile keeps no \"text\" of this element, but row, column, enabled, captionVisible, "
        "unit, textColor, backgroundColor");
    row("PRJ_Name|text=fast",
        "a profile keeps no \"text\" of this element, but row, column, enabled, textColor, "
        "backgroundColor");
    row("SPEED|timeout=5",
        "a profile keeps no \"timeout\" of this element, but row, column, enabled, "
        "captionVisible, unit, textColor, backgroundColor");
    row("PRJ_Name|caption=x",
        "a profile keeps no \"caption\" of this element, but row, column, enabled, textColor, "
        "backgroundColor");
    row("OBJ_Key|timeout=5",
        "a profile keeps no \"timeout\" of this element, but row, column, enabled, "
        "captionVisible, textColor, backgroundColor");
    row("OBS_OpCode|unit=m",
        "a profile keeps no \"unit\" of this element, but row, column, enabled, captionVisible, "
        "timeout, textColor, backgroundColor");
    row("SPEED|row=99", "row: \"99\" is not a whole number from 0 to 26");
    row("SPEED|row=-1", "row: \"-1\" is not a whole number from 0 to 26");
    row("SPEED|column=54", "column: \"54\" is not a whole number from 0 to 53");
    row("OBS_OpCode|timeout=-5", "timeout: \"-5\" is not a whole number from 0 to 86400");
    row("SPEED|unit=furlong",
        "unit: \"furlong\" is not a unit of it: m/min, ft/min, inch/min, m/s, ft/s, inch/s, cm/s");
    row("SPEED|unit=°C",
        "unit: \"°C\" is not a unit of it: m/min, ft/min, inch/min, m/s, ft/s, inch/s, cm/s");
    row("VIDEO_TIME_COUNTER|unit=m/min",
        "unit: \"m/min\" is not a pattern, such as dd.MM.yyyy or hh:mm:ss");
}

void tst_xqosd_messages::editRefuses()
{
    QFETCH(QString, change);
    QFETCH(QString, error);
    QCOMPARE(runHere(words("profiles|clone|Sewer inspection|Mine")).status, 0);
    const QByteArray before = read(QStringLiteral("settings/osd/Mine.xml"));
    const Outcome outcome
        = runHere({QStringLiteral("edit"), QStringLiteral("--profile"), QStringLiteral("Mine"),
                   QStringLiteral("--element"), change.section(QLatin1Char('|'), 0, 0),
                   QStringLiteral("--set"), change.section(QLatin1Char('|'), 1)});
    QCOMPARE(outcome.err, QStringList(error));
    QCOMPARE(outcome.status, 1);
    QCOMPARE(read(QStringLiteral("settings/osd/Mine.xml")), before);
}

void tst_xqosd_messages::editKeepsWhatItAccepts_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("stored");
    const auto row = [](const char *change, const char *stored) {
        QTest::newRow(change) << QString::fromUtf8(change) << QString::fromUtf8(stored);
    };
    row("SPEED|unit=cm/s", "<UNIT>cm/s</UNIT>");
    row("SPEED|unit=ft/s", "<UNIT>2</UNIT>");
    row("SECTION_DISTANCE_COUNTER|unit=m[.x]", "<UNIT>m[.x]</UNIT>");
    row("VIDEO_TIME_COUNTER|unit=h:mm:ss", "<UNIT>h:mm:ss</UNIT>");
    row("OBS_OpCode|timeout=11", "<TIMEOUT>11</TIMEOUT>");
    row("SPEED|row=17", "<ROW>17</ROW>");
    row("OSD_FREE_TEXT_BOX|timeout=12", "<TIMEOUT>12</TIMEOUT>");
    row("OSD_FREE_TEXT_BOX|maxlinenumber=2", "<DEFAULT_LINE_NUMBER>2</DEFAULT_LINE_NUMBER>");
    row("watermark.png|scaleFactor=0.3", "<SCALE>0.3</SCALE>");
    row("Halvo inspection|text=Trial", "<TEXT>Trial</TEXT>");
    row("SPEED|captionVisible=false", "<SHOWCAPTION>false</SHOWCAPTION>");
}

/// The file has it, and the check has nothing against it.
void tst_xqosd_messages::editKeepsWhatItAccepts()
{
    QFETCH(QString, change);
    QFETCH(QString, stored);
    const bool isLive = change.startsWith(QLatin1String("SPEED"))
        || change.startsWith(QLatin1String("VIDEO_TIME"));
    QCOMPARE(runHere(words(isLive ? "profiles|clone|Sewer inspection|Mine"
                                  : "profiles|clone|Pictures and notes|Mine"))
                 .status,
             0);
    const Outcome outcome
        = runHere({QStringLiteral("edit"), QStringLiteral("--profile"), QStringLiteral("Mine"),
                   QStringLiteral("--element"), change.section(QLatin1Char('|'), 0, 0),
                   QStringLiteral("--set"), change.section(QLatin1Char('|'), 1)});
    QCOMPARE(outcome.err, QStringList());
    QCOMPARE(outcome.status, 0);
    QVERIFY(read(QStringLiteral("settings/osd/Mine.xml")).contains(stored.toUtf8()));
    const QStringList findings = run(words("check|settings/osd/Mine.xml")).out;
    QCOMPARE(findings.filter(QStringLiteral("UNIT")), QStringList());
}

/// A column may be shown twice; what only one of the texts keeps is set of that one.
void tst_xqosd_messages::editOfTwoKinds()
{
    QVERIFY(QDir().mkpath(path(QStringLiteral("settings/osd"))));
    const QByteArray values = "<COL_Bound_Column>OBJ_Key</COL_Bound_Column>"
                              "<TDIR_Key>SECTION</TDIR_Key><TIMEOUT>3</TIMEOUT>";
    write(QStringLiteral("settings/osd/Two.xml"),
          "<PROFILE name=\"Two\"><INSPTEXT>" + values + "</INSPTEXT><INSPSTATICTEXT>" + values
              + "</INSPSTATICTEXT></PROFILE>");
    const Outcome outcome
        = runHere(words("edit|--profile|Two|--element|OBJ_Key|--set|timeout=7|--set|row=4"));
    QCOMPARE(outcome.err, QStringList());
    const QByteArray stored = read(QStringLiteral("settings/osd/Two.xml"));
    QCOMPARE(stored.count("<ROW>4</ROW>"), 2);
    QCOMPARE(stored.count("<TIMEOUT>7</TIMEOUT>"), 1);
}

void tst_xqosd_messages::namesAreRefusedWithAReason_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *arguments, const char *error) {
        QTest::newRow(arguments) << words(
            arguments) << QStringLiteral("xqosd: \"Lean\" cannot be ") + QString::fromLatin1(error);
    };
    row("rename|Lean|Sewer inspection",
        "called \"Sewer inspection\": there is a profile of that name");
    row("rename|Lean|", "called \"\": it is empty");
    row("rename|Lean|.x", "called \".x\": a name that begins with a dot is that of a hidden file");
    row("rename|Lean|a/b", "called \"a/b\": it names another folder");
    row("rename|Lean|a\nb", "called \"a\\nb\": it has line feeds or other control characters");
    row("clone|Lean|a\nb", "cloned: it has line feeds or other control characters");
    row("clone|Lean|../b", "cloned: a name that begins with a dot is that of a hidden file");
    QTest::newRow("too long") << QStringList {QStringLiteral("clone"), QStringLiteral("Lean"),
                                              QString(252, QLatin1Char('x'))}
                              << QStringLiteral(
                                     "xqosd: \"Lean\" cannot be cloned: it is too long for a file");
}

void tst_xqosd_messages::namesAreRefusedWithAReason()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    const Outcome outcome = runHere(QStringList(QStringLiteral("profiles")) + arguments);
    QVERIFY2(outcome.err.contains(error), qPrintable(outcome.err.join(QLatin1Char('\n'))));
    QCOMPARE(outcome.status, 1);
    QCOMPARE(runHere(words("profiles")).out.size(), 4);
}

void tst_xqosd_messages::nameOrPath()
{
    QCOMPARE(runHere(words("profiles|clone|settings/osd/Lean.xml|Mine")).status, 0);
    QCOMPARE(runHere(words("profiles|clone|./settings/../settings/osd/Mine.xml")).out,
             QStringList(QStringLiteral("Mine(copy)")));
    const Outcome edited
        = runHere(words("edit|--profile|settings/osd/Mine.xml|--element|SPEED|--set|row=11"));
    QCOMPARE(edited.err, QStringList());
    QCOMPARE(edited.status, 0);
    QVERIFY(read(QStringLiteral("settings/osd/Mine.xml")).contains("<ROW>11</ROW>"));
    QCOMPARE(runHere(words("profiles|clone|osd/Lean.xml")).status, 1); // from somewhere else
}

void tst_xqosd_messages::listIsOneLineEach()
{
    QCOMPARE(runHere(words("profiles")).status, 0);
    write(QStringLiteral("settings/osd/Broken.xml"), "<PROFILE name=\"one&#10;two\"/>");
    const QStringList list = runHere(words("profiles")).out;
    QCOMPARE(list.size(), 5);
    QCOMPARE(list.filter(QStringLiteral("one\\ntwo")).size(), 1);
}

void tst_xqosd_messages::emptyFileIsNoProject()
{
    const QString name = QStringLiteral("empty.xqproject");
    write(name, {});
    const Outcome outcome = run({QStringLiteral("project"), QStringLiteral("--file"), name});
    QCOMPARE(outcome.err,
             QStringList(QStringLiteral(
                 "xqosd: Cannot open project database \"empty.xqproject\": the file is empty")));
    QCOMPARE(outcome.status, 1);
    QCOMPARE(read(name), QByteArray());
    QCOMPARE(QDir(m_directory->path()).entryList(QDir::Files), QStringList(name));
}

void tst_xqosd_messages::observationsAreAddedOnce()
{
    QCOMPARE(run(words("project|--file|p.xqproject|--create-demo")).status, 0);
    const auto snapshot = [this] {
        return runHere(words("snapshot|--profile|Lean|--project|p.xqproject|--observations|"
                             "--telemetry|" DATA_DIRECTORY "/demo/telemetry.csv|--transparent|"
                             "--at|60|--size|640x480|--output|o.png"))
            .status;
    };
    QCOMPARE(snapshot(), 0);
    const QByteArray once = read(QStringLiteral("o.png"));
    const QByteArray project = read(QStringLiteral("p.xqproject"));
    QCOMPARE(snapshot(), 0);
    QCOMPARE(read(QStringLiteral("o.png")), once); // the last one is shown all the same
    QCOMPARE(read(QStringLiteral("p.xqproject")), project);
}

QTEST_GUILESS_MAIN(tst_xqosd_messages)
#include "tst_xqosd_messages.moc"
