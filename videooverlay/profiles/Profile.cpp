// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/profiles/Profile.h"

#include "videooverlay/Log_p.h"
#include "videooverlay/profiles/DamagedFile_p.h"
#include "videooverlay/profiles/ProfileXmlReader.h"
#include "videooverlay/profiles/ProfileXmlWriter.h"
#include "videooverlay/profiles/ProfilesManager.h"
#include "videooverlay/profiles/ReplaceFile_p.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QQmlEngine>
#include <QVariant>

namespace Velmar::VideoOverlay {

Profile::Profile(QObject *parent)
    : QObject(parent)
{
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership); // no script destroys it
}

Profile::~Profile() = default;

QString Profile::name() const
{
    return m_name;
}

void Profile::setName(const QString &name)
{
    m_name = name;
}

QString Profile::path() const
{
    return m_path;
}

void Profile::setPath(const QString &path)
{
    m_path = path;
    m_damaged = false; // that was another file
}

bool Profile::readOnly() const
{
    return m_readOnly;
}

void Profile::setReadOnly(bool readOnly)
{
    m_readOnly = readOnly;
}

bool Profile::changed() const
{
    return m_changed;
}

bool Profile::damaged() const
{
    return m_damaged;
}

QString Profile::caption() const
{
    return m_name.isEmpty() ? QFileInfo(m_path).completeBaseName() : m_name;
}

QList<ElementParam> &Profile::elements()
{
    return m_elements;
}

const QList<ElementParam> &Profile::elements() const
{
    return m_elements;
}

bool Profile::load(const QString &path)
{
    ProfileXmlReader reader;
    QHash<QString, QVariant> header;
    const bool hasHeader = reader.readHeader(path, header);
    const bool wasEmpty = m_elements.isEmpty();
    const bool hasElements = reader.readElements(path, m_elements);
    // Also when it could not be read: such a profile is listed, and has to say which file it is.
    m_path = path;
    m_name = header.value(QStringLiteral("caption")).toString();
    m_readOnly = header.value(QStringLiteral("readonly")).toBool();
    m_damaged = !hasHeader || (wasEmpty && !hasElements);
    return hasHeader && hasElements;
}

bool Profile::save()
{
    // What the records never held would be lost. Looked at again: files may be damaged later, too.
    if (QFileInfo(m_path).isFile() && (m_damaged || !isProfileFile(m_path))
        && !keepDamagedFile(m_path)) {
        log(LogLevel::Error, QStringLiteral("Cannot open profile file for save:") + m_path);
        return false;
    }
    ProfileXmlWriter writer;
    if (!writer.writeElements(m_path, m_elements))
        return false;
    m_damaged = false;
    return true;
}

Profile *Profile::clone() const
{
    auto *copy = new Profile;
    copy->m_name = m_name;
    copy->m_path = m_path;
    copy->m_readOnly = m_readOnly;
    copy->m_elements = m_elements;
    return copy;
}

bool Profile::rename(const QString &newName)
{
    if (!ProfilesManager::isProfileName(newName))
        return false;
    const QString newPath = ProfilesManager::profilesDirectory() + QDir::separator() + newName
        + QStringLiteral(".xml");
    if (!moveFile(m_path, newPath))
        return false;
    const QFileInfo file(newPath);
    m_path = file.absoluteFilePath();
    m_name = file.completeBaseName();
    Q_EMIT captionChanged();
    return true;
}

ElementParam *Profile::findParamByKeyValue(const QString &key, const QString &value)
{
    for (ElementParam &record : m_elements) {
        const QString found = record.value(key).toString();
        if (found.isEmpty()) {
            log(LogLevel::Debug,
                QStringLiteral("Empty value found in osd parameters for key:") + key
                    + QStringLiteral(" and value: ") + value);
            continue;
        }
        if (found == value)
            return &record;
    }
    return nullptr;
}

} // namespace Velmar::VideoOverlay
