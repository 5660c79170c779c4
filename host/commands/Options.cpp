// SPDX-License-Identifier: Apache-2.0
#include "host/commands/Options.h"

#include "host/pipelines/EncoderChoice.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <cmath>

namespace Velmar::Host {

namespace {

constexpr int LargestSide = 8192;
constexpr int SmallestSide = 64;
constexpr int MostFramesPerSecond = 240;
constexpr int MostKbit = 400000;
constexpr double LongestSeconds = 7.0 * 24 * 3600;
constexpr double NsPerSecond = 1e9;

QString usage()
{
    return QStringLiteral(
        "Usage: xqosd COMMAND [OPTIONS]\n"
        "\n"
        "  record     burns the overlay into a video file\n"
        "  snapshot   writes one picture of the overlay\n"
        "  live       shows the touch screens\n"
        "  values     lists the values that texts can show\n"
        "  profiles   lists and keeps OSD profiles\n"
        "  edit       changes elements of an OSD profile\n"
        "  check      reports what is wrong with OSD profile files\n"
        "  project    lists the inspections of a project, or makes a demonstration\n"
        "\n"
        "xqosd COMMAND --help lists the options of a command.\n");
}

bool readSize(const QString &text, QSize *size, QString *error)
{
    static const QRegularExpression pattern(QStringLiteral("^([0-9]{1,5})x([0-9]{1,5})$"));
    const QRegularExpressionMatch match = pattern.match(text);
    const QSize read(match.captured(1).toInt(), match.captured(2).toInt());
    if (!match.hasMatch() || qMin(read.width(), read.height()) < SmallestSide
        || qMax(read.width(), read.height()) > LargestSide) {
        *error = QStringLiteral("--size: \"%1\" is not WIDTHxHEIGHT with sides of %2 to %3 pixels")
                     .arg(text, QString::number(SmallestSide), QString::number(LargestSide));
        return false;
    }
    *size = read;
    return true;
}

bool readInt(const QString &option, const QString &text, int least, int most, int *value,
             QString *error)
{
    bool ok = false;
    const int read = text.toInt(&ok);
    if (!ok || read < least || read > most) {
        *error = QStringLiteral("--%1: \"%2\" is not a whole number from %3 to %4")
                     .arg(option, text, QString::number(least), QString::number(most));
        return false;
    }
    *value = read;
    return true;
}

enum class Zero {
    Allowed,
    Refused,
};

bool readSeconds(const QString &option, const QString &text, Zero zero, qint64 *ns, QString *error)
{
    bool ok = false;
    const double read = text.toDouble(&ok);
    if (!ok || !std::isfinite(read) || read < 0 || read > LongestSeconds
        || (zero == Zero::Refused && read * NsPerSecond < 1)) {
        *error = QStringLiteral("--%1: \"%2\" is not a number of seconds").arg(option, text);
        return false;
    }
    *ns = std::llround(read * NsPerSecond);
    return true;
}

/// The options that a command has, and what came of them.
class CommandParser
{
public:
    explicit CommandParser(const QString &description)
    {
        m_parser.setApplicationDescription(description);
        // What the program is called with; a bare -h as well.
        m_parser.addOption(
            {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Lists the options.")});
    }

    void add(const char *name, const char *value, const char *text,
             const QString &fallback = QString())
    {
        m_parser.addOption({QString::fromLatin1(name), QString::fromLatin1(text),
                            QString::fromLatin1(value), fallback});
    }
    void addFlag(const char *name, const char *text)
    {
        m_parser.addOption({QString::fromLatin1(name), QString::fromLatin1(text)});
    }

    bool parse(const QStringList &arguments, QString *error)
    {
        if (!m_parser.parse(arguments)) {
            *error = m_parser.errorText();
            return false;
        }
        m_name = arguments.constFirst();
        if (!m_takesWords && !words().isEmpty()) {
            *error = QStringLiteral("Unexpected argument: %1").arg(words().constFirst());
            return false;
        }
        return true;
    }

    /// The command takes arguments that are no options.
    void addWords(const char *name, const char *text)
    {
        m_takesWords = true;
        m_parser.addPositionalArgument(QString::fromLatin1(name), QString::fromLatin1(text),
                                       QString::fromLatin1(name));
    }
    QStringList words() const { return m_parser.positionalArguments(); }

    bool isSet(const char *name) const { return m_parser.isSet(QString::fromLatin1(name)); }
    QString value(const char *name) const { return m_parser.value(QString::fromLatin1(name)); }
    QStringList values(const char *name) const
    {
        return m_parser.values(QString::fromLatin1(name));
    }
    /// Qt writes the program's path into the first line, but the command belongs there.
    QString helpText() const
    {
        const QString text = m_parser.helpText();
        return QStringLiteral("Usage: %1 [options]").arg(m_name)
            + text.mid(text.indexOf(QLatin1Char('\n')));
    }

private:
    QString m_name;
    bool m_takesWords = false;
    QCommandLineParser m_parser;
};

void addChoices(CommandParser &parser)
{
    parser.add("language", "CODE",
               "Language of captions, numbers and dates: de, DEU, de_DE; else the system's.");
    parser.add("units", "UNITS",
               "metric (the default), imperial, or QUANTITY=UNIT, separated by commas; "
               "xqosd values lists the units.");
    parser.add("settings-dir", "DIR", "Where the program keeps its settings.");
    parser.add("log", "FILE", "Writes the log there.");
}

bool readChoices(const CommandParser &parser, Options *options, QString *error)
{
    options->settingsDirectory = parser.value("settings-dir");
    options->logPath = parser.value("log");
    return (!parser.isSet("language")
            || options->choices.setLanguage(parser.value("language"), error))
        && (!parser.isSet("units") || options->choices.setUnits(parser.value("units"), error));
}

/// What every command that plays a video has.
void addSource(CommandParser &parser, const char *sizeText)
{
    parser.add("source", "SOURCE",
               "Where the video comes from: a video file, a camera (/dev/video0), \"test\" or "
               "\"pipe\", a drawn run through a pipe.",
               QStringLiteral("pipe"));
    parser.add("telemetry", "CSV", "Readings for the overlay's texts.");
    parser.add("size", "WxH", sizeText);
    parser.add("fps", "N", "Frames per second of test, pipe and cameras.");
    parser.add("seed", "N", "Which pipe is drawn.", QStringLiteral("1"));
    addChoices(parser);
}

void addCommon(CommandParser &parser)
{
    addSource(parser,
              "Picture size. 1920x1080 for test and pipe; files and cameras keep their own.");
    parser.add("output", "FILE", "The file to write.");
    parser.add(
        "profile", "NAME",
        "Shows this OSD profile (name or path; \"start\" for the one to start with) instead of "
        "the demonstration's layout.");
    parser.add("project", "FILE", "Opens this project for the inspection texts of a profile.");
    parser.add("inspection", "NUMBER", "Which inspection of the project; else its first.");
    parser.addFlag("observations",
                   "Creates the observations of the telemetry in the project when they come.");
    parser.add("picture", "PNG", "A picture to lay over the video.");
    parser.add("watermark", "PNG", "A watermark to lay over the video.");
    parser.addFlag("quiet", "Prints errors only.");
}

bool readProject(const CommandParser &parser, Options *options, QString *error)
{
    options->projectPath = parser.value("project");
    options->inspectionNumber = parser.value("inspection");
    options->observations = parser.isSet("observations");
    if (parser.isSet("profile")) {
        options->profile = parser.value("profile");
        if (options->profile.isEmpty()) {
            *error = QStringLiteral("--profile: is empty");
            return false;
        }
        if (options->profile == QLatin1String("start"))
            options->profile = QStringLiteral("");
    }
    if (options->projectPath.isEmpty()
        && (options->observations || !options->inspectionNumber.isEmpty())) {
        *error = QStringLiteral("--%1: --project FILE is missing")
                     .arg(options->observations ? QStringLiteral("observations")
                                                : QStringLiteral("inspection"));
        return false;
    }
    if (!options->projectPath.isEmpty() && options->profile.isNull()) {
        *error = QStringLiteral("--project: --profile NAME is missing");
        return false;
    }
    if (options->observations && parser.value("telemetry").isEmpty()) {
        *error = QStringLiteral("--observations: --telemetry CSV is missing");
        return false;
    }
    return true;
}

bool readSource(const CommandParser &parser, Options *options, QString *error)
{
    options->source = SourceSpec::fromText(parser.value("source"));
    if (parser.value("source").isEmpty()) {
        *error = QStringLiteral("--source: is empty");
        return false;
    }
    if (parser.isSet("size") && !readSize(parser.value("size"), &options->source.size, error))
        return false;
    if (parser.isSet("fps")) {
        if (options->source.kind == SourceSpec::Kind::File) {
            *error = QStringLiteral("--fps: a file keeps its own");
            return false;
        }
        if (!readInt(QStringLiteral("fps"), parser.value("fps"), 1, MostFramesPerSecond,
                     &options->source.framesPerSecond, error))
            return false;
    }
    bool ok = false;
    options->source.seed = parser.value("seed").toUInt(&ok);
    if (!ok) {
        *error = QStringLiteral("--seed: \"%1\" is not a whole number").arg(parser.value("seed"));
        return false;
    }
    options->telemetryPath = parser.value("telemetry");
    return readChoices(parser, options, error);
}

bool readCommon(const CommandParser &parser, Options *options, QString *error)
{
    if (!readSource(parser, options, error))
        return false;
    if (!parser.isSet("output") || parser.value("output").isEmpty()) {
        *error = QStringLiteral("--output is missing");
        return false;
    }
    options->outputPath = parser.value("output");
    if (!readProject(parser, options, error))
        return false;
    options->picturePath = parser.value("picture");
    options->watermarkPath = parser.value("watermark");
    options->quiet = parser.isSet("quiet");
    return true;
}

bool readInput(const QString &text, Options *options, QString *error)
{
    static const QString socketPrefix = QStringLiteral("socket:");
    if (text == QLatin1String("stdin")) {
        options->inputFromPipe = true;
        return true;
    }
    options->inputSocket
        = text.startsWith(socketPrefix) ? text.mid(socketPrefix.size()) : QString();
    if (!options->inputSocket.isEmpty())
        return true;
    *error = QStringLiteral("--input: \"%1\" is neither stdin nor socket:PATH").arg(text);
    return false;
}

/// The file itself, whatever way leads to it.
QString fileOf(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() ? info.canonicalFilePath() : QDir::cleanPath(info.absoluteFilePath());
}

/// What is written never replaces what is read, nor what else is written.
bool checkFiles(const Options &options, QString *error)
{
    QStringList taken;
    for (const QString &input :
         {options.source.kind == SourceSpec::Kind::File ? options.source.path : QString(),
          options.telemetryPath, options.picturePath, options.watermarkPath, options.projectPath}) {
        if (!input.isEmpty())
            taken.append(fileOf(input));
    }
    for (const QString &output :
         {options.outputPath, options.pngPath, options.logPath, options.inputSocket}) {
        if (output.isEmpty())
            continue;
        // Devices are no files to be replaced.
        const QString file = fileOf(output);
        if (taken.contains(file) && (QFileInfo(file).isFile() || !QFileInfo::exists(file))) {
            *error = QStringLiteral("%1: is used for something else already").arg(output);
            return false;
        }
        taken.append(file);
    }
    return true;
}

bool parseRecord(const QStringList &arguments, Options *options, QString *error)
{
    CommandParser parser(QStringLiteral("Burns the overlay into a video file."));
    addCommon(parser);
    parser.add("duration", "SECONDS", "Ends the recording there.");
    parser.add("encoder", "NAME",
               "GStreamer element that encodes the video; else the best installed one.");
    parser.add("bitrate", "KBIT", "Constant bit rate [kbit/s]; else constant quality.");
    parser.add("png", "FILE", "Also writes one frame as a picture.");
    parser.add("png-at", "SECONDS", "Which frame that is.", QStringLiteral("0"));
    parser.add("input", "INPUT",
               "Live values for the texts: \"stdin\" or \"socket:PATH\", one JSON object per line; "
               "xqosd values shows one.");
    if (!parser.parse(arguments, error))
        return false;
    if (parser.isSet("help")) {
        options->helpText = parser.helpText();
        return true;
    }
    options->command = Options::Command::Record;
    if (!readCommon(parser, options, error))
        return false;
    Container container;
    if (!containerFromPath(options->outputPath, &container, error))
        return false;
    if (parser.isSet("duration")
        && !readSeconds(QStringLiteral("duration"), parser.value("duration"), Zero::Refused,
                        &options->durationNs, error))
        return false;
    if (parser.isSet("bitrate")
        && !readInt(QStringLiteral("bitrate"), parser.value("bitrate"), 1, MostKbit,
                    &options->bitrateKbit, error))
        return false;
    if (parser.isSet("input") && !readInput(parser.value("input"), options, error))
        return false;
    options->encoder = parser.value("encoder").toUtf8();
    options->pngPath = parser.value("png");
    if (!checkFiles(*options, error))
        return false;
    if (parser.isSet("png-at") && options->pngPath.isEmpty()) {
        *error = QStringLiteral("--png-at: --png FILE is missing");
        return false;
    }
    return readSeconds(QStringLiteral("png-at"), parser.value("png-at"), Zero::Allowed,
                       &options->pngAtNs, error);
}

bool parseSnapshot(const QStringList &arguments, Options *options, QString *error)
{
    CommandParser parser(QStringLiteral("Writes one picture of the overlay."));
    addCommon(parser);
    parser.add("at", "SECONDS", "The moment that is shown.", QStringLiteral("0"));
    parser.addFlag("transparent", "Shows the overlay alone, without a frame of the source.");
    if (!parser.parse(arguments, error))
        return false;
    if (parser.isSet("help")) {
        options->helpText = parser.helpText();
        return true;
    }
    options->command = Options::Command::Snapshot;
    options->transparent = parser.isSet("transparent");
    return readCommon(parser, options, error) && checkFiles(*options, error)
        && readSeconds(QStringLiteral("at"), parser.value("at"), Zero::Allowed, &options->atNs,
                       error);
}

bool parseProject(const QStringList &arguments, Options *options, QString *error)
{
    CommandParser parser(QStringLiteral("Lists the inspections of a project file."));
    parser.add("file", "FILE", "The project; the touch screens list *.xqproject.");
    parser.addFlag("create-demo", "Makes it first, with the records of the demonstration.");
    parser.add("catalog", "ID", "Catalog of the new project.");
    parser.add("log", "FILE", "Writes the log there.");
    if (!parser.parse(arguments, error))
        return false;
    if (parser.isSet("help")) {
        options->helpText = parser.helpText();
        return true;
    }
    options->command = Options::Command::Project;
    options->projectPath = parser.value("file");
    options->createDemo = parser.isSet("create-demo");
    options->catalogId = parser.value("catalog");
    options->logPath = parser.value("log");
    if (options->projectPath.isEmpty())
        *error = QStringLiteral("--file FILE is missing");
    else if (parser.isSet("catalog") && !options->createDemo)
        *error = QStringLiteral("--catalog: only a new project has a choice");
    return error->isEmpty();
}

bool parseEdit(const QStringList &arguments, Options *options, QString *error)
{
    CommandParser parser(QStringLiteral("Changes elements of an OSD profile and saves it."));
    parser.add("profile", "NAME", "The profile.");
    parser.add(
        "element", "NAME",
        "What the elements show: a value, a column, their text, or the name of a picture file.");
    parser.add("add-text", "TEXT", "Adds a text instead.");
    parser.add("set", "PROPERTY=VALUE",
               "A change: row, column, enabled, captionVisible, unit, timeout, text, textColor, "
               "backgroundColor, scaleFactor. May be given several times.");
    addChoices(parser);
    if (!parser.parse(arguments, error))
        return false;
    if (parser.isSet("help")) {
        options->helpText = parser.helpText();
        return true;
    }
    options->command = Options::Command::Edit;
    options->profile = parser.value("profile");
    options->elementName = parser.value("element");
    options->addedText = parser.value("add-text");
    if (options->profile.isEmpty())
        *error = QStringLiteral("--profile NAME is missing");
    else if (options->elementName.isEmpty() == options->addedText.isEmpty())
        *error = QStringLiteral("Either --element NAME or --add-text TEXT is needed");
    else if (!options->elementName.isEmpty() && !parser.isSet("set"))
        *error = QStringLiteral("--set PROPERTY=VALUE is missing");
    for (const QString &change : parser.values("set")) {
        const int split = change.indexOf(QLatin1Char('='));
        if (split < 1 && error->isEmpty())
            *error = QStringLiteral("--set: \"%1\" is not PROPERTY=VALUE").arg(change);
        options->changes.append({change.left(split), change.mid(split + 1)});
    }
    return error->isEmpty() && readChoices(parser, options, error);
}

bool parseCheck(const QStringList &arguments, Options *options, QString *error)
{
    CommandParser parser(QStringLiteral("Reports what is wrong with OSD profile files."));
    parser.addWords("FILE...", "Profile files, and folders of them.");
    parser.add("log", "FILE", "Writes the log there.");
    if (!parser.parse(arguments, error))
        return false;
    if (parser.isSet("help")) {
        options->helpText = parser.helpText();
        return true;
    }
    options->command = Options::Command::Check;
    options->files = parser.words();
    options->logPath = parser.value("log");
    if (options->files.isEmpty())
        *error = QStringLiteral("No FILE given");
    return error->isEmpty();
}

/// How many words each action takes, itself included.
bool checkActions(const QStringList &words, QString *error)
{
    struct Action
    {
        const char *name;
        int least;
        int most;
    };
    static constexpr Action actions[]
        = {{"list", 1, 1}, {"select", 2, 2}, {"clone", 2, 3}, {"rename", 3, 3}, {"remove", 2, 2}};
    if (words.isEmpty())
        return true;
    for (const Action &action : actions) {
        if (words.constFirst() != QLatin1String(action.name))
            continue;
        if (words.size() >= action.least && words.size() <= action.most)
            return true;
        *error = QStringLiteral("profiles %1: wrong number of names").arg(words.constFirst());
        return false;
    }
    *error = QStringLiteral("profiles: \"%1\" is none of list, select, clone, rename and remove")
                 .arg(words.constFirst());
    return false;
}

bool parseProfiles(const QStringList &arguments, Options *options, QString *error)
{
    CommandParser parser(QStringLiteral("Lists and keeps OSD profiles."));
    parser.addWords("ACTION",
                    "list, select NAME, clone NAME [NEW], rename NAME NEW, or remove NAME.");
    parser.add("settings-dir", "DIR", "Where the program keeps its settings.");
    parser.add("log", "FILE", "Writes the log there.");
    if (!parser.parse(arguments, error))
        return false;
    if (parser.isSet("help")) {
        options->helpText = parser.helpText();
        return true;
    }
    options->command = Options::Command::Profiles;
    options->words = parser.words();
    options->settingsDirectory = parser.value("settings-dir");
    options->logPath = parser.value("log");
    return checkActions(options->words, error);
}

bool parseValues(const QStringList &arguments, Options *options, QString *error)
{
    CommandParser parser(QStringLiteral("Lists the values that texts can show."));
    addChoices(parser);
    if (!parser.parse(arguments, error))
        return false;
    if (parser.isSet("help")) {
        options->helpText = parser.helpText();
        return true;
    }
    options->command = Options::Command::Values;
    return readChoices(parser, options, error);
}

bool parseLive(const QStringList &arguments, Options *options, QString *error)
{
    CommandParser parser(QStringLiteral("Shows the touch screens."));
    addSource(parser,
              "Picture size. 1280x720 for test and pipe; files and cameras keep their own.");
    parser.add("input", "INPUT",
               "Live values, one JSON object a line, from \"stdin\" or \"socket:PATH\".");
    parser.add("projects", "DIR", "Where the projects are.");
    parser.add("recordings", "DIR", "Where recordings go.");
    parser.add("screenshots", "DIR", "Writes a picture of every screen there and ends.");
    // Read again where the keyboard is chosen, which is before there is an application.
    parser.addFlag("keyboard", "Shows a keyboard on the screen while a field has the focus.");
    if (!parser.parse(arguments, error))
        return false;
    if (parser.isSet("help")) {
        options->helpText = parser.helpText();
        return true;
    }
    options->command = Options::Command::Live;
    options->projectDirectory = parser.value("projects");
    options->recordingDirectory = parser.value("recordings");
    options->screenshotDirectory = parser.value("screenshots");
    if (parser.isSet("input") && !readInput(parser.value("input"), options, error))
        return false;
    return readSource(parser, options, error) && checkFiles(*options, error);
}

} // namespace

bool parseOptions(const QStringList &arguments, Options *options, QString *error)
{
    if (arguments.size() < 2) {
        *error = QStringLiteral("No command given; xqosd --help lists them");
        return false;
    }
    const QString command = arguments.at(1);
    const QStringList rest = QStringList(QStringLiteral("xqosd ") + command) + arguments.mid(2);
    if (command == QLatin1String("record"))
        return parseRecord(rest, options, error);
    if (command == QLatin1String("snapshot"))
        return parseSnapshot(rest, options, error);
    if (command == QLatin1String("live"))
        return parseLive(rest, options, error);
    if (command == QLatin1String("values"))
        return parseValues(rest, options, error);
    if (command == QLatin1String("check"))
        return parseCheck(rest, options, error);
    if (command == QLatin1String("profiles"))
        return parseProfiles(rest, options, error);
    if (command == QLatin1String("edit"))
        return parseEdit(rest, options, error);
    if (command == QLatin1String("project"))
        return parseProject(rest, options, error);
    if (command == QLatin1String("--help") || command == QLatin1String("-h")
        || command == QLatin1String("help")) {
        options->helpText = usage();
        return true;
    }
    if (command == QLatin1String("--version")) {
        options->command = Options::Command::Version;
        return true;
    }
    *error = QStringLiteral("Unknown command: %1; xqosd --help lists them").arg(command);
    return false;
}

} // namespace Velmar::Host
