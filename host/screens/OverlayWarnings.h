// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/check/ElementRules.h"

#include <QString>
#include <QVariantList>

#include <functional>

namespace Velmar::VideoOverlay {
class CVideoOverlayElement;
class CVideoOverlayManager;
} // namespace Velmar::VideoOverlay

namespace Velmar::Host {

class UiTexts;

/// What looks wrong on the overlay, in words for the operator. The rules are those by which the
/// files of profiles are checked.
class OverlayWarnings
{
public:
    using Element = VideoOverlay::CVideoOverlayElement;

    /// None of the references is owned; all must outlive this object. @p nameOf gives what people
    /// call an element.
    OverlayWarnings(VideoOverlay::CVideoOverlayManager &manager, const UiTexts &texts,
                    std::function<QString(const Element &)> nameOf);

    /// Maps of "text" and the element's "index", in the order of the elements. What is switched off
    /// needs no warning.
    QVariantList find();

private:
    CheckedElement checked(Element &element) const;
    QString textOf(const ElementFault &fault, const QList<Element *> &elements) const;

    VideoOverlay::CVideoOverlayManager &m_manager;
    const UiTexts &m_texts;
    const std::function<QString(const Element &)> m_nameOf;
    ElementRules m_rules;
    bool m_hasRules = false; ///< reading the catalogs can wait until somebody asks
};

} // namespace Velmar::Host
