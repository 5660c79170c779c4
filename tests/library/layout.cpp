// SPDX-License-Identifier: Apache-2.0
// Compiled by tst_layout only to have the compiler print the layout of these classes. The derived
// classes bring their virtual tables into this file.
#include "videooverlay/captions/DictCaptionResolver.h"
#include "videooverlay/display/CAbstractVideoOverlayCapabilitiesBackend.h"
#include "videooverlay/display/CAbstractVideoOverlayControlBackend.h"
#include "videooverlay/display/CVideoOverlayCapabilities.h"
#include "videooverlay/display/CVideoOverlayControl.h"
#include "videooverlay/display/CVideoOverlayManager.h"
#include "videooverlay/display/IVideoOverlayElementAccessor.h"
#include "videooverlay/display/VideoOverlaySettings.h"
#include "videooverlay/elements/CVideoOverlayElement.h"
#include "videooverlay/elements/CVideoOverlayImage.h"
#include "videooverlay/elements/CVideoOverlayText.h"
#include "videooverlay/elements/ElementParam.h"
#include "videooverlay/elements/RenderedElement.h"
#include "videooverlay/models/VideoOverlayElementListModel.h"
#include "videooverlay/models/VideoOverlayProfilesModel.h"
#include "videooverlay/osd/COsdImageDatasource.h"
#include "videooverlay/osd/COsdImageDatasourceFactory.h"
#include "videooverlay/osd/COsdScreenSnipDatasource.h"
#include "videooverlay/osd/COsdStaticTextDatasource.h"
#include "videooverlay/osd/COsdValueDatasource.h"
#include "videooverlay/profiles/Profile.h"
#include "videooverlay/profiles/ProfilesManager.h"
#include "videooverlay/units/UnitsProvider.h"

using namespace Velmar::VideoOverlay;

struct ElementLayout : CVideoOverlayElement
{
};
struct TextLayout : CVideoOverlayText
{
};
struct ImageLayout : CVideoOverlayImage
{
};
struct SettingsLayout : VideoOverlaySettings
{
    using VideoOverlaySettings::VideoOverlaySettings;
};
struct CapabilitiesLayout : CVideoOverlayCapabilities
{
};
struct ControlLayout : CVideoOverlayControl
{
};
struct CapabilitiesBackendLayout : CAbstractVideoOverlayCapabilitiesBackend
{
    int maximumColumnCount() override { return 0; }
    int maximumRowCount() override { return 0; }
    int imageWidth() override { return 0; }
    int imageHeight() override { return 0; }
};
struct ControlBackendLayout : CAbstractVideoOverlayControlBackend
{
    bool isReady() override { return false; }
    bool isActive() override { return false; }
    bool displayElement(CVideoOverlayElement &) override { return false; }
    bool deleteElement(CVideoOverlayElement &) override { return false; }
    void setPaintMargins(const QRectF &) override { }
    bool videoOverlayEnabled() override { return false; }
    void setVideoOverlayEnabled(bool) override { }
    void prepareOverlay() override { }
};
struct CaptionResolverLayout : CaptionResolver
{
    QString getCaption(ElementParam &) const override { return {}; }
    void setTemplate(const Velmar::Base::GUID &,
                     const QSharedPointer<Velmar::Templates::CCatalogTemplate> &) override
    {
    }
};
struct TemplateResolverLayout : TemplateCaptionResolver
{
    using TemplateCaptionResolver::TemplateCaptionResolver;
};
struct DictResolverLayout : DictCaptionResolver
{
    using DictCaptionResolver::DictCaptionResolver;
};
struct ElementDatasourceLayout : COsdElementDatasource
{
    using COsdElementDatasource::COsdElementDatasource;
};
struct TextDatasourceLayout : COsdTextDatasource
{
    using COsdTextDatasource::COsdTextDatasource;
};
struct ValueDatasourceLayout : COsdValueDatasource
{
    using COsdValueDatasource::COsdValueDatasource;
};
struct StaticDatasourceLayout : COsdStaticTextDatasource
{
    using COsdStaticTextDatasource::COsdStaticTextDatasource;
};
struct ImageDatasourceLayout : COsdImageDatasource
{
    using COsdImageDatasource::COsdImageDatasource;
};
struct SnipDatasourceLayout : COsdScreenSnipDatasource
{
    using COsdScreenSnipDatasource::COsdScreenSnipDatasource;
};
struct FactoryLayout : CAbstractOsdDatasourceFactory
{
    using CAbstractOsdDatasourceFactory::CAbstractOsdDatasourceFactory;
    bool accept(ElementParam &) override { return false; }
    COsdElementDatasource *buildDatasource(CVideoOverlayElement *, ElementParam &,
                                           QSharedPointer<TemplateCaptionResolver>) override
    {
        return nullptr;
    }
};
struct ImageFactoryLayout : COsdImageDatasourceFactory
{
};
struct AccessorLayout : IVideoOverlayElementAccessor
{
    QString makeKey(const ElementParam &) override { return {}; }
    void registerElement(const QString &, CVideoOverlayElement *) override { }
    void unregisterElement(CVideoOverlayElement *) override { }
};
struct ManagerLayout : CVideoOverlayManager
{
    using CVideoOverlayManager::CVideoOverlayManager;
};
struct ProfileLayout : Profile
{
};
struct ProfilesManagerLayout : ProfilesManager
{
};

void makeResolversAndDatasources(Velmar::CATManagement::CTemplateManager &templates,
                                 CVideoOverlayText *text, CVideoOverlayImage *image,
                                 ElementParam &param)
{
    const CaptionResolverLayout resolver;
    const TemplateResolverLayout templateResolver(templates);
    const DictResolverLayout dictResolver(templates);
    const ElementDatasourceLayout element(text, param);
    const TextDatasourceLayout textDatasource({}, text, param);
    const ValueDatasourceLayout value({}, text, param);
    const StaticDatasourceLayout staticText(text, param);
    const ImageDatasourceLayout imageDatasource(image, param);
    const SnipDatasourceLayout snip(image, param);
    const FactoryLayout factory(QSharedPointer<TemplateCaptionResolver> {});
    const ImageFactoryLayout imageFactory;
}

void makeManagerAndModels(CVideoOverlayControl &control, CVideoOverlayCapabilities &capabilities)
{
    const AccessorLayout accessor;
    ManagerLayout manager(control, capabilities);
    const VideoOverlayElementListModel elements(manager);
    const VideoOverlayProfilesModel profilesModel(manager);
    const ProfileLayout profile;
    const ProfilesManagerLayout profiles;
}

void makeAll(CVideoOverlayCapabilities &capabilities)
{
    const ElementLayout element;
    const TextLayout text;
    const ImageLayout image;
    const SettingsLayout settings(capabilities);
    const CapabilitiesLayout other;
    const ControlLayout control;
    const CapabilitiesBackendLayout capabilitiesBackend;
    const ControlBackendLayout controlBackend;
    const RenderedElement rendered;
    const ElementParam param;
}
