// SPDX-License-Identifier: Apache-2.0
#include "host/commands/CheckCommand.h"
#include "host/commands/ConsoleLog.h"
#include "host/commands/EditCommand.h"
#include "host/commands/LiveCommand.h"
#include "host/commands/Options.h"
#include "host/commands/ProfilesCommand.h"
#include "host/commands/ProjectCommand.h"
#include "host/commands/RecordCommand.h"
#include "host/commands/Report.h"
#include "host/commands/SnapshotCommand.h"
#include "host/commands/ValuesCommand.h"
#include "host/platform/Directories.h"
#include "host/platform/LogRouter.h"
#include "host/platform/LogSinks.h"
#include "host/profiles/FirstStart.h"

#include <platform/directories/CApplicationDirectories.h>

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QTextCodec>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <memory>

using namespace Velmar;
using namespace Velmar::Host;

namespace {

/// Qt would end the program with a core dump: no display, no OpenGL. One line and a status, unless
/// it is a mistake of our own that a core dump helps to find.
void endOnFatal(QtMsgType type, const QString &text)
{
    if (type != QtFatalMsg || text.startsWith(QLatin1String("ASSERT")))
        return;
    reportError(text.trimmed());
    std::_Exit(FailureStatus);
}

/// Qt's own remarks belong into the log, not between the lines of a command.
void logQtMessage(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    endOnFatal(type, QStringLiteral("Qt: ") + text);
    const bool severe = type == QtCriticalMsg || type == QtFatalMsg;
    Logging::CLogger::logMessage(severe ? Logging::LogLevel::Error : Logging::LogLevel::Info,
                                 QStringLiteral("Qt"), text);
}

/// Before there is an application: its reasons come first, and then that it is over.
void startMessage(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    static QString problem;
    const bool isAboutPlugins = text.contains(QLatin1String("platform plugin"));
    if (type == QtFatalMsg)
        endOnFatal(type,
                   QStringLiteral("There is no display: ") + (problem.isEmpty() ? text : problem));
    else if (text.startsWith(QLatin1String("QStandardPaths")))
        logQtMessage(type, context, text); // of no importance here
    else if (problem.isEmpty() || !isAboutPlugins)
        problem = text;
}

/// The first argument that cannot be written as it is, for people; empty when there is none. A file
/// of another name would come of it.
QString unwritableArgument(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i) {
        const QString text = QFile::decodeName(argv[i]);
        if (QFile::encodeName(text) != argv[i])
            return text;
    }
    return {};
}

bool setUpLog(const Options &options, QString *error)
{
    if (options.logPath.isEmpty()) {
        Logging::LogRouter::instance().addSink(std::make_shared<ConsoleLog>());
        return true;
    }
    auto sink = std::make_shared<Logging::FileLogSink>(options.logPath);
    if (!sink->isOpen()) {
        *error = QStringLiteral("%1: the log cannot be written").arg(options.logPath);
        return false;
    }
    Logging::LogRouter::instance().addSink(std::move(sink));
    return true;
}

bool hasArgument(int argc, char **argv, const char *wanted)
{
    return std::any_of(argv + std::min(argc, 1), argv + argc, [wanted](const char *argument) {
        return std::strncmp(argument, wanted, std::strlen(wanted)) == 0;
    });
}

/// Before there is an application, and so before the options are read. False when the screens are
/// to be shown and there is no display.
bool choosePlatform(int argc, char **argv)
{
    if (hasArgument(argc, argv, "--keyboard"))
        qputenv("QT_IM_MODULE", "qtvirtualkeyboard");
    const bool isLive = argc > 1 && std::strcmp(argv[1], "live") == 0;
    const QByteArray wanted = qgetenv("QT_QPA_PLATFORM");
    if (!wanted.isEmpty()) {
        if (isLive && wanted.startsWith("offscreen")
            && !qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
            qputenv("QT_QUICK_BACKEND", "software"); // there is no OpenGL
        return true;
    }
    const bool showsWindow = isLive && !hasArgument(argc, argv, "--screenshots")
        && !hasArgument(argc, argv, "--help") && !hasArgument(argc, argv, "-h");
    if (showsWindow)
        return !qEnvironmentVariableIsEmpty("DISPLAY")
            || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    // What paints but shows nothing must also run where nobody has a screen.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (isLive)
        qputenv("QT_QUICK_BACKEND", "software");
    return true;
}

/// The data beside the program, wherever it was installed to; in the folder that it was built in,
/// those of the sources. Otherwise the platform knows where they were to be installed.
void findData()
{
    const QDir program(QGuiApplication::applicationDirPath());
    const QString installed = program.absoluteFilePath(QStringLiteral("../share/xqosd"));
    const bool built
        = program.canonicalPath() == QDir(QStringLiteral(XQ_BUILD_DIRECTORY)).canonicalPath();
    if (built)
        Directories::setReadonlyConfigDirectory(QStringLiteral(XQ_DATA_DIRECTORY));
    else if (QDir(installed).exists())
        Directories::setReadonlyConfigDirectory(installed);
}

bool needsProfiles(const Options &options)
{
    using Command = Options::Command;
    const bool shows = options.command == Command::Record || options.command == Command::Snapshot;
    return options.command == Command::Profiles || options.command == Command::Edit
        || (shows && !options.profile.isNull());
}

} // namespace

int main(int argc, char **argv)
{
    qInstallMessageHandler(startMessage);
    std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow is an error, not the end
    if (!choosePlatform(argc, argv))
        return reportError(QStringLiteral("live: there is no display. Set DISPLAY, WAYLAND_DISPLAY "
                                          "or QT_QPA_PLATFORM"));
    QGuiApplication application(argc, argv);
    qInstallMessageHandler(logQtMessage);
    QGuiApplication::setApplicationName(QStringLiteral("xqosd"));
    // Written files are UTF-8, whatever the environment says.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));

    findData();

    const QString unwritable = unwritableArgument(argc, argv);
    if (!unwritable.isEmpty()) {
        reportError(QStringLiteral("\"%1\": is not UTF-8, as names must be").arg(unwritable));
        return UsageStatus;
    }
    Options options;
    QString error;
    if (!parseOptions(QGuiApplication::arguments(), &options, &error)) {
        reportError(error);
        return UsageStatus;
    }
    if (!options.settingsDirectory.isEmpty())
        Directories::setSettingsDirectory(options.settingsDirectory);
    if (!setUpLog(options, &error))
        return reportError(error);

    const QString warning = options.choices.languageWarning();
    if (!warning.isEmpty() && !options.quiet)
        reportWarning(warning);
    options.choices.apply();
    if (needsProfiles(options)
        && !prepareProfiles(QDir(CApplicationDirectories::readonlyConfigDirectory())
                                .filePath(QStringLiteral("profiles")),
                            &error))
        return reportError(error);

    switch (options.command) {
    case Options::Command::Help:
        report(options.helpText.trimmed());
        return 0;
    case Options::Command::Version:
        report(QStringLiteral("xqosd " XQ_VERSION));
        return 0;
    case Options::Command::Record:
        return runRecord(options);
    case Options::Command::Snapshot:
        return runSnapshot(options);
    case Options::Command::Live:
        return runLive(options);
    case Options::Command::Values:
        return runValues();
    case Options::Command::Check:
        return runCheck(options);
    case Options::Command::Profiles:
        return runProfiles(options);
    case Options::Command::Edit:
        return runEdit(options);
    case Options::Command::Project:
        return runProject(options);
    }
    return FailureStatus;
}
