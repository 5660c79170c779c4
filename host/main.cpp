// SPDX-License-Identifier: Apache-2.0
#include "host/cli/Options.h"
#include "host/cli/RecordCommand.h"
#include "host/cli/Report.h"
#include "host/cli/SnapshotCommand.h"
#include "host/platform/Directories.h"
#include "host/platform/LogRouter.h"
#include "host/platform/LogSinks.h"

#include <QGuiApplication>
#include <QTextCodec>

#include <csignal>
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

bool setUpLog(const Options &options, QString *error)
{
    if (options.logPath.isEmpty())
        return true; // without a sink, warnings reach the standard error stream
    auto sink = std::make_shared<Logging::FileLogSink>(options.logPath);
    if (!sink->isOpen()) {
        *error = QStringLiteral("%1: the log cannot be written").arg(options.logPath);
        return false;
    }
    Logging::LogRouter::instance().addSink(std::move(sink));
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    qInstallMessageHandler(logQtMessage);
    std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow is an error, not the end
    // These commands paint, but show nothing: they must also run where nobody has a screen.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("xqosd"));
    // Written files are UTF-8, whatever the environment says.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));

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
    }
    return FailureStatus;
}
