// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/models/ShownProfile_p.h"

#include "videooverlay/display/CVideoOverlayManager.h"
#include "videooverlay/elements/ElementType_p.h"
#include "videooverlay/osd/COsdBuilder.h"

#include <QSet>

#include <algorithm>

namespace Velmar::VideoOverlay {

namespace {

const QString idKey = QStringLiteral("id");

/// A copy of a profile is shown as much as the profile is.
bool holdSame(const Profile &one, const Profile &other)
{
    return &one == &other || one.elements() == other.elements();
}

} // namespace

ShownProfile::ShownProfile(CVideoOverlayManager &manager)
    : m_manager(manager)
{
}

ShownProfile::Announcement::Announcement(ShownProfile &shown, const Profile *profile,
                                         bool isAnother)
    : m_shown(shown)
    , m_number(++shown.m_announcements)
    , m_hadElements(shown.m_manager.elementsCount() > 0)
{
    shown.m_announced.append(profile);
    shown.m_idsBefore = shown.highestId(profile);
    if (isAnother && shown.m_origin == Origin::Current)
        shown.m_origin = Origin::Another;
}

ShownProfile::Announcement::~Announcement()
{
    m_shown.m_announced.removeLast();
    if (m_number != m_shown.m_announcements)
        return; // there was another one since
    const QList<CVideoOverlayElement *> elements = m_shown.m_manager.getElementList();
    const auto isNew = [this](const CVideoOverlayElement *element) {
        return element->id() > m_shown.m_idsBefore;
    };
    const bool hasNew = std::any_of(elements.cbegin(), elements.cend(), isNew);
    const bool hasOld = !std::all_of(elements.cbegin(), elements.cend(), isNew);
    if (hasNew || (m_hadElements && !hasOld))
        m_shown.m_origin = Origin::Current; // built at once, without a word
}

bool ShownProfile::isAnnouncing(const Profile *profile) const
{
    return m_announced.contains(profile);
}

void ShownProfile::setLoaded()
{
    m_origin = Origin::Current;
}

ShownProfile::State ShownProfile::state(const Profile &profile, const Profile *current) const
{
    const COsdBuilder &builder = *COsdBuilder::instance();
    if (builder.m_manager == &m_manager && (builder.m_isLoading || builder.m_isLooking))
        return State::Loading;
    const Profile *shown = m_origin == Origin::Current ? current : nullptr;
    if (isBuilt())
        shown = builder.m_built;
    if (shown && holdSame(profile, *shown))
        return State::Shown;
    if (hasLiveRecord(profile))
        return State::Added;
    const auto &records = profile.elements();
    const bool isEmpty = std::all_of(records.cbegin(), records.cend(), isGeneral);
    const bool isOthers = isBuilt() || m_origin == Origin::Another;
    if (isOthers)
        return isEmpty && &profile != current ? State::Added : State::NotShown;
    return isEmpty || m_manager.elementsCount() > 0 ? State::Added : State::NotShown;
}

bool ShownProfile::isBuilt() const
{
    return COsdBuilder::instance()->m_builtIn == &m_manager;
}

int ShownProfile::staleIds() const
{
    return m_origin == Origin::Current ? m_idsBefore : 0;
}

bool ShownProfile::hasLiveRecord(const Profile &profile) const
{
    QSet<int> live;
    const QList<CVideoOverlayElement *> elements = m_manager.getElementList();
    for (const CVideoOverlayElement *element : elements)
        live.insert(element->id());
    return std::any_of(profile.elements().cbegin(), profile.elements().cend(),
                       [&live](const ElementParam &record) {
                           return !isGeneral(record) && live.contains(record.value(idKey).toInt());
                       });
}

int ShownProfile::highestId(const Profile *profile) const
{
    int highest = 0;
    const QList<CVideoOverlayElement *> elements = m_manager.getElementList();
    for (const CVideoOverlayElement *element : elements)
        highest = std::max(highest, element->id());
    if (!profile)
        return highest;
    for (const ElementParam &record : profile->elements()) {
        if (!isGeneral(record))
            highest = std::max(highest, record.value(idKey).toInt());
    }
    return highest;
}

} // namespace Velmar::VideoOverlay
