// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/elements/ElementParam.h"
#include "videooverlay/xqvideooverlay_export.h"

#include <QList>
#include <QObject>
#include <QString>

namespace Velmar::VideoOverlay {

/// One layout of the overlay, held in memory: the records of its elements in the order of its file,
/// its name, its path and whether it may be changed. Owned by the profiles manager.
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

    QString name() const;
    void setName(const QString &name); ///< emits nothing
    QString path() const;              ///< absolute path of the file
    void setPath(const QString &path);
    bool readOnly() const;
    void setReadOnly(bool readOnly);
    bool changed() const;

    /// For people: the name, or the file's base name while the name is empty.
    QString caption() const;

    QList<ElementParam> &elements(); ///< in file order; whoever loads or saves works in place
    const QList<ElementParam> &elements() const;

    bool load(const QString &path); ///< false, and a line in the log, when it cannot be read
    bool save();                    ///< false, and a line in the log, when it cannot be written

    /// A copy with the same name, path, flag and records. The caller owns it; QML never deletes it.
    Profile *clone() const;

    /// Renames the file to @p newName in the profile directory. Emits captionChanged once when it
    /// was renamed.
    bool rename(const QString &newName);

    /// The first record whose value under @p key, as text, is @p value; null when there is none.
    /// Records that have nothing there are skipped, with a line in the log.
    ElementParam *findParamByKeyValue(const QString &key, const QString &value);

Q_SIGNALS:
    void captionChanged();

private:
    QString m_name;
    QString m_path;
    bool m_readOnly = false;
    QList<ElementParam> m_elements;
    bool m_changed = false;
};

} // namespace Velmar::VideoOverlay
