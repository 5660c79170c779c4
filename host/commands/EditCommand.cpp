// SPDX-License-Identifier: Apache-2.0
#include "host/commands/EditCommand.h"

#include "host/commands/ElementProperties.h"
#include "host/commands/Report.h"
#include "host/profiles/ProfilesLock.h"
#include "host/session/OverlaySession.h"

#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/elements/CVideoOverlayElement.h>
#include <videooverlay/models/VideoOverlayElementListModel.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>

#include <QColor>
#include <QFileInfo>

#include <algorithm>
#include <iterator>

namespace Velmar::Host {

using namespace VideoOverlay;

namespace {

constexpr QSize PictureSize {1920, 1080}; // the size that layouts are made for

bool isNamed(const CVideoOverlayElement &element, const QString &name)
{
    const ElementParam record = element.getParamObject();
    switch (element.type()) {
    case CVideoOverlayElement::FreePicture:
        return QFileInfo(record.value(QStringLiteral("imagePath")).toString()).fileName() == name;
    case CVideoOverlayElement::FreeText:
        return name == ElementParam::NAME_OSD_FREE_TEXT_BOX;
    default:
        return record.value(ElementParam::NAME_COLUMNBOUND).toString() == name
            || record.value(QStringLiteral("text")).toString() == name;
    }
}

/// The elements that show the value or column @p name, a fixed text that is @p name, or a picture
/// of a file of that name.
QList<CVideoOverlayElement *> elementsNamed(const OverlaySession &session, const QString &name)
{
    QList<CVideoOverlayElement *> found;
    const QList<CVideoOverlayElement *> elements = session.manager().getElementList();
    std::copy_if(elements.begin(), elements.end(), std::back_inserter(found),
                 [&](const CVideoOverlayElement *element) { return isNamed(*element, name); });
    return found;
}

} // namespace

int runEdit(const Options &options)
{
    QString error;
    ProfilesLock lock; // from reading to saving
    if (!lock.take(&error))
        return reportError(error);
    OverlaySession session(PictureSize);
    if (!session.openProfiles(options.profile, &error))
        return reportError(error);
    VideoOverlayProfilesModel &profiles = *session.profiles();
    if (profiles.currentProfile()->readOnly())
        return reportError(QStringLiteral("%1: is read-only; clone it and edit the copy")
                               .arg(profiles.currentProfile()->caption()));

    QList<CVideoOverlayElement *> elements;
    if (options.elementName.isEmpty()) {
        const QVariant added
            = session.manager().getElementListModel()->createStaticText(options.addedText);
        elements.append(qobject_cast<CVideoOverlayElement *>(added.value<QObject *>()));
        // A new text has neither colours nor its switch on.
        elements.first()->setProperty("textColor", QColor(Qt::white));
        elements.first()->setProperty("backgroundColor", QColor(Qt::blue));
        elements.first()->setEnabled(true);
    } else {
        elements = elementsNamed(session, options.elementName);
        if (elements.isEmpty())
            return reportError(QStringLiteral("%1: has no element \"%2\"")
                                   .arg(profiles.currentProfile()->caption(), options.elementName));
    }
    for (const auto &change : options.changes) {
        if (!setElementProperty(elements, change.first, change.second, &error))
            return reportError(error);
    }
    if (!profiles.isCurrentProfileChanged())
        return 0; // it was like that before
    profiles.saveCurrentProfile();
    return profiles.isCurrentProfileChanged()
        ? reportError(QStringLiteral("%1: cannot be saved").arg(profiles.currentProfile()->path()))
        : 0;
}

} // namespace Velmar::Host
