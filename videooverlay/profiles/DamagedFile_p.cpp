// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/profiles/DamagedFile_p.h"

#include "videooverlay/Log_p.h"
#include "videooverlay/profiles/ReadXml_p.h"
#include "videooverlay/profiles/ReplaceFile_p.h"

#include <QFile>
#include <QFileInfo>

namespace Velmar::VideoOverlay {

namespace {

constexpr int mostKept = 1000; ///< of one profile

QString keptPath(const QFileInfo &file, int number)
{
    constexpr int maximumBytes = 255; // what file systems allow
    QString suffix = QStringLiteral(".damaged");
    if (number > 1)
        suffix += QLatin1Char('.') + QString::number(number);
    const QString ending = QStringLiteral(".xml");
    QString name = file.fileName();
    while (QFile::encodeName(name + suffix).size() > maximumBytes) {
        if (name.endsWith(ending))
            name.chop(ending.size());
        name = name.chopped(1);
        if (name.at(name.size() - 1).isHighSurrogate())
            name.chop(1);
    }
    return file.path() + QLatin1Char('/') + name + suffix;
}

bool haveSameContent(const QString &one, const QString &other)
{
    QFile first(one);
    QFile second(other);
    if (!first.open(QIODevice::ReadOnly) || !second.open(QIODevice::ReadOnly)
        || first.size() != second.size())
        return false;
    constexpr qint64 part = 64 * 1024;
    while (!first.atEnd()) {
        const QByteArray bytes = first.read(part);
        if (bytes.isEmpty() || bytes != second.read(part))
            return false;
    }
    return true;
}

} // namespace

bool isProfileFile(const QString &path)
{
    QFile file(path);
    QDomDocument document;
    QString message;
    return file.open(QIODevice::ReadOnly | QIODevice::Text) && readXml(file, document, &message)
        && document.elementsByTagName(QStringLiteral("PROFILE")).size() == 1;
}

bool keepDamagedFile(const QString &path)
{
    const QFileInfo file(path);
    for (int number = 1; number <= mostKept; ++number) {
        const QString kept = keptPath(file, number);
        if (haveSameContent(path, kept))
            return true; // by a save that failed afterwards
        const QFileInfo taken(kept);
        if (taken.exists() || taken.isSymLink())
            continue;
        if (!copyFile(path, kept, Existing::Keep))
            return false;
        log(LogLevel::Info, QStringLiteral("Keeping damaged profile file as:") + kept);
        return true;
    }
    return false;
}

} // namespace Velmar::VideoOverlay
