// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/captions/CaptionResolver.h"

namespace Velmar::CATManagement {
class CTemplateManager;
}

namespace Velmar::Templates {
class CTemplateColumn;
}

namespace Velmar::VideoOverlay {

/// Takes captions from the columns of the catalog template that was loaded last. The builder makes
/// one and shares it with its datasources.
class XQVIDEOOVERLAY_EXPORT TemplateCaptionResolver : public CaptionResolver
{
    Q_OBJECT
public:
    /// @p templates is not owned and must outlive this object. Follows AppState from now on.
    explicit TemplateCaptionResolver(Velmar::CATManagement::CTemplateManager &templates);
    ~TemplateCaptionResolver() override;

    /// The caption of the column that the record is bound to ("columnBound" in "TDIR_Key").
    QString getCaption(ElementParam &param) const override;

    /// The column named @p binding of the table @p tableKey, looked for in the program views whose
    /// columns may be shown. Null, and a line in the log, when there is none.
    const Velmar::Templates::CTemplateColumn *getColumn(const QString &binding,
                                                        const QString &tableKey) const;

    /// As getColumn(), in any template and without a line in the log.
    static const Velmar::Templates::CTemplateColumn *
    findColumn(const Velmar::Templates::CCatalogTemplate &catalogTemplate, const QString &binding,
               const QString &tableKey);

    /// Null until a template was loaded.
    QSharedPointer<Velmar::Templates::CCatalogTemplate> catalogTemplate() const;

Q_SIGNALS:
    // Repeats the base's signal, which is emitted with it: connecting to either counts once.
    /// Repeats the base's: captions may have changed.
    void resolverReady();
    void templateReady(); ///< a template was set; comes before resolverReady

public Q_SLOTS:
    /// Keeps both and emits templateReady, then resolverReady. Null takes the template away.
    void setTemplate(
        const Velmar::Base::GUID &uniqueId,
        const QSharedPointer<Velmar::Templates::CCatalogTemplate> &catalogTemplate) override;
    /// Takes the template with this identifier from the manager's cache. An empty identifier and
    /// one that is not in the cache change nothing.
    void templateLoadCompleted(const Velmar::Base::GUID &templateId);

private:
    Velmar::CATManagement::CTemplateManager &m_templates;
    QString m_templateId;
    QSharedPointer<Velmar::Templates::CCatalogTemplate> m_template;
};

} // namespace Velmar::VideoOverlay
