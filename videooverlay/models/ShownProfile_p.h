// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QVector>

namespace Velmar::VideoOverlay {

class CVideoOverlayManager;
class Profile;

/// Knows of which profile the live elements are, so that none is saved that was not shown. The
/// builder tells what it has built. Of a host that builds the overlay by itself it is known that
/// elements come with the announcement of a profile, or that it says when the profile is loaded.
class ShownProfile
{
public:
    enum class State {
        Loading,  ///< its records are in use, and not all are live yet
        NotShown, ///< none of its records is live; what is, belongs to another or to nobody
        Added,    ///< nobody loaded it, but there are elements that were matched with it or added
        Shown,    ///< what is not live was deleted
    };

    explicit ShownProfile(CVideoOverlayManager &manager);

    /// Around the announcement that a profile is current. A null one is announced, too.
    class Announcement
    {
    public:
        /// @p isAnother: than was current before.
        Announcement(ShownProfile &shown, const Profile *profile, bool isAnother);
        ~Announcement();

    private:
        Q_DISABLE_COPY(Announcement)
        ShownProfile &m_shown;
        const int m_number;
        const bool m_hadElements;
    };

    /// Also while a later announcement is made from a handler of this one.
    bool isAnnouncing(const Profile *profile) const;
    /// Whoever builds the overlay of the current profile is done.
    void setLoaded();

    State state(const Profile &profile, const Profile *current) const;
    bool isBuilt() const; ///< by the library's builder
    /// Ids up to this one are of an earlier overlay, unless an element has them.
    int staleIds() const;

private:
    enum class Origin {
        Unknown, ///< nobody has built anything
        Current, ///< the elements are the current profile's
        Another, ///< they are of the one that was current before
    };

    bool hasLiveRecord(const Profile &profile) const;
    int highestId(const Profile *profile) const;

    CVideoOverlayManager &m_manager;
    Origin m_origin = Origin::Unknown;
    int m_idsBefore = 0;                  ///< the highest when a profile was announced last
    int m_announcements = 0;              ///< so far
    QVector<const Profile *> m_announced; ///< those in progress, each from a handler of the last
};

} // namespace Velmar::VideoOverlay
