// SPDX-License-Identifier: Apache-2.0
#include "host/cli/EditCommand.h"

#include "host/OverlaySession.h"
#include "host/cli/ElementProperties.h"
#include "host/cli/Report.h"

#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/elements/CVideoOverlayElement.h>
#include <videooverlay/models/VideoOverlayElementListModel.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>

#include <QColor>

namespace Velmar::Host {

using namespace VideoOverlay;

namespace {

constexpr QSize PictureSize {1920, 1080}; // the size that layouts are made for

/// The elements that show the value or column @p name, or a fixed text that is @p name.
QList<CVideoOverlayElement *> elementsNamed(const OverlaySession &session, const QString &name)
{
    QList<CVideoOverlayElement *> found;
    const QList<CVideoOverlayElement *> elements = session.manager().getElementList();
    for (CVideoOverlayElement *element : elements) {
        const ElementParam record = element->getParamObject();
        if (record.value(ElementParam::NAME_COLUMNBOUND).toString() == name
            || record.value(QStringLiteral("text")).toString() == name)
            found.append(element);
    }
    return found;
}

} // namespace

int runEdit(const Options &options)
{
    QString error;
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
