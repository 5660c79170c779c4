// SPDX-License-Identifier: Apache-2.0
#include "host/commands/Options.h"

#include <QtTest>

using namespace Velmar::Host;

class tst_Options : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordDefaults();
    void recordAll();
    void sources_data();
    void sources();
    void snapshot();
    void languages_data();
    void languages();
    void units();
    void input();
    void values();
    void live();
    void help_data();
    void help();
    void refused_data();
    void refused();

private:
    static QStringList words(const QString &line)
    {
        return QStringList(QStringLiteral("xqosd"))
            + line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    }
};

void tst_Options::recordDefaults()
{
    Options options;
    QString error;
    QVERIFY2(parseOptions(words(QStringLiteral("record --output a.mkv")), &options, &error),
             qPrintable(error));
    QCOMPARE(options.command, Options::Command::Record);
    QCOMPARE(options.source.kind, SourceSpec::Kind::PipeRun);
    QVERIFY(options.source.size.isEmpty());
    QCOMPARE(options.durationNs, qint64(-1));
    QCOMPARE(options.bitrateKbit, 0);
    QVERIFY(options.encoder.isEmpty());
    QVERIFY(!options.quiet);
}

void tst_Options::recordAll()
{
    Options options;
    QString error;
    QVERIFY2(
        parseOptions(words(QStringLiteral(
                         "record --source test --output a.MP4 --telemetry t.csv --picture p.png "
                         "--watermark w.png --duration 2.5 --size 640x480 --fps 30 --seed 9 "
                         "--encoder vp8enc --bitrate 4000 --png f.png --png-at 1.25 "
                         "--settings-dir s --log l.txt --quiet")),
                     &options, &error),
        qPrintable(error));
    QCOMPARE(options.source.kind, SourceSpec::Kind::Test);
    QCOMPARE(options.source.size, QSize(640, 480));
    QCOMPARE(options.source.framesPerSecond, 30);
    QCOMPARE(options.source.seed, 9u);
    QCOMPARE(options.outputPath, QStringLiteral("a.MP4"));
    QCOMPARE(options.telemetryPath, QStringLiteral("t.csv"));
    QCOMPARE(options.picturePath, QStringLiteral("p.png"));
    QCOMPARE(options.watermarkPath, QStringLiteral("w.png"));
    QCOMPARE(options.durationNs, qint64(2500000000));
    QCOMPARE(options.encoder, QByteArray("vp8enc"));
    QCOMPARE(options.bitrateKbit, 4000);
    QCOMPARE(options.pngPath, QStringLiteral("f.png"));
    QCOMPARE(options.pngAtNs, qint64(1250000000));
    QCOMPARE(options.settingsDirectory, QStringLiteral("s"));
    QCOMPARE(options.logPath, QStringLiteral("l.txt"));
    QVERIFY(options.quiet);
}

void tst_Options::sources_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("kind");
    QTest::newRow("pipe") << QStringLiteral("pipe") << int(SourceSpec::Kind::PipeRun);
    QTest::newRow("test") << QStringLiteral("test") << int(SourceSpec::Kind::Test);
    QTest::newRow("camera") << QStringLiteral("/dev/video3") << int(SourceSpec::Kind::Device);
    QTest::newRow("file") << QStringLiteral("run.avi") << int(SourceSpec::Kind::File);
    QTest::newRow("a file named like a source")
        << QStringLiteral("./test") << int(SourceSpec::Kind::File);
}

void tst_Options::sources()
{
    QFETCH(QString, text);
    QFETCH(int, kind);
    const SourceSpec spec = SourceSpec::fromText(text);
    QCOMPARE(int(spec.kind), kind);
    QCOMPARE(spec.name(), text);
}

void tst_Options::snapshot()
{
    Options options;
    QString error;
    QVERIFY2(parseOptions(words(QStringLiteral("snapshot --transparent --at 3 --output o.png")),
                          &options, &error),
             qPrintable(error));
    QCOMPARE(options.command, Options::Command::Snapshot);
    QCOMPARE(options.atNs, qint64(3000000000));
    QVERIFY(options.transparent);
}

void tst_Options::languages_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("name");
    for (const char *text : {"de", "DE", "deu", "DEU", "GER", "de_DE", "de-DE", "de_DE.UTF-8"})
        QTest::newRow(text) << QString::fromLatin1(text) << QStringLiteral("de_DE");
    QTest::newRow("Swiss") << QStringLiteral("FRE_CH") << QStringLiteral("fr_CH");
    QTest::newRow("Swedish") << QStringLiteral("swe") << QStringLiteral("sv_SE");
    QTest::newRow("without captions") << QStringLiteral("is") << QStringLiteral("is_IS");
}

void tst_Options::languages()
{
    QFETCH(QString, text);
    QFETCH(QString, name);
    Options options;
    QString error;
    QVERIFY2(parseOptions(words(QStringLiteral("snapshot --output o.png --language ") + text),
                          &options, &error),
             qPrintable(error));
    QVERIFY(options.choices.locale());
    QCOMPARE(options.choices.locale()->name(), name);
}

void tst_Options::units()
{
    using Velmar::Shared::LocaleSettings;
    Options options;
    QString error;
    QVERIFY2(parseOptions(words(QStringLiteral("values --units "
                                               "imperial,speed=m/s,temperature=C,angle=%")),
                          &options, &error),
             qPrintable(error));
    LocaleSettings::reset();
    options.choices.apply();
    QCOMPARE(LocaleSettings::unit(LocaleSettings::Quantity::Distance), QStringLiteral("ft"));
    QCOMPARE(LocaleSettings::unit(LocaleSettings::Quantity::Speed), QStringLiteral("m/s"));
    QCOMPARE(LocaleSettings::unit(LocaleSettings::Quantity::Temperature),
             QStringLiteral("\u00B0C"));
    QCOMPARE(LocaleSettings::unit(LocaleSettings::Quantity::Angle), QStringLiteral("%"));
    // What comes later wins.
    QVERIFY(
        parseOptions(words(QStringLiteral("values --units speed=m/s,metric")), &options, &error));
    options.choices.apply();
    QCOMPARE(LocaleSettings::unit(LocaleSettings::Quantity::Speed), QStringLiteral("m/min"));
    LocaleSettings::reset();
}

void tst_Options::input()
{
    Options options;
    QString error;
    QVERIFY(parseOptions(words(QStringLiteral("record --output a.mkv --input stdin")), &options,
                         &error));
    QVERIFY(options.inputFromPipe);
    QVERIFY(options.inputSocket.isEmpty());
    Options other;
    QVERIFY(parseOptions(words(QStringLiteral("record --output a.mkv --input socket:/run/x:y")),
                         &other, &error));
    QVERIFY(!other.inputFromPipe);
    QCOMPARE(other.inputSocket, QStringLiteral("/run/x:y"));
}

void tst_Options::values()
{
    Options options;
    QString error;
    QVERIFY(
        parseOptions(words(QStringLiteral("values --language de --log l.txt")), &options, &error));
    QCOMPARE(options.command, Options::Command::Values);
    QCOMPARE(options.logPath, QStringLiteral("l.txt"));
}

void tst_Options::live()
{
    Options options;
    QString error;
    QVERIFY2(parseOptions(words(QStringLiteral("live")), &options, &error), qPrintable(error));
    QCOMPARE(options.command, Options::Command::Live);
    QCOMPARE(options.source.kind, SourceSpec::Kind::PipeRun);
    QVERIFY(options.outputPath.isEmpty() && options.projectDirectory.isEmpty()
            && options.recordingDirectory.isEmpty() && options.screenshotDirectory.isEmpty());

    QVERIFY2(parseOptions(words(QStringLiteral(
                              "live --source test --size 640x480 --fps 30 --telemetry t.csv "
                              "--projects p --recordings r --screenshots s --input stdin "
                              "--language de --settings-dir d")),
                          &options, &error),
             qPrintable(error));
    QCOMPARE(options.source.kind, SourceSpec::Kind::Test);
    QCOMPARE(options.source.size, QSize(640, 480));
    QCOMPARE(options.source.framesPerSecond, 30);
    QCOMPARE(options.telemetryPath, QStringLiteral("t.csv"));
    QCOMPARE(options.projectDirectory, QStringLiteral("p"));
    QCOMPARE(options.recordingDirectory, QStringLiteral("r"));
    QCOMPARE(options.screenshotDirectory, QStringLiteral("s"));
    QVERIFY(options.inputFromPipe);
    QCOMPARE(options.settingsDirectory, QStringLiteral("d"));
}

void tst_Options::help_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("mentions");
    for (const char *command :
         {"record", "snapshot", "live", "values", "profiles", "edit", "check", "project"})
        QTest::addRow("program: %s", command)
            << QStringLiteral("--help") << QStringLiteral("\n  %1 ").arg(QLatin1String(command));
    QTest::newRow("record") << QStringLiteral("record --help") << QStringLiteral("--png-at");
    QTest::newRow("live") << QStringLiteral("live --help") << QStringLiteral("--screenshots");
    QTest::newRow("values") << QStringLiteral("values --help") << QStringLiteral("--units");
    QTest::newRow("name of the command")
        << QStringLiteral("snapshot --help") << QStringLiteral("Usage: xqosd snapshot [options]\n");
    QTest::newRow("snapshot") << QStringLiteral("snapshot -h") << QStringLiteral("--transparent");
}

void tst_Options::help()
{
    QFETCH(QString, line);
    QFETCH(QString, mentions);
    Options options;
    QString error;
    QVERIFY2(parseOptions(words(line), &options, &error), qPrintable(error));
    QCOMPARE(options.command, Options::Command::Help);
    QVERIFY(options.helpText.contains(mentions));
}

void tst_Options::refused_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("mentions");
    const QString record = QStringLiteral("record --output a.mkv ");
    QTest::newRow("no command") << QString() << QStringLiteral("No command");
    QTest::newRow("unknown command") << QStringLiteral("play") << QStringLiteral("play");
    QTest::newRow("unknown option")
        << record + QStringLiteral("--speed 2") << QStringLiteral("speed");
    QTest::newRow("stray word") << record + QStringLiteral("b.mkv") << QStringLiteral("b.mkv");
    QTest::newRow("no output") << QStringLiteral("record") << QStringLiteral("--output");
    QTest::newRow("unknown container")
        << QStringLiteral("record --output a.avi") << QStringLiteral(".mkv or .mp4");
    for (const char *size :
         {"640", "640x", "0x480", "640x-480", "640x480x3", "100000x100", "63x64"})
        QTest::addRow("size %s", size) << record + QStringLiteral("--size ") + QLatin1String(size)
                                       << QString::fromLatin1(size);
    for (const char *fps : {"0", "-1", "25.5", "x", "1000"})
        QTest::addRow("fps %s", fps)
            << record + QStringLiteral("--fps ") + QLatin1String(fps) << QStringLiteral("--fps");
    for (const char *seconds : {"0", "-1", "nan", "inf", "1e99", "ten"})
        QTest::addRow("duration %s", seconds) << record + QStringLiteral("--duration ")
                + QLatin1String(seconds) << QStringLiteral("--duration");
    QTest::newRow("seed") << record + QStringLiteral("--seed -1") << QStringLiteral("--seed");
    QTest::newRow("bitrate") << record + QStringLiteral("--bitrate 0")
                             << QStringLiteral("--bitrate");
    QTest::newRow("time without picture")
        << record + QStringLiteral("--png-at 1") << QStringLiteral("--png FILE");
    QTest::newRow("rate of a file")
        << record + QStringLiteral("--source x.mkv --fps 5") << QStringLiteral("keeps its own");
    for (const char *language : {"xx", "german", "de_XX", "C", "d", "_", "de_DE_DE"})
        QTest::addRow("language %s", language) << record + QStringLiteral("--language ")
                + QLatin1String(language) << QStringLiteral("--language");
    for (const char *units :
         {"metrical", "speed", "speed=", "speed=mph", "weight=kg", "metric,,", "temperature=K"})
        QTest::addRow("units %s", units) << record + QStringLiteral("--units ")
                + QLatin1String(units) << QStringLiteral("--units");
    for (const char *input : {"file", "socket:", "socket", "stdin2"})
        QTest::addRow("input %s", input) << record + QStringLiteral("--input ")
                + QLatin1String(input) << QStringLiteral("--input");
    QTest::newRow("socket over the output")
        << record + QStringLiteral("--input socket:a.mkv") << QStringLiteral("a.mkv");
    QTest::newRow("input of a picture")
        << QStringLiteral("snapshot --output o.png --input stdin") << QStringLiteral("input");
    QTest::newRow("live takes no file")
        << QStringLiteral("live --output x") << QStringLiteral("output");
    QTest::newRow("live: other input")
        << QStringLiteral("live --input file") << QStringLiteral("neither stdin nor socket");
    QTest::newRow("values takes no file")
        << QStringLiteral("values --output x") << QStringLiteral("output");
    QTest::newRow("value missing") << QStringLiteral("record --output") << QStringLiteral("output");
}

void tst_Options::refused()
{
    QFETCH(QString, line);
    QFETCH(QString, mentions);
    Options options;
    QString error;
    QVERIFY(!parseOptions(words(line), &options, &error));
    QVERIFY2(error.contains(mentions), qPrintable(error));
    QVERIFY(!error.contains(QLatin1Char('\n')));
}

QTEST_GUILESS_MAIN(tst_Options)
#include "tst_Options.moc"
