// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/profiles/Profile.h"
#include "videooverlay/xqvideooverlay_export.h"

#include <QAbstractListModel>
#include <QPointer>
#include <QString>

#include <memory>

namespace Velmar::VideoOverlay {

class CVideoOverlayManager;
class ProfilesManager;

/// The profiles as a list for the screens, and the one that is current. Selects, saves, reverts,
/// clones and removes. Whoever builds the overlay follows currentProfileChanged.
class XQVIDEOOVERLAY_EXPORT VideoOverlayProfilesModel : public QAbstractListModel
{
    Q_OBJECT
    // clang-format off
    Q_PROPERTY(Velmar::VideoOverlay::Profile *currentProfile READ currentProfile WRITE setCurrentProfile NOTIFY currentProfileChanged)
    Q_PROPERTY(int currentProfileIndex READ currentProfileIndex WRITE setCurrentProfileByIndex NOTIFY currentProfileChanged)
    // clang-format on

public:
    enum Role {
        IndexRole = Qt::UserRole, ///< "index": the row
    };
    Q_ENUM(Role)

    /// @p manager is not owned and must outlive this object. No profile is current at first.
    explicit VideoOverlayProfilesModel(CVideoOverlayManager &manager);
    ~VideoOverlayProfilesModel() override;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

    // "clone(int)" before "clone(Profile)": QML takes the last that fits.
    Q_INVOKABLE int clone(int index);
    Q_INVOKABLE Velmar::VideoOverlay::Profile *clone(Velmar::VideoOverlay::Profile *profile,
                                                     QString name = QString());
    Q_INVOKABLE bool remove(int index);
    Q_INVOKABLE bool setCurrentProfileByIndex(int index);
    Q_INVOKABLE bool setCurrentProfile(Velmar::VideoOverlay::Profile *profile);
    Q_INVOKABLE Velmar::VideoOverlay::Profile *currentProfile() const;
    Q_INVOKABLE void saveCurrentProfile(QString name = QString());
    Q_INVOKABLE void revertCurrentProfile();
    Q_INVOKABLE Velmar::VideoOverlay::Profile *applyChanges(Velmar::VideoOverlay::Profile *profile);
    Q_INVOKABLE bool isCurrentProfileChanged();

    int currentProfileIndex() const; ///< -1 when none
    QString getDefaultProfilePath();
    void setProfileByName(const QString &name);
    void selectStartupProfile();

Q_SIGNALS:
    void currentProfileChanged(Velmar::VideoOverlay::Profile *profile);
    void saveCurrentProfileRequest();
    void profileLoaded();

public Q_SLOTS:
    void forwardProfileLoaded();

private:
    CVideoOverlayManager &m_manager;
    QPointer<Profile> m_currentProfile;
};

} // namespace Velmar::VideoOverlay
