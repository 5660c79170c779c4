// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/elements/ElementParam.h"
#include "videooverlay/xqvideooverlay_export.h"

#include <QList>
#include <QObject>
#include <QString>

namespace Velmar::VideoOverlay {

/// One layout of the overlay, held in memory: the records of its elements in the order of its file,
/// its name, its path and whether it may be changed. Those in the profile directory are owned by
/// the profiles manager.
class XQVIDEOOVERLAY_EXPORT Profile : public QObject
{
    Q_OBJECT
    // clang-format off
    Q_PROPERTY(QString caption READ caption NOTIFY captionChanged)
    Q_PROPERTY(QString path READ path NOTIFY captionChanged)
    Q_PROPERTY(bool readOnly READ readOnly NOTIFY captionChanged)
    // clang-format on

public:
    explicit Profile(QObject *parent = nullptr);
    ~Profile() override;

    /// What the file says, or its name after a rename. Empty for every profile that was saved,
    /// because no name is written.
    QString name() const;
    void setName(const QString &name); ///< emits nothing
    QString path() const;              ///< absolute path of the file
    void setPath(const QString &path); ///< emits nothing and moves no file
    bool readOnly() const;
    void setReadOnly(bool readOnly); ///< emits nothing
    bool changed() const;            ///< always false: nothing in the library sets it

    /// Whether the file at path() could not be read when it was loaded: the records are not what it
    /// holds. Ask before such a profile is saved.
    bool damaged() const;

    /// For people: the name, or the file's base name while the name is empty.
    QString caption() const;

    QList<ElementParam> &elements(); ///< in file order; whoever builds or saves works in place
    const QList<ElementParam> &elements() const;

    /// Reads the file at @p path. The records must be empty. False when it could not be read, which
    /// the reader logs; path, name and flag are set all the same.
    bool load(const QString &path);

    /// Writes the records to path(). False, and a line in the log, when that fails. The file holds
    /// no name and is never read-only. A file that could not be read when it was loaded, or cannot
    /// be read now, is kept beside it first, as "NAME.xml.damaged".
    bool save();

    /// A copy with the same name, path, flag and records. The caller owns it; QML never deletes it.
    Profile *clone() const;

    /// Renames the file to @p newName, without suffix, in the profile directory. Then the file's
    /// base name is the name, and captionChanged is emitted once. False, and nothing happens, when
    /// the file is not there, the new name is taken or could not be listed as a profile.
    bool rename(const QString &newName);

    /// The first record whose value under @p key, as text, is @p value; null when there is none.
    /// Records that have nothing there are skipped, with a line in the log.
    ElementParam *findParamByKeyValue(const QString &key, const QString &value);

Q_SIGNALS:
    void captionChanged(); ///< renamed: name and path are new

private:
    QString m_name;
    QString m_path;
    bool m_readOnly = false;
    QList<ElementParam> m_elements;
    bool m_changed = false;
    bool m_damaged = false;
};

} // namespace Velmar::VideoOverlay
