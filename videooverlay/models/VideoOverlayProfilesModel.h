// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/profiles/Profile.h"
#include "videooverlay/xqvideooverlay_export.h"

#include <QAbstractListModel>
#include <QList>
#include <QPointer>
#include <QSet>
#include <QString>

#include <memory>

namespace Velmar::VideoOverlay {

class CVideoOverlayManager;
class ProfilesManager;
class ShownProfile;

/// The profiles as a list for the screens, and the one that is current. Selects, saves, reverts,
/// clones and removes. Whoever builds the overlay follows currentProfileChanged. For the GUI
/// thread.
class XQVIDEOOVERLAY_EXPORT VideoOverlayProfilesModel : public QAbstractListModel
{
    Q_OBJECT
    // clang-format off
    /// The selected profile; null when there is none.
    Q_PROPERTY(Velmar::VideoOverlay::Profile *currentProfile READ currentProfile WRITE setCurrentProfile NOTIFY currentProfileChanged)
    /// Its row; -1 when there is none.
    Q_PROPERTY(int currentProfileIndex READ currentProfileIndex WRITE setCurrentProfileByIndex NOTIFY currentProfileChanged)
    // clang-format on

public:
    /// What data() gives besides the display role, which is the Profile itself.
    enum Role {
        IndexRole = Qt::UserRole, ///< "index": the row. The display role gives the profile
    };
    Q_ENUM(Role)

    /// @p manager is not owned and must outlive this object. Reads the profile directory. No
    /// profile is current at first.
    explicit VideoOverlayProfilesModel(CVideoOverlayManager &manager);
    ~VideoOverlayProfilesModel() override;

    /// How many profiles there are.
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    /// Invalid for a row that is not there and for any other role.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /// The base's roles and "index".
    QHash<int, QByteArray> roleNames() const override;

    // The operations on a row stand before those on a profile: QML takes the last that fits.

    /// The row of the copy, which is the last one; -1, with a line in the log, when there is none.
    Q_INVOKABLE int clone(int index);
    /// Null, with a line in the log, when there is no copy.
    Q_INVOKABLE Velmar::VideoOverlay::Profile *clone(Velmar::VideoOverlay::Profile *profile,
                                                     QString name = QString());
    /// Deletes the file, too, and makes the profile that is then in this row current, or the last
    /// one; also when the removed one was not current. Leaves a read-only profile, and says true.
    /// False, with a line in the log, when there is no such row.
    Q_INVOKABLE bool remove(int index);
    /// False, with a line in the log, when there is no such row.
    Q_INVOKABLE bool setCurrentProfileByIndex(int index);
    /// Announces the profile, then stores it as the one to start with. Silent when it is current
    /// already. False, with a line in the log, for null.
    Q_INVOKABLE bool setCurrentProfile(Velmar::VideoOverlay::Profile *profile);
    /// Null, with a line in the log, when there is none.
    Q_INVOKABLE Velmar::VideoOverlay::Profile *currentProfile() const;
    /// Saves what is on the display into the current profile. A read-only profile stays as it is
    /// and stays current; a copy of it named @p name is saved instead. When saving fails, which is
    /// logged, the profile and what counts as changed stay as they were. So they do, with a line in
    /// the log, while a profile is being loaded, and when the current one was not: what it holds
    /// was not shown yet and would be lost. Handlers of profileLoaded() may save.
    Q_INVOKABLE void saveCurrentProfile(QString name = QString());
    /// Announces the current profile again, so that the display is built from it anew.
    Q_INVOKABLE void revertCurrentProfile();
    /// Makes the records of @p profile those of the live elements, in their order, followed by the
    /// general settings. Saves nothing. Returns @p profile; null, with a line in the log, when it
    /// may not be saved yet, see there.
    Q_INVOKABLE Velmar::VideoOverlay::Profile *applyChanges(Velmar::VideoOverlay::Profile *profile);
    /// Whether anything was edited, added or removed since the last load or save. What the operator
    /// typed into a free text does not count: no profile holds it. False, with a line in the log,
    /// when there is no current profile.
    Q_INVOKABLE bool isCurrentProfileChanged();

    int currentProfileIndex() const; ///< -1 when none is current
    QString getDefaultProfilePath(); ///< as stored; empty, and logged, when none is
    /// Makes the first profile of this name current, else the built-in default profile, else none.
    void setProfileByName(const QString &name);
    /// Makes the stored profile current: by its path, else by the name of its file, else the
    /// built-in default profile. Called by the host when whoever builds the overlay is connected.
    void selectStartupProfile();

Q_SIGNALS:
    void currentProfileChanged(Velmar::VideoOverlay::Profile *profile); ///< null: there is none
    void saveCurrentProfileRequest(); ///< never emitted by the library
    void profileLoaded();             ///< for whoever loads profiles to emit

public Q_SLOTS:
    void forwardProfileLoaded(); ///< does nothing

private:
    friend class COsdBuilder; ///< asks what is still true of an announcement; says when it is done

    enum class Announced { TheSame, Another }; ///< than was current before

    Profile *profileAt(int row) const; ///< null out of range
    void announceCurrentProfile(Announced announced);
    bool isAnnouncing(const Profile *profile) const;
    bool isCurrent(const Profile *profile) const; ///< without a word in the log
    void onLoaded();
    void onRenamed(Profile *profile);
    void beginAdding();
    void endAdding();
    bool maySave(const Profile &profile, const QString &message, const QString &subject) const;
    QList<ElementParam> recordsToSave(const Profile &profile) const;
    void save(Profile &profile, const QList<ElementParam> &records);
    QSet<int> handMadeDifferences() const;
    void rememberDifferences();

    CVideoOverlayManager &m_manager;
    std::unique_ptr<ProfilesManager> m_profiles;
    QPointer<Profile> m_currentProfile;
    QSet<int> m_knownDifferences; ///< those at the last load or save
    std::unique_ptr<ShownProfile> m_shown;
    std::unique_ptr<QList<ElementParam>> m_recordsOfCopy; ///< while a read-only profile is saved
};

} // namespace Velmar::VideoOverlay
