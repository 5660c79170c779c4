// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/UserChoices.h"
#include "host/pipelines/VideoSource.h"

#include <QByteArray>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVector>

namespace Velmar::Host {

/// What the operator asked the program for.
struct Options
{
    enum class Command {
        Help,
        Version,
        Record,
        Snapshot,
        Values,
        Live,
        Project,
        Edit,
        Check,
        Profiles,
    };

    Command command = Command::Help;
    QString helpText; ///< to print for Help

    SourceSpec source;
    QString outputPath;
    QString telemetryPath;     ///< empty: none
    QString picturePath;       ///< empty: none
    QString watermarkPath;     ///< empty: none
    QString profile;           ///< name or path; null: the demonstration's own layout
    QString projectPath;       ///< empty: no project is opened
    QString inspectionNumber;  ///< empty: the project's first inspection
    bool observations = false; ///< the telemetry's observations are created in the project
    QString settingsDirectory; ///< empty: the user's own
    QString logPath;           ///< empty: warnings on the standard error stream
    bool quiet = false;
    UserChoices choices; ///< language and units

    QStringList files; ///< check: files and folders
    QStringList words; ///< profiles: what to do, and with which

    // edit
    QString elementName; ///< value, column or text of the elements to change; empty: a new text
    QString addedText;
    QVector<QPair<QString, QString>> changes; ///< property and value

    // project
    bool createDemo = false;
    QString catalogId; ///< of a new project; empty: the demonstration's own

    // record
    qint64 durationNs = -1; ///< -1: all of the source
    QByteArray encoder;     ///< empty: the best installed one
    int bitrateKbit = 0;    ///< 0: constant quality
    QString pngPath;        ///< empty: none
    qint64 pngAtNs = 0;
    bool inputFromPipe = false; ///< live values come from the standard input
    QString inputSocket;        ///< live values come from there; empty: from no socket

    // snapshot
    qint64 atNs = 0;
    bool transparent = false;

    // live
    QString projectDirectory;    ///< empty: the user's documents
    QString recordingDirectory;  ///< empty: the user's videos
    QString screenshotDirectory; ///< pictures of the screens go there; empty: none
};

/// Reads the arguments, the program's name first. False, and a text in @p error, for arguments that
/// make no sense.
bool parseOptions(const QStringList &arguments, Options *options, QString *error);

} // namespace Velmar::Host
