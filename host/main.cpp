// SPDX-License-Identifier: Apache-2.0
#include "host/cli/CheckCommand.h"
#include "host/cli/ConsoleLog.h"
#include "host/cli/EditCommand.h"
#include "host/cli/Options.h"
#include "host/cli/ProfilesCommand.h"
#include "host/cli/ProjectCommand.h"
#include "host/cli/RecordCommand.h"
#include "host/cli/Report.h"
#include "host/cli/SnapshotCommand.h"
#include "host/cli/ValuesCommand.h"
#include "host/platform/Directories.h"
#include "host/platform/LogRouter.h"
#include "host/platform/LogSinks.h"
#include "host/profiles/FirstStart.h"
#include "host/qml/LiveCommand.h"

#include <platform/directories/CApplicationDirectories.h>

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QTextCodec>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <memory>

using namespace Velmar;
using namespace Velmar::Host;

namespace {

/// Qt's own remarks belong into the log, not between the lines of a command.
void logQtMessage(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    const bool severe = type == QtCriticalMsg || type == QtFatalMsg;
    Logging::CLogger::logMessage(severe ? Logging::LogLevel::Error : Logging::LogLevel::Info,
                                 QStringLiteral("Qt"), text);
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
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        return true;
    const bool isLive = argc > 1 && std::strcmp(argv[1], "live") == 0;
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
    qInstallMessageHandler(logQtMessage);
    std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow is an error, not the end
    if (!choosePlatform(argc, argv))
        return reportError(QStringLiteral("live: there is no display. Set DISPLAY, WAYLAND_DISPLAY "
                                          "or QT_QPA_PLATFORM"));
    QGuiApplication application(argc, argv);
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
