// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/profiles/Profile.h"
#include "videooverlay/xqvideooverlay_export.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

namespace Velmar::VideoOverlay {

/// Owns the profiles of the profile directory. Reads them all when it is made; files that others
/// add later are not seen. Clones, removes and finds them.
class XQVIDEOOVERLAY_EXPORT ProfilesManager : public QObject
{
    Q_OBJECT
public:
    /// The folder "osd" of the host's settings directory.
    static QString profilesDirectory();

    /// Whether a file of this name, with the suffix ".xml", would lie in the profile directory and
    /// be listed there, in one line.
    static bool isProfileName(const QString &name);

    /// Reads all profiles of the profile directory.
    explicit ProfilesManager(QObject *parent = nullptr);
    ~ProfilesManager() override;

    QStringList getProfilesPath() const; ///< names, not paths, of the files in the directory
    void populateProfiles();             ///< reads and appends every profile of the directory
    const QList<Profile *> &getProfiles() const; ///< in the order of the directory's listing
    bool saveProfile(Profile *profile);          ///< false when it cannot be written, or for null

    /// A name whose file does not exist: @p name itself, or a numbered copy of it. Empty when 100
    /// such names are taken.
    QString checkDuplicates(const QString &name) const;

    /// A writable copy of @p source, saved beside it under a name that is not taken: @p newName, or
    /// the source's own when that is blank. Owned by the manager. Null, with a line in the log,
    /// when there is no source, no usable name, or the file cannot be written.
    Profile *clone(Profile *source, const QString &newName);

    Profile *findProfileByPath(const QString &path) const; ///< null, and logged, when there is none
    Profile *findProfileByName(const QString &name) const; ///< null, and logged, when there is none

    /// Deletes the file of @p profile and takes it out of the list. The object is destroyed later,
    /// because screens may still show it; it must not be used any more.
    void remove(Profile *profile);

Q_SIGNALS:
    void profileAboutToBeAdded(); ///< a clone is on disk and will be the last of the list
    /// The last profile of the list is new.
    void profileAdded();

private:
    QString freePathForClone(const Profile &source, const QString &newName) const;

    QString m_directory;
    QList<Profile *> m_profiles; ///< children of the manager
};

} // namespace Velmar::VideoOverlay
