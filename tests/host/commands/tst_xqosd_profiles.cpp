// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString defaultProfile = QStringLiteral("Halvo push camera system - default");

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

} // namespace

/// The commands around profiles and projects, each in a process of its own: what one did, the next
/// one finds.
class tst_xqosd_profiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_directory = std::make_unique<QTemporaryDir>(); }
    void profilesAreKept();
    void profilesRefuse_data();
    void profilesRefuse();
    void shippedProfilesAreFine();
    void checkTellsFileLineAndColumn();
    void editedProfileIsOnThePicture();
    void addedTextIsOnThePicture();
    void editRefuses_data();
    void editRefuses();
    void projectIsMadeAndListed();
    void snapshotRefuses_data();
    void snapshotRefuses();

private:
    QString path(const QString &name) const { return m_directory->filePath(name); }
    Outcome run(QStringList arguments) const;
    Outcome profiles(const QStringList &words) const;

    std::unique_ptr<QTemporaryDir> m_directory;
};

Outcome tst_xqosd_profiles::run(QStringList arguments) const
{
    QProcess program;
    program.start(QStringLiteral(XQOSD_PROGRAM), arguments);
    Outcome outcome;
    if (!program.waitForFinished(110000))
        return outcome;
    outcome.status = program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -2;
    outcome.out = lines(program.readAllStandardOutput());
    outcome.err = lines(program.readAllStandardError());
    return outcome;
}

Outcome tst_xqosd_profiles::profiles(const QStringList &words) const
{
    return run(QStringList {QStringLiteral("profiles"), QStringLiteral("--settings-dir"),
                            path(QStringLiteral("settings"))}
               + words);
}

void tst_xqosd_profiles::profilesAreKept()
{
    const QString osd = path(QStringLiteral("settings/osd/"));
    const auto line = [&](bool current, bool readOnly, const QString &name) {
        return QStringLiteral("%1 %2 %3  %4%3.xml")
            .arg(current ? QStringLiteral("*") : QStringLiteral(" "),
                 readOnly ? QStringLiteral("read-only") : QStringLiteral("         "), name, osd);
    };
    const QString lean = QStringLiteral("Lean");
    Outcome outcome = profiles({});
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.err, QStringList());
    QCOMPARE(outcome.out,
             (QStringList {line(true, true, defaultProfile), line(false, false, lean),
                           line(false, false, QStringLiteral("Pictures and notes")),
                           line(false, false, QStringLiteral("Sewer inspection"))}));

    QCOMPARE(profiles({QStringLiteral("clone"), lean}).out,
             QStringList(QStringLiteral("Lean(copy)")));
    QCOMPARE(profiles({QStringLiteral("clone"), lean}).out,
             QStringList(QStringLiteral("Lean(copy 1)")));
    QCOMPARE(profiles({QStringLiteral("clone"), lean, QStringLiteral("Mine")}).out,
             QStringList(QStringLiteral("Mine")));
    QCOMPARE(profiles({QStringLiteral("rename"), QStringLiteral("Mine"), QStringLiteral("Yours")})
                 .status,
             0);
    QCOMPARE(profiles({QStringLiteral("remove"), QStringLiteral("Lean(copy)")}).status, 0);
    QCOMPARE(profiles({QStringLiteral("select"), QStringLiteral("Yours")}).status, 0);
    outcome = profiles({QStringLiteral("list")});
    QCOMPARE(outcome.out.size(), 6);
    QVERIFY(outcome.out.contains(line(true, false, QStringLiteral("Yours"))));
    QVERIFY(outcome.out.contains(line(false, false, QStringLiteral("Lean(copy 1)"))));
}

void tst_xqosd_profiles::profilesRefuse_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *words, int status, const char *error) {
        QTest::newRow(words) << QString::fromLatin1(words).split(QLatin1Char('|')) << status
                             << QStringLiteral("xqosd: ") + QString::fromLatin1(error);
    };
    row("select|None", 1, "There is no profile \"None\"");
    row("clone|None", 1, "There is no profile \"None\"");
    row("rename|None|New", 1, "There is no profile \"None\"");
    row("remove|None", 1, "There is no profile \"None\"");
    row("remove|Halvo push camera system - default", 1,
        "\"Halvo push camera system - default\" is read-only");
    row("rename|Halvo push camera system - default|New", 1,
        "\"Halvo push camera system - default\" is read-only");
    row("rename|Lean|Sewer inspection", 1,
        "\"Lean\" cannot be called \"Sewer inspection\": there is a profile of that name");
    row("copy|Lean", 2, "profiles: \"copy\" is none of list, select, clone, rename and remove");
    row("rename|Lean", 2, "profiles rename: wrong number of names");
}

void tst_xqosd_profiles::profilesRefuse()
{
    QFETCH(QStringList, words);
    QFETCH(int, status);
    QFETCH(QString, error);
    const Outcome outcome = profiles(words);
    QCOMPARE(outcome.status, status);
    QVERIFY2(outcome.err.contains(error), qPrintable(outcome.err.join(QLatin1Char('\n'))));
}

void tst_xqosd_profiles::shippedProfilesAreFine()
{
    QCOMPARE(profiles({}).status, 0); // copies them
    const Outcome outcome = run({QStringLiteral("check"), path(QStringLiteral("settings/osd"))});
    QCOMPARE(outcome.out, QStringList());
    QCOMPARE(outcome.err, QStringList());
    QCOMPARE(outcome.status, 0);
    // As they are delivered: their pictures are named from where they lie themselves.
    const Outcome delivered
        = run({QStringLiteral("check"), QStringLiteral(DATA_DIRECTORY "/profiles")});
    QCOMPARE(delivered.out, QStringList());
    QCOMPARE(delivered.status, 0);
}

void tst_xqosd_profiles::checkTellsFileLineAndColumn()
{
    const QString broken = path(QStringLiteral("broken.xml"));
    QFile file(broken);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<PROFILE>\n  <SYSTEMTEXT>\n    <COL_Bound_Column>SPED</COL_Bound_Column>\n"
               "    <ROW>27</ROW>\n  </SYSTEMTEXT>\n</PROFILE>\n");
    file.close();
    const Outcome outcome
        = run({QStringLiteral("check"), broken, path(QStringLiteral("none.xml"))});
    QCOMPARE(outcome.status, 1);
    QCOMPARE(outcome.out,
             (QStringList {broken
                               + QStringLiteral(":2:3: SYSTEMTEXT at row 27, column 0 is outside "
                                                "the grid of 27 rows and 54 columns"),
                           broken + QStringLiteral(":3:5: no system value is called \"SPED\"")}));
    QCOMPARE(outcome.err,
             QStringList(QStringLiteral("xqosd: %1: No such file or directory")
                             .arg(path(QStringLiteral("none.xml")))));
}

void tst_xqosd_profiles::editedProfileIsOnThePicture()
{
    const QString settings = path(QStringLiteral("settings"));
    const QString project = path(QStringLiteral("demo.xqproject"));
    QCOMPARE(run({QStringLiteral("project"), QStringLiteral("--file"), project,
                  QStringLiteral("--create-demo")})
                 .status,
             0);
    QCOMPARE(
        profiles({QStringLiteral("clone"), QStringLiteral("Lean"), QStringLiteral("Mine")}).status,
        0);
    const auto picture = [&](const QString &name) {
        const QString file = path(name);
        const Outcome outcome = run(
            {QStringLiteral("snapshot"), QStringLiteral("--settings-dir"), settings,
             QStringLiteral("--profile"), QStringLiteral("Mine"), QStringLiteral("--project"),
             project, QStringLiteral("--observations"), QStringLiteral("--telemetry"),
             QStringLiteral(DATA_DIRECTORY "/demo/telemetry.csv"), QStringLiteral("--transparent"),
             QStringLiteral("--at"), QStringLiteral("20"), QStringLiteral("--output"), file});
        return outcome.status == 0 ? QImage(file) : QImage();
    };
    const QImage before = picture(QStringLiteral("before.png"));
    QCOMPARE(before.size(), QSize(1920, 1080));

    const Outcome edited
        = run({QStringLiteral("edit"), QStringLiteral("--settings-dir"), settings,
               QStringLiteral("--profile"), QStringLiteral("Mine"), QStringLiteral("--element"),
               QStringLiteral("SPEED"), QStringLiteral("--set"), QStringLiteral("row=3"),
               QStringLiteral("--set"), QStringLiteral("column=20"), QStringLiteral("--set"),
               QStringLiteral("backgroundColor=#ff0000")});
    QCOMPARE(edited.err, QStringList());
    QCOMPARE(edited.status, 0);

    const QImage after = picture(QStringLiteral("after.png"));
    // 27 rows of 40 pixels, 54 columns in the middle of 1920 pixels
    const QPoint old(int(266 + 13 * 25.6875) + 4, 26 * 40 + 2);
    const QPoint now(int(266 + 20 * 25.6875) + 4, 3 * 40 + 2);
    QVERIFY(before.pixelColor(old).alpha() > 0);
    QCOMPARE(before.pixelColor(now).alpha(), 0);
    QCOMPARE(after.pixelColor(old).alpha(), 0);
    QCOMPARE(after.pixelColor(now), QColor(Qt::red));
}

void tst_xqosd_profiles::addedTextIsOnThePicture()
{
    const QStringList mine {QStringLiteral("--settings-dir"), path(QStringLiteral("settings")),
                            QStringLiteral("--profile"), QStringLiteral("Mine")};
    QCOMPARE(
        profiles({QStringLiteral("clone"), QStringLiteral("Lean"), QStringLiteral("Mine")}).status,
        0);
    const Outcome edited = run(QStringList(QStringLiteral("edit")) + mine
                               + QStringList {QStringLiteral("--add-text"), QStringLiteral("Trial"),
                                              QStringLiteral("--set"), QStringLiteral("row=10")});
    QCOMPARE(edited.err, QStringList());
    QCOMPARE(edited.status, 0);

    const QString file = path(QStringLiteral("picture.png"));
    QCOMPARE(run(QStringList(QStringLiteral("snapshot")) + mine
                 + QStringList {QStringLiteral("--transparent"), QStringLiteral("--output"), file})
                 .status,
             0);
    // White letters on blue, in the first five cells of the row.
    const QImage box = QImage(file).copy(266, 10 * 40, int(5 * 25.6875), 40);
    QCOMPARE(box.pixelColor(4, 2), QColor(Qt::blue));
    int letters = 0;
    for (int y = 0; y < box.height(); ++y) {
        for (int x = 0; x < box.width(); ++x)
            letters += box.pixelColor(x, y) == QColor(Qt::white);
    }
    QVERIFY2(letters > 100, qPrintable(QString::number(letters)));
}

void tst_xqosd_profiles::editRefuses_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *arguments, int status, const char *error) {
        QTest::newRow(arguments) << QString::fromLatin1(arguments) << status
                                 << QStringLiteral("xqosd: ") + QString::fromLatin1(error);
    };
    row("--element|SPEED|--set|row=1", 2, "--profile NAME is missing");
    row("--profile|Lean|--set|row=1", 2, "Either --element NAME or --add-text TEXT is needed");
    row("--profile|Lean|--element|SPEED", 2, "--set PROPERTY=VALUE is missing");
    row("--profile|Lean|--element|SPEED|--set|row", 2, "--set: \"row\" is not PROPERTY=VALUE");
    row("--profile|Lean|--element|SPEED|--set|row=x", 1,
        "--set: row: \"x\" is not a whole number from 0 to 26");
    row("--profile|Lean|--element|SPEED|--set|enabled=1", 1,
        "--set: enabled: \"1\" is not true or false");
    row("--profile|Lean|--element|SPEED|--set|textColor=bluish", 1,
        "--set: textColor: \"bluish\" is not a colour: #rrggbb, #aarrggbb or its name");
    row("--profile|Lean|--element|SPEED|--set|id=7", 1,
        "--set: a profile keeps no \"id\" of this element, but row, column, enabled, "
        "captionVisible, unit, textColor, backgroundColor");
    row("--profile|Lean|--element|DATE|--set|row=1", 1, "Lean: has no element \"DATE\"");
    row("--profile|Halvo push camera system - default|--element|DATE|--set|row=1", 1,
        "Halvo push camera system - default: is read-only; clone it and edit the copy");
    row("--profile|None|--element|DATE|--set|row=1", 1,
        "There is no profile \"None\"; there are: Halvo push camera system - default, Lean, "
        "Pictures and notes, Sewer inspection");
}

void tst_xqosd_profiles::editRefuses()
{
    QFETCH(QString, arguments);
    QFETCH(int, status);
    QFETCH(QString, error);
    const Outcome outcome
        = run(QStringList {QStringLiteral("edit"), QStringLiteral("--settings-dir"),
                           path(QStringLiteral("settings"))}
              + arguments.split(QLatin1Char('|')));
    QCOMPARE(outcome.status, status);
    QCOMPARE(outcome.err, QStringList(error));
}

void tst_xqosd_profiles::projectIsMadeAndListed()
{
    const QString project = path(QStringLiteral("p.xqproject"));
    const QStringList list {QStringLiteral("project"), QStringLiteral("--file"), project};
    const QStringList inspections {
        QStringLiteral("  inspection 1: 2026-03-09 08:05:30, 4711-4712"),
        QStringLiteral("  inspection 2: 2026-03-10 13:20:00, 4713"),
    };
    const QStringList german {QStringLiteral("--create-demo"), QStringLiteral("--catalog"),
                              QStringLiteral("EN13508-2-DEU-DE")};
    Outcome outcome = run(list + german);
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.out,
             QStringList(QStringLiteral("2026-014 Mill Lane catchment, catalog EN13508-2-DEU-DE"))
                 + inspections);
    QCOMPARE(run(list).out, outcome.out);
    QCOMPARE(run(list + german).status, 1); // never over an existing file
    QCOMPARE(run(list).out, outcome.out);
    outcome = run({QStringLiteral("project")});
    QCOMPARE(outcome.status, 2);
    QCOMPARE(outcome.err, QStringList(QStringLiteral("xqosd: --file FILE is missing")));
}

void tst_xqosd_profiles::snapshotRefuses_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *arguments, int status, const char *error) {
        QTest::newRow(arguments) << QString::fromLatin1(arguments) << status
                                 << QStringLiteral("xqosd: ") + QString::fromLatin1(error);
    };
    row("--project|x", 2, "--project: --profile NAME is missing");
    row("--profile|", 2, "--profile: is empty");
    row("--profile|Lean|--observations", 2, "--observations: --project FILE is missing");
    row("--profile|Lean|--inspection|1", 2, "--inspection: --project FILE is missing");
    row("--profile|Lean|--project|x|--observations", 2,
        "--observations: --telemetry CSV is missing");
}

void tst_xqosd_profiles::snapshotRefuses()
{
    QFETCH(QString, arguments);
    QFETCH(int, status);
    QFETCH(QString, error);
    const Outcome outcome
        = run(QStringList {QStringLiteral("snapshot"), QStringLiteral("--output"),
                           path(QStringLiteral("out.png")), QStringLiteral("--settings-dir"),
                           path(QStringLiteral("settings"))}
              + arguments.split(QLatin1Char('|')));
    QCOMPARE(outcome.status, status);
    QCOMPARE(outcome.err, QStringList(error));
    QVERIFY(!QFile::exists(path(QStringLiteral("out.png"))));
}

QTEST_GUILESS_MAIN(tst_xqosd_profiles)
#include "tst_xqosd_profiles.moc"
