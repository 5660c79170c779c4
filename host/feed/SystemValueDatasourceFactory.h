// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <videooverlay/osd/CAbstractOsdDatasourceFactory.h>

#include <QHash>
#include <QSharedPointer>
#include <QString>

#include <memory>
#include <vector>

namespace Velmar::CATManagement {
class CTemplateManager;
}

namespace Velmar::VideoOverlay {
class DictCaptionResolver;
class UnitsProvider;
} // namespace Velmar::VideoOverlay

namespace Velmar::Host {

/// Serves the system texts: speed, distances, angles, temperatures, pressures, date and times.
/// Register it before the factory for the inspection database, which would take them otherwise,
/// and keep it longer than the elements: it owns their converters.
class SystemValueDatasourceFactory : public VideoOverlay::CAbstractOsdDatasourceFactory
{
public:
    /// @p templates is not owned and must outlive this object.
    explicit SystemValueDatasourceFactory(CATManagement::CTemplateManager &templates);
    ~SystemValueDatasourceFactory() override;

    /// System texts that are bound to a known value.
    bool accept(VideoOverlay::ElementParam &param) override;
    /// A text whose @p param names no unit follows the user's. Null for what is no text element.
    VideoOverlay::COsdElementDatasource *
    buildDatasource(VideoOverlay::CVideoOverlayElement *element, VideoOverlay::ElementParam &param,
                    QSharedPointer<VideoOverlay::TemplateCaptionResolver> resolver) override;

    /// What stands before a value in the current language; empty for a name that has no caption.
    QString caption(const QString &name) const;
    /// The converter that fits the value's name; null where values are shown as they come. Owned
    /// by this object.
    VideoOverlay::UnitsProvider *converter(const QString &name) const;

private:
    explicit SystemValueDatasourceFactory(
        const QSharedPointer<VideoOverlay::DictCaptionResolver> &resolver);

    QSharedPointer<VideoOverlay::DictCaptionResolver> m_captions; ///< one for all texts
    std::vector<std::unique_ptr<VideoOverlay::UnitsProvider>> m_owned;
    QHash<QString, VideoOverlay::UnitsProvider *> m_converters; ///< by value name
};

} // namespace Velmar::Host
