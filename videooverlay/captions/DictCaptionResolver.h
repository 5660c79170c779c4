// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/captions/TemplateCaptionResolver.h"

#include <QHash>

namespace Velmar::CATManagement {
class CCatalogDescriptor;
}

namespace Velmar::VideoOverlay {

/// Captions of the system values (distance, speed, date, tilt, ...): in the language of the active
/// project's catalog, without a project in that of the user interface. Usable from construction.
/// Hosts share one among their system texts, and make it before their datasources, so that its
/// captions are new before theirs are asked for.
class XQVIDEOOVERLAY_EXPORT DictCaptionResolver : public TemplateCaptionResolver
{
    Q_OBJECT
public:
    /// @p templates is not owned and must outlive this object.
    explicit DictCaptionResolver(Velmar::CATManagement::CTemplateManager &templates);
    ~DictCaptionResolver() override;

    /// The caption of the value that the record is bound to ("columnBound").
    QString getCaption(ElementParam &param) const override;

    /// Translates all captions anew. Emits nothing.
    void setupTranslation();

    /// The codes of the active project's catalog, ISO 639-2/T and ISO 3166. False, a line in the
    /// log and both unchanged, without a project or when its catalog is not known.
    bool getLanguageCode(QString &language, QString &country) const;

    /// Null when the catalog is not known.
    const Velmar::CATManagement::CCatalogDescriptor *
    getCatalogDescriptor(const QString &catalogId) const;

private:
    QHash<QString, QString> m_captions;   ///< by value name, in the current language
    QHash<QString, QString> m_dictionary; ///< by value name, in English
};

} // namespace Velmar::VideoOverlay
