// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/osd/TestCatalog.h"
#include "tests/osd/TestRecord.h"
#include "tests/support/FakeCapabilitiesBackend.h"
#include "tests/support/RecordingDisplayBackend.h"
#include "videooverlay/display/CVideoOverlayCapabilities.h"
#include "videooverlay/display/CVideoOverlayControl.h"
#include "videooverlay/display/CVideoOverlayManager.h"
#include "videooverlay/models/VideoOverlayElementListModel.h"
#include "videooverlay/models/VideoOverlayProfilesModel.h"
#include "videooverlay/osd/CAbstractOsdDatasourceFactory.h"
#include "videooverlay/osd/COsdBuilder.h"
#include "videooverlay/osd/COsdElementDatasource.h"

#include <QTemporaryDir>

#include <functional>
#include <memory>

namespace Velmar::Test {

/// Makes what a test tells it to and writes down the types that it was asked for.
class TestFactory : public VideoOverlay::CAbstractOsdDatasourceFactory
{
public:
    using Make = std::function<VideoOverlay::COsdElementDatasource *(
        VideoOverlay::CVideoOverlayElement *, VideoOverlay::ElementParam &)>;

    /// Without @p make it accepts nothing.
    explicit TestFactory(Make make = {});
    bool accept(VideoOverlay::ElementParam &param) override;
    VideoOverlay::COsdElementDatasource *
    buildDatasource(VideoOverlay::CVideoOverlayElement *element, VideoOverlay::ElementParam &param,
                    QSharedPointer<VideoOverlay::TemplateCaptionResolver> resolver) override;

    QStringList asked;

private:
    Make m_make;
};

/// A whole overlay with the one builder initialised for it. Undoes what it connected, so that the
/// next one starts afresh.
class BuilderWorld
{
public:
    /// With @p catalogs, templates come from there instead of from this->templates. Not owned.
    explicit BuilderWorld(CATManagement::CTemplateManager *catalogs = nullptr);
    ~BuilderWorld();

    VideoOverlay::VideoOverlayElementListModel &model() const;
    /// Makes it the manager's current profile without loading it.
    void select(VideoOverlay::Profile &profile);
    /// Makes it the manager's current profile and loads it.
    void load(VideoOverlay::Profile &profile);

    QTemporaryDir directory;
    FakeCapabilitiesBackend capabilitiesBackend;
    RecordingDisplayBackend display;
    VideoOverlay::CVideoOverlayCapabilities capabilities;
    VideoOverlay::CVideoOverlayControl control;
    std::unique_ptr<VideoOverlay::CVideoOverlayManager> manager;
    std::unique_ptr<VideoOverlay::VideoOverlayProfilesModel> profiles;
    TestTemplates templates;
    VideoOverlay::COsdBuilder *builder = nullptr;
};

/// The datasource of an element; null when it has none.
VideoOverlay::COsdElementDatasource *
datasourceOf(const VideoOverlay::CVideoOverlayElement *element);

VideoOverlay::ElementParam recordOfType(const QVariant &type);

/// A record of an inspection text (type 3 or 6), as a profile holds it.
VideoOverlay::ElementParam inspectionRecord(const QString &table, const QString &column, int type);

/// "table.column.type" of each record that is an inspection text, in order.
QStringList inspectionKeys(const VideoOverlay::Profile &profile);

} // namespace Velmar::Test
