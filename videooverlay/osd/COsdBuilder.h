// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/elements/ElementParam.h"
#include "videooverlay/profiles/Profile.h"
#include "videooverlay/xqvideooverlay_export.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QSharedPointer>
#include <QString>

#include <functional>

namespace Velmar::CATManagement {
class CTemplateManager;
}

namespace Velmar::Templates {
class CCatalogTemplate;
}

namespace Velmar::VideoOverlay {

class CAbstractOsdDatasourceFactory;
class COsdElementDatasource;
class CVideoOverlayElement;
class CVideoOverlayManager;
class TemplateCaptionResolver;

/// Makes a profile live: one element per record, each with its datasource, and keeps the
/// inspection texts in step with the columns that the catalog template offers. There is one; the
/// host initialises it, registers its factories and calls load() whenever a profile becomes
/// current. For the GUI thread. Without a manager, before initialize() or after its end, it does
/// nothing.
class XQVIDEOOVERLAY_EXPORT COsdBuilder : public QObject
{
    Q_OBJECT
public:
    static COsdBuilder *instance(); ///< destroyed when the process exits

    /// Neither is owned. @p manager may die first, @p templates may not. Calling it again replaces
    /// both, and connects a second time: every project that is announced is then handled twice, to
    /// the same end.
    static COsdBuilder *initialize(CATManagement::CTemplateManager &templates,
                                   CVideoOverlayManager &manager);

    /// The path of the start-up profile as it is stored; empty, and a line in the log, when none
    /// is.
    static QString getDefaultProfilePath();

    /// What identifies an inspection text: one column of one table, as one of the two types.
    static QString generateOsdColumnsKey(const QString &tdirKey, const QString &column, int type);

    /// Asked in the order of registration. Not owned; one that is destroyed is not asked any more.
    void registerFactory(CAbstractOsdDatasourceFactory *factory);

    /// Asks the factories; null, and a line in the log, when none serves @p record. Passes on what
    /// a factory throws.
    COsdElementDatasource *constructDatasource(CVideoOverlayElement *element, ElementParam &record);

    /// Resets the general settings and makes an element of each record, which gets its "id".
    void createElements(CVideoOverlayManager &manager, QList<ElementParam> &records);

    /// Brings the current profile's inspection texts in step with the catalog template.
    void loadInspectionTexts();
    void templateChanged(); ///< another template was loaded
    /// Inspection static texts are for projects that have records.
    void hideInspTextsForSimpleProjectOrNoActiveProject();

    // The steps of loadInspectionTexts(), all in terms of generateOsdColumnsKey().

    /// What the template offers.
    QSet<QString>
    getAllOsdColumnsForTemplate(const Velmar::Templates::CCatalogTemplate &catalogTemplate);
    /// What the profile has. The addresses hold until its list of records is next changed.
    void createLookupHashFromExistingColumns(Profile *profile,
                                             QHash<QString, const ElementParam *> &existing);
    /// Adds what is offered and missing, at the front of the profile.
    void overridingWithNewColumns(QSet<QString> &keys,
                                  const QHash<QString, const ElementParam *> &existing,
                                  Profile *profile);
    /// Deletes what is no longer offered.
    void removeUnusedElements(Profile *profile,
                              const QHash<QString, const ElementParam *> &existing,
                              QSet<QString> &keys);

Q_SIGNALS:
    void profileLoaded(); ///< once per load() that was completed

public Q_SLOTS:
    /// Replaces all elements but the watermark. @p profile receives the ids of its elements, and
    /// the manager's current profile what the template adds and removes. Null empties the overlay
    /// and announces nothing. A load that begins while another is on its way ends that one, of
    /// which nothing stays. Until profileLoaded() the profile cannot be saved.
    void load(Velmar::VideoOverlay::Profile *profile);

private:
    friend class CAbstractOsdDatasourceFactory; // takes itself out when it is destroyed
    friend class ShownProfile;                  // asks what is built, and whether it is complete

    /// Handlers of what is emitted on the way may begin another load or bring another template,
    /// which ends what was on its way: the newer one wins alone.
    class Newest;

    COsdBuilder();
    ~COsdBuilder() override;

    void forgetFactory(CAbstractOsdDatasourceFactory *factory);
    bool isOutdated(const Profile *profile) const;
    bool build(CVideoOverlayManager &manager, Profile *profile);
    /// Until @p isOver.
    void createElements(CVideoOverlayManager &manager, QList<ElementParam> &records,
                        const std::function<bool()> &isOver);
    void createElement(CVideoOverlayManager &manager, ElementParam &record);
    /// Asks the factories for what is to feed @p element, which may be null: gone again.
    void serve(CVideoOverlayManager &manager, CVideoOverlayElement *element, ElementParam &record);
    void createFreeText(CVideoOverlayManager &manager, ElementParam &record);
    void createStaticText(CVideoOverlayManager &manager, ElementParam &record);
    void followTemplate();
    void addInspectionText(const QString &key, Profile &profile);

    QSharedPointer<TemplateCaptionResolver> m_captionResolver;
    QPointer<CVideoOverlayManager> m_manager;
    QList<CAbstractOsdDatasourceFactory *> m_factories;
    quint64 m_loads = 0;        ///< begun so far
    quint64 m_looks = 0;        ///< at a template, begun so far
    bool m_isLoading = false;   ///< the newest load is on its way
    bool m_isLooking = false;   ///< so is a look at a template
    bool m_textsFollow = false; ///< the load on its way has yet to look at the template
    QPointer<CVideoOverlayManager> m_builtIn; ///< whose elements the last load made
    QPointer<Profile> m_built;                ///< of which profile; null also when it was ended
};

} // namespace Velmar::VideoOverlay
