// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/captions/DictCaptionResolver.h"

#include "platform/applogic/CoreApplication.h"
#include "platform/appstate/AppState.h"
#include "platform/catmanagement/CCatalogDescriptor.h"
#include "platform/catmanagement/CCatalogTemplateRegistry.h"
#include "platform/database/CDomainObjectHelper.h"
#include "platform/translation/CTranslator.h"
#include "videooverlay/Log_p.h"
#include "videooverlay/elements/ElementParam.h"

namespace Velmar::VideoOverlay {

using Translation::CTranslator;

namespace {

const QLatin1String captionContext("Velmar.Corvane.App.OsdSystemTextCaption");

struct Caption
{
    const QString &key;
    const char *english;
};

/// In the order in which the dictionary is filled and the interface is asked.
const Caption captions[] = {
    {ElementParam::NAME_SECTION_DISTANCE_COUNTER, "Section distance counter"},
    {ElementParam::NAME_TOTAL_DISTANCE_COUNTER, "Total distance counter"},
    {ElementParam::NAME_SAT_DISTANCE_COUNTER, "SAT distance counter"},
    {ElementParam::NAME_SPEED, "Speed"},
    {ElementParam::NAME_DATE, "Date"},
    {ElementParam::NAME_TIME, "Time"},
    {ElementParam::NAME_VIDEO_TIME_COUNTER, "Video Time Counter"},
    {ElementParam::NAME_CAMERA_TILT, "Camera Tilt"},
    {ElementParam::NAME_CAMERA_TEMPERATURE, "Camera Temperature"},
    {ElementParam::NAME_CAMERA_PAN, "Camera Pan"},
    {ElementParam::NAME_CAMERA_PRESSURE, "Camera Pressure"},
    {ElementParam::NAME_CRAWLER_PITCH, "Crawler Pitch"},
    {ElementParam::NAME_CRAWLER_ROLL, "Crawler Roll"},
    {ElementParam::NAME_CRAWLER_TEMPERATURE, "Crawler Temperature"},
    {ElementParam::NAME_CRAWLER_PRESSURE, "Crawler Pressure"},
    {ElementParam::NAME_OBJECT_TEMPERATURE, "Object Temperature"},
};

} // namespace

DictCaptionResolver::DictCaptionResolver(CATManagement::CTemplateManager &templates)
    : TemplateCaptionResolver(templates)
{
    for (const Caption &caption : captions)
        m_dictionary.insert(caption.key, QString::fromLatin1(caption.english));
    setupTranslation();
    connect(this, &TemplateCaptionResolver::templateReady, this,
            &DictCaptionResolver::setupTranslation);
    connect(CTranslator::instance(), &CTranslator::currentLocaleChanged, this,
            &DictCaptionResolver::setupTranslation);
    connect(AppState::instance(), &AppState::activeProjectChanged, this, [this] {
        // The captions of a project that was opened follow once its template is there.
        if (AppState::instance()->getActiveProject())
            return;
        setupTranslation();
        Q_EMIT resolverReady();
    });
}

DictCaptionResolver::~DictCaptionResolver() = default;

QString DictCaptionResolver::getCaption(ElementParam &param) const
{
    const QString caption
        = m_captions.value(param.value(ElementParam::NAME_COLUMNBOUND).toString());
    if (caption.isEmpty())
        log(LogLevel::Warning, QStringLiteral("DictCaptionResolver cannot find caption!"));
    return caption;
}

void DictCaptionResolver::setupTranslation()
{
    m_captions.clear();
    CTranslator *translator = CTranslator::instance();
    QString language;
    QString country;
    if (getLanguageCode(language, country)) {
        const QString code = language + QLatin1Char('_') + country;
        translator->updateTranslationForGivenKeys(code, m_dictionary.keys());
        for (auto it = m_dictionary.cbegin(); it != m_dictionary.cend(); ++it) {
            const QString fullKey = captionContext + CTranslator::TXT_PART + it.key();
            m_captions.insert(it.key(), translator->translate(fullKey, it.value(), code));
        }
        return;
    }
    for (const Caption &caption : captions)
        m_captions.insert(
            caption.key,
            translator->txt(captionContext, caption.key, m_dictionary.value(caption.key), {}));
}

bool DictCaptionResolver::getLanguageCode(QString &language, QString &country) const
{
    const auto project = AppState::instance()->getActiveProject();
    if (!project) {
        log(LogLevel::Warning, QStringLiteral("Invalid project."));
        return false;
    }
    const QString catalogId = Database::CDomainObjectHelper::catalogIdFromObject(project);
    const CATManagement::CCatalogDescriptor *descriptor = getCatalogDescriptor(catalogId);
    if (!descriptor) {
        log(LogLevel::Warning,
            QStringLiteral("Cannot find catalog descriptor for id: <") + catalogId
                + QStringLiteral("> "));
        return false;
    }
    language = descriptor->languageCode();
    if (language == QLatin1String("FRE")) // the translations know French by its other code only
        language = QStringLiteral("FRA");
    country = descriptor->countryCode();
    return true;
}

const CATManagement::CCatalogDescriptor *
DictCaptionResolver::getCatalogDescriptor(const QString &catalogId) const
{
    return AppLogic::CoreApplication::instance()->catalogTemplateRegistry()->catalogByUniqueId(
        catalogId);
}

} // namespace Velmar::VideoOverlay
