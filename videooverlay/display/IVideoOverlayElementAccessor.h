// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/xqvideooverlay_export.h"

#include <QString>

namespace Velmar::VideoOverlay {

class CVideoOverlayElement;
class ElementParam;

/// How the host finds the elements that show its live values. The manager registers the elements
/// that a profile binds to such a value. Called on the GUI thread, with the manager's lock held.
class XQVIDEOOVERLAY_EXPORT IVideoOverlayElementAccessor
{
public:
    virtual ~IVideoOverlayElementAccessor();

    /// The key under which the element with this record is registered. The host's choice; several
    /// elements may have the same.
    virtual QString makeKey(const ElementParam &param) = 0;
    /// The element is new; its datasource does not exist yet. Several may have one key.
    virtual void registerElement(const QString &key, CVideoOverlayElement *element) = 0;
    /// Called before an element is destroyed, also for elements that were never registered.
    virtual void unregisterElement(CVideoOverlayElement *element) = 0;
};

} // namespace Velmar::VideoOverlay
