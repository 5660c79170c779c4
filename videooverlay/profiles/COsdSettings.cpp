// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/profiles/COsdSettings.h"

#include "platform/directories/CApplicationDirectories.h"
#include "videooverlay/Log_p.h"
#include "videooverlay/profiles/ReadXml_p.h"
#include "videooverlay/profiles/ReplaceFile_p.h"

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QXmlStreamWriter>

namespace Velmar::VideoOverlay {

namespace {

const QString rootTag = QStringLiteral("OSD");
const QString profilesTag = QStringLiteral("PROFILES");
const QString currentTag = QStringLiteral("CURRENT");

QString fileIn(const QString &directory)
{
    return QDir::cleanPath(directory + QDir::separator() + QStringLiteral("OsdSettings.xml"));
}

QString asXml(const QString &currentProfile)
{
    QString text;
    QXmlStreamWriter writer(&text);
    // A writer over a string names no encoding of its own.
    writer.writeProcessingInstruction(QStringLiteral("xml"),
                                      QStringLiteral("version=\"1.0\" encoding=\"UTF-8\""));
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(4);
    writer.writeStartElement(rootTag);
    writer.writeStartElement(profilesTag);
    writer.writeTextElement(currentTag, currentProfile);
    writer.writeEndElement();
    writer.writeEndElement();
    writer.writeEndDocument();
    return text;
}

} // namespace

QString COsdSettings::xmlSettingsPath()
{
    return fileIn(CApplicationDirectories::settingsDirectory());
}

QString COsdSettings::xmlConfigPath()
{
    return fileIn(CApplicationDirectories::readonlyConfigDirectory());
}

bool COsdSettings::copySettingsFile()
{
    const QString path = xmlSettingsPath();
    return !QFile::exists(path) && copyFile(xmlConfigPath(), path, Existing::Keep);
}

QString COsdSettings::getDefaultProfile()
{
    copySettingsFile();
    QFile file(xmlSettingsPath());
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        log(LogLevel::Error, QStringLiteral("Cannot open osd xml settings file"));
        return {};
    }
    QDomDocument document;
    QString message;
    if (!readXml(file, document, &message)) {
        log(LogLevel::Error, message);
        return {};
    }
    const QDomNodeList roots = document.elementsByTagName(rootTag);
    if (roots.size() != 1)
        return {};
    const QDomElement current
        = roots.at(0).firstChildElement(profilesTag).firstChildElement(currentTag);
    if (current.isNull())
        return {};
    const QString path = current.text();
    log(LogLevel::Info, QStringLiteral("Startup OSD profile path:") + path);
    return path;
}

void COsdSettings::setDefaultProfile(const QString &path)
{
    copySettingsFile();
    const QString relative
        = QDir(CApplicationDirectories::readonlyConfigDirectory()).relativeFilePath(path);
    if (replaceFile(xmlSettingsPath(), asXml(relative))) {
        log(LogLevel::Info, QStringLiteral("Saving current profile:") + relative);
        return;
    }
    log(LogLevel::Error,
        QStringLiteral("Cannot open osd settings file for save:") + xmlSettingsPath());
}

} // namespace Velmar::VideoOverlay
