// SPDX-License-Identifier: Apache-2.0
#include "host/platform/Directories.h"
#include "host/profiles/ProfilesLock.h"
#include "tests/support/ProfileFolders.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using Velmar::Test::ProfileFolders;

namespace {

const QString defaultProfile = QStringLiteral("Halvo push camera system - default");

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

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

Outcome outcomeOf(QProcess &program)
{
    Outcome outcome;
    if (!program.waitForFinished(110000))
        return outcome;
    outcome.status = program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -2;
    outcome.out = lines(program.readAllStandardOutput());
    outcome.err = lines(program.readAllStandardError());
    return outcome;
}

} // namespace

/// What the commands say about files that cannot be read or written, and what they leave of them.
class tst_xqosd_files : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void damagedProfileIsRefused_data();
    void damagedProfileIsRefused();
    void damagedStartProfileIsRefused();
    void damagedProfilesAreNamed();
    void damagedSettingsFileIsNamed();
    void damagedDefaultIsPutBack_data();
    void damagedDefaultIsPutBack();
    void whatCannotBeStoredIsTold_data();
    void whatCannotBeStoredIsTold();
    void editsAtOnceLoseNothing();
    void lockedProfiles_data();
    void lockedProfiles();
    void pictureThatCannotBeCopied_data();
    void pictureThatCannotBeCopied();
    void nameThatIsNoText();

private:
    QString path(const QString &name) const { return m_directory->filePath(name); }
    QString profile(const QString &name) const
    {
        return path(QStringLiteral("settings/osd/%1.xml").arg(name));
    }
    QStringList command(const QStringList &words) const
    {
        return {words.first(), s("--settings-dir"), path(s("settings"))};
    }
    Outcome run(const QStringList &words) const
    {
        QProcess program;
        program.start(QStringLiteral(XQOSD_PROGRAM), command(words) + words.mid(1));
        return outcomeOf(program);
    }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void tst_xqosd_files::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    Velmar::Directories::setSettingsDirectory(path(s("settings")));
    QCOMPARE(run({s("profiles")}).status, 0); // brings the shipped ones
}

void tst_xqosd_files::damagedProfileIsRefused_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("problem"); // behind the path
    QTest::addColumn<QStringList>("words");
    const QByteArray cut = "<PROFILE>\n  <STATICTEXT>\n  </STATICTEXT>\n</PRO";
    const QString cutProblem = s(":4:6: unexpected end of file");
    const QStringList edit {s("edit"), s("--profile"), s("Torn"), s("--add-text"), s("note")};
    QTest::newRow("edit") << cut << cutProblem << edit;
    QTest::newRow("edit by path") << cut << cutProblem
                                  << QStringList {s("edit"), s("--profile"), s("%1"),
                                                  s("--add-text"), s("note")};
    QTest::newRow("edit one that is empty")
        << QByteArray() << s(":1:1: unexpected end of file") << edit;
    QTest::newRow("edit one that is over the limits")
        << "<PROFILE>" + QByteArray("<A>").repeated(300) + QByteArray("</A>").repeated(300)
            + "</PROFILE>"
        << s(":1:199: nested deeper than 200 levels") << edit;
    QTest::newRow("edit what is no profile")
        << QByteArray("<OSD/>") << s(": does not hold one profile")
        << QStringList {s("edit"), s("--profile"), s("%1"), s("--add-text"), s("note")};
    QTest::newRow("clone") << cut << cutProblem
                           << QStringList {s("profiles"), s("clone"), s("Torn")};
    QTest::newRow("select") << cut << cutProblem
                            << QStringList {s("profiles"), s("select"), s("Torn")};
    QTest::newRow("snapshot") << cut << cutProblem
                              << QStringList {s("snapshot"),      s("--profile"), s("Torn"),
                                              s("--transparent"), s("--output"),  s("%2")};
}

/// Nothing is made of it, and it stays as it was.
void tst_xqosd_files::damagedProfileIsRefused()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, problem);
    QFETCH(QStringList, words);
    const QString torn = profile(s("Torn"));
    ProfileFolders::write(torn, content);
    words.replaceInStrings(s("%1"), torn);
    words.replaceInStrings(s("%2"), path(s("out.png")));
    const QByteArray settings = ProfileFolders::read(path(s("settings/OsdSettings.xml")));
    const QStringList files = QDir(path(s("settings/osd"))).entryList(QDir::Files);

    const Outcome outcome = run(words);

    QCOMPARE(outcome.err, QStringList(s("xqosd: ") + torn + problem));
    QCOMPARE(outcome.status, 1);
    QCOMPARE(ProfileFolders::read(torn), content);
    QCOMPARE(ProfileFolders::read(path(s("settings/OsdSettings.xml"))), settings);
    QCOMPARE(QDir(path(s("settings/osd"))).entryList(QDir::Files), files);
    QVERIFY(!QFile::exists(path(s("out.png"))));
}

void tst_xqosd_files::damagedStartProfileIsRefused()
{
    QCOMPARE(run({s("profiles"), s("select"), s("Lean")}).status, 0);
    ProfileFolders::write(profile(s("Lean")), "<PROFILE>");
    const Outcome outcome = run({s("snapshot"), s("--profile"), s("start"), s("--transparent"),
                                 s("--output"), path(s("out.png"))});
    QCOMPARE(outcome.err,
             QStringList(s("xqosd: ") + profile(s("Lean")) + s(":1:10: unexpected end of file")));
    QCOMPARE(outcome.status, 1);
    QVERIFY(!QFile::exists(path(s("out.png"))));
}

void tst_xqosd_files::damagedProfilesAreNamed()
{
    ProfileFolders::write(profile(s("Torn")), "<PROFILE>");
    const QStringList warning(s("warning: Host: ") + profile(s("Torn"))
                              + s(":1:10: unexpected end of file"));
    Outcome outcome = run({s("profiles")});
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.err, warning);
    QCOMPARE(outcome.out.size(), 5);
    outcome = run({s("edit"), s("--profile"), s("Lean"), s("--add-text"), s("note")});
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.err, warning);
}

void tst_xqosd_files::damagedSettingsFileIsNamed()
{
    const QString settings = path(s("settings/OsdSettings.xml"));
    ProfileFolders::write(settings, "<OSD>");
    const Outcome outcome = run({s("profiles")});
    QCOMPARE(outcome.err,
             QStringList(s("warning: Host: ") + settings + s(": unexpected end of file")));
    QCOMPARE(outcome.status, 0);
    QVERIFY(outcome.out.first().startsWith(s("* read-only ") + defaultProfile));
    QCOMPARE(run({s("profiles")}).err, QStringList()); // it was written anew
}

void tst_xqosd_files::damagedDefaultIsPutBack_data()
{
    QTest::addColumn<bool>("hasSettings");
    QTest::newRow("named by the settings file") << true;
    QTest::newRow("without a settings file") << false;
}

void tst_xqosd_files::damagedDefaultIsPutBack()
{
    QFETCH(bool, hasSettings);
    const QByteArray whole = ProfileFolders::read(profile(defaultProfile));
    for (const QByteArray &damaged : {whole.chopped(12), QByteArray()}) {
        ProfileFolders::write(profile(defaultProfile), damaged);
        if (!hasSettings)
            QVERIFY(QFile::remove(path(s("settings/OsdSettings.xml"))));
        const Outcome outcome = run({s("snapshot"), s("--profile"), s("start"), s("--transparent"),
                                     s("--output"), path(s("out.png"))});
        QCOMPARE(outcome.status, 0);
        QCOMPARE(outcome.err.size(), 1); // that it was put back
        QCOMPARE(ProfileFolders::read(profile(defaultProfile)), whole);
    }
    const QString kept = profile(defaultProfile) + s(".damaged");
    QCOMPARE(ProfileFolders::read(kept), whole.chopped(12));
    QCOMPARE(ProfileFolders::read(kept + s(".2")), QByteArray());
    QCOMPARE(run({s("profiles")}).out.size(), 4);
}

void tst_xqosd_files::whatCannotBeStoredIsTold_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::newRow("select") << QStringList {s("select"), s("Lean")};
    QTest::newRow("rename what is current") << QStringList {s("rename"), s("Mine"), s("Yours")};
    QTest::newRow("remove what is current") << QStringList {s("remove"), s("Mine")};
}

void tst_xqosd_files::whatCannotBeStoredIsTold()
{
    QFETCH(QStringList, words);
    QCOMPARE(run({s("profiles"), s("clone"), s("Lean"), s("Mine")}).status, 0);
    QCOMPARE(run({s("profiles"), s("select"), s("Mine")}).status, 0);
    const QString settings = path(s("settings/OsdSettings.xml"));
    // Not even root can write to a directory.
    QVERIFY(QFile::remove(settings));
    QVERIFY(QDir().mkdir(settings));

    const Outcome outcome = run(QStringList(s("profiles")) + words);

    QCOMPARE(outcome.status, 1);
    QVERIFY2(outcome.err.contains(s("xqosd: ") + settings
                                  + s(": the profile to start with cannot be stored")),
             qPrintable(outcome.err.join(QLatin1Char('\n'))));
}

/// Each reads, changes and saves the whole profile.
void tst_xqosd_files::editsAtOnceLoseNothing()
{
    constexpr int pairs = 6;
    for (int pair = 0; pair < pairs; ++pair) {
        QProcess programs[2];
        for (int i = 0; i < 2; ++i) {
            const QStringList words {s("edit"), s("--profile"), s("Lean"), s("--add-text"),
                                     s("text %1 of pair %2").arg(i).arg(pair)};
            programs[i].start(QStringLiteral(XQOSD_PROGRAM), command(words) + words.mid(1));
        }
        for (QProcess &program : programs)
            QCOMPARE(outcomeOf(program).status, 0);
    }
    const QByteArray content = ProfileFolders::read(profile(s("Lean")));
    for (int pair = 0; pair < pairs; ++pair) {
        for (int i = 0; i < 2; ++i)
            QVERIFY(content.contains("<TEXT>" + s("text %1 of pair %2").arg(i).arg(pair).toUtf8()
                                     + "</TEXT>"));
    }
}

void tst_xqosd_files::lockedProfiles_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::newRow("edit") << QStringList {s("edit"), s("--profile"), s("Lean"), s("--add-text"),
                                          s("note")};
    QTest::newRow("clone") << QStringList {s("profiles"), s("clone"), s("Lean")};
}

void tst_xqosd_files::lockedProfiles()
{
    QFETCH(QStringList, words);
    const QByteArray before = ProfileFolders::read(profile(s("Lean")));
    Velmar::Host::ProfilesLock lock;
    QString error;
    QVERIFY2(lock.take(&error), qPrintable(error));
    const Outcome outcome = run(words);
    QCOMPARE(outcome.status, 1);
    QCOMPARE(outcome.err,
             QStringList(s("xqosd: %1: another program (tst_xqosd_files, process %2) is changing "
                           "the profiles; try again")
                             .arg(path(s("settings/osd")),
                                  QString::number(QCoreApplication::applicationPid()))));
    QCOMPARE(ProfileFolders::read(profile(s("Lean"))), before);
}

void tst_xqosd_files::pictureThatCannotBeCopied_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("status");
    QTest::newRow("picture") << s("--picture") << s("a.png") << 1;
    QTest::newRow("picture with the settings file's name")
        << s("--picture") << s("OsdSettings.xml") << 1;
    QTest::newRow("watermark with the settings file's name")
        << s("--watermark") << s("OsdSettings.xml") << 0; // shown from where it is
}

void tst_xqosd_files::pictureThatCannotBeCopied()
{
    QFETCH(QString, option);
    QFETCH(QString, name);
    QFETCH(int, status);
    QImage picture(30, 20, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QVERIFY(picture.save(path(name), "PNG"));
    const QString copy = path(s("settings/") + name);
    if (!QFile::exists(copy))
        QVERIFY(QDir().mkdir(copy)); // stands in the way
    const QByteArray settings = ProfileFolders::read(path(s("settings/OsdSettings.xml")));

    const Outcome outcome = run(
        {s("snapshot"), s("--transparent"), option, path(name), s("--output"), path(s("out.png"))});

    QCOMPARE(outcome.status, status);
    QCOMPARE(ProfileFolders::read(path(s("settings/OsdSettings.xml"))), settings);
    if (status != 0)
        QCOMPARE(outcome.err,
                 QStringList(s("xqosd: %1: cannot be copied to %2").arg(path(name), copy)));
}

/// It would be written under another name.
void tst_xqosd_files::nameThatIsNoText()
{
    QProcess shell;
    shell.setWorkingDirectory(m_directory->path());
    shell.start(s("/bin/sh"),
                {s("-c"),
                 s("exec \"$0\" snapshot --transparent --output \"$(printf 'a\\377.png')\""),
                 QStringLiteral(XQOSD_PROGRAM)});
    const Outcome outcome = outcomeOf(shell);
    QCOMPARE(outcome.status, 2);
    QCOMPARE(outcome.err, QStringList(s("xqosd: \"a\uFFFD.png\": is not UTF-8, as names must be")));
    QCOMPARE(QDir(m_directory->path()).entryList(QDir::Files), QStringList());
}

QTEST_GUILESS_MAIN(tst_xqosd_files)
#include "tst_xqosd_files.moc"
