// SPDX-License-Identifier: Apache-2.0
#include "tests/osd/BuilderWorld.h"

#include "host/platform/Directories.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/osd/COsdDomainDatasource.h"

#include <utility>

namespace Velmar::Test {

using VideoOverlay::COsdBuilder;
using VideoOverlay::COsdDomainDatasource;
using VideoOverlay::COsdElementDatasource;
using VideoOverlay::CVideoOverlayElement;
using VideoOverlay::CVideoOverlayManager;
using VideoOverlay::ElementParam;
using VideoOverlay::Profile;

TestFactory::TestFactory(Make make)
    : CAbstractOsdDatasourceFactory({})
    , m_make(std::move(make))
{
}

bool TestFactory::accept(ElementParam &param)
{
    asked.append(param.value(QStringLiteral("type")).toString());
    return bool(m_make);
}

COsdElementDatasource *
TestFactory::buildDatasource(CVideoOverlayElement *element, ElementParam &param,
                             QSharedPointer<VideoOverlay::TemplateCaptionResolver>)
{
    return m_make(element, param);
}

BuilderWorld::BuilderWorld(CATManagement::CTemplateManager *catalogs)
{
    Directories::setSettingsDirectory(directory.path());
    Directories::setReadonlyConfigDirectory(directory.path());
    capabilities.setBackend(&capabilitiesBackend);
    control.setBackend(&display);
    AppStateControl::setActiveInspection({});
    AppStateControl::setActiveProject({});
    COsdDomainDatasource::rememberDomainObject({});
    manager = std::make_unique<CVideoOverlayManager>(control, capabilities);
    profiles = std::make_unique<VideoOverlay::VideoOverlayProfilesModel>(*manager);
    manager->setProfilesModel(profiles.get());
    builder = COsdBuilder::initialize(catalogs ? *catalogs : templates, *manager);
}

BuilderWorld::~BuilderWorld()
{
    QObject::disconnect(AppState::instance(), nullptr, builder, nullptr);
    COsdDomainDatasource::captionResolver.clear();
}

VideoOverlay::VideoOverlayElementListModel &BuilderWorld::model() const
{
    return *manager->getElementListModel();
}

void BuilderWorld::select(Profile &profile)
{
    profiles->setCurrentProfile(&profile);
}

void BuilderWorld::load(Profile &profile)
{
    select(profile);
    builder->load(&profile);
}

COsdElementDatasource *datasourceOf(const CVideoOverlayElement *element)
{
    return element->findChild<COsdElementDatasource *>(QString(), Qt::FindDirectChildrenOnly);
}

ElementParam recordOfType(const QVariant &type)
{
    ElementParam record;
    if (type.isValid())
        record.insert(QStringLiteral("type"), type);
    return record;
}

ElementParam inspectionRecord(const QString &table, const QString &column, int type)
{
    ElementParam record = type == CVideoOverlayElement::InspText
        ? ElementParam::createInspTextDefault()
        : ElementParam::createInspStaticTextDefault();
    record.insert(QStringLiteral("TDIR_Key"), table);
    record.insert(QStringLiteral("columnBound"), column);
    return record;
}

QStringList inspectionKeys(const Profile &profile)
{
    QStringList keys;
    for (const ElementParam &record : profile.elements()) {
        const int type = record.value(QStringLiteral("type")).toInt();
        if (type == CVideoOverlayElement::InspText || type == CVideoOverlayElement::InspStaticText)
            keys.append(COsdBuilder::generateOsdColumnsKey(
                record.value(QStringLiteral("TDIR_Key")).toString(),
                record.value(QStringLiteral("columnBound")).toString(), type));
    }
    return keys;
}

} // namespace Velmar::Test
