// SPDX-License-Identifier: Apache-2.0
#include "host/cli/EditCommand.h"

#include "host/OverlaySession.h"
#include "host/cli/Report.h"
#include "host/profiles/ProfilesLock.h"

#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/elements/CVideoOverlayElement.h>
#include <videooverlay/models/VideoOverlayElementListModel.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>

#include <QMetaProperty>

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

/// Writes one property as a screen would. False, and a text in @p error, when the element has no
/// such property or cannot take the value.
bool set(CVideoOverlayElement &element, const QString &property, const QString &text,
         QString *error)
{
    const QMetaObject *meta = element.metaObject();
    const QMetaProperty found
        = meta->property(meta->indexOfProperty(property.toUtf8().constData()));
    if (!found.isWritable() || property == QLatin1String("objectName")
        || property == QLatin1String("id") || property == QLatin1String("type")) {
        *error = QStringLiteral("--set: this element has no property \"%1\"").arg(property);
        return false;
    }
    QVariant value(text);
    const bool isSwitch = found.userType() == QMetaType::Bool;
    const bool understood = isSwitch
        ? text == QLatin1String("true") || text == QLatin1String("false")
        : value.convert(found.userType());
    if (!understood || !found.write(&element, value)
        || (found.userType() == QMetaType::QColor && !QColor(text).isValid())) {
        *error = QStringLiteral("--set: %1: \"%2\" is not a value of it").arg(property, text);
        return false;
    }
    return true;
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
        set(*elements.first(), QStringLiteral("textColor"), QStringLiteral("white"), &error);
        set(*elements.first(), QStringLiteral("backgroundColor"), QStringLiteral("blue"), &error);
        elements.first()->setEnabled(true);
    } else {
        elements = elementsNamed(session, options.elementName);
        if (elements.isEmpty())
            return reportError(QStringLiteral("%1: has no element \"%2\"")
                                   .arg(profiles.currentProfile()->caption(), options.elementName));
    }
    for (CVideoOverlayElement *element : qAsConst(elements)) {
        for (const auto &change : options.changes) {
            if (!set(*element, change.first, change.second, &error))
                return reportError(error);
        }
    }
    if (!profiles.isCurrentProfileChanged())
        return 0; // it was like that before
    profiles.saveCurrentProfile();
    return profiles.isCurrentProfileChanged()
        ? reportError(QStringLiteral("%1: cannot be saved").arg(profiles.currentProfile()->path()))
        : 0;
}

} // namespace Velmar::Host
