// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/display/CVideoOverlayManager.h"

#include "platform/shared/QmlStringListModel.h"
#include "videooverlay/display/CVideoOverlayCapabilities.h"
#include "videooverlay/display/CVideoOverlayControl.h"
#include "videooverlay/display/IVideoOverlayElementAccessor.h"
#include "videooverlay/display/VideoOverlaySettings.h"
#include "videooverlay/models/VideoOverlayElementListModel.h"
#include "videooverlay/models/VideoOverlayProfilesModel.h"
#include "videooverlay/osd/COsdImageDatasource.h"
#include "videooverlay/osd/COsdTextDatasource.h"

#include <QMutexLocker>
#include <QQmlEngine>
#include <QSet>
#include <QVector>

#include <algorithm>
#include <utility>

namespace Velmar::VideoOverlay {

namespace {

constexpr int GeneralSettingsId = 0x0FFFFFFF;

const QString favoritesKey = QStringLiteral("favorites");

/// One counter for the whole library, so that ids are unique across managers and never come again.
int lastElementId = 0;

QList<COsdElementDatasource *> datasourcesOf(const CVideoOverlayElement &element)
{
    return element.findChildren<COsdElementDatasource *>(QString(), Qt::FindDirectChildrenOnly);
}

} // namespace

CVideoOverlayManager::CVideoOverlayManager(CVideoOverlayControl &control,
                                           CVideoOverlayCapabilities &capabilities)
    : m_control(control)
    , m_favoritesModel(std::make_unique<Shared::QmlStringListModel>())
    , m_settings(std::make_unique<VideoOverlaySettings>(capabilities))
{
    qRegisterMetaType<State>("State");
    qRegisterMetaType<State>("Velmar::VideoOverlay::CVideoOverlayManager::State");
    qRegisterMetaType<CVideoOverlayElement *>(); // QML calls getElement()
    // As the elements' deleteRequest spells it, so that it is known by name in either way.
    qRegisterMetaType<CVideoOverlayElement *>("CVideoOverlayElement*");
    // Whoever has no parent would go when a script that was handed it forgets it.
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
    QQmlEngine::setObjectOwnership(m_favoritesModel.get(), QQmlEngine::CppOwnership);
    // After all members: the model sets the transparency.
    m_elementListModel = std::make_unique<VideoOverlayElementListModel>(*this);
    connect(&m_control, &CVideoOverlayControl::controlActiveChanged, this,
            &CVideoOverlayManager::videoOverlayAvailableChanged);
    connect(&m_control, &CVideoOverlayControl::videoOverlayEnabledChanged, this,
            &CVideoOverlayManager::videoOverlayEnabledChanged);
    connect(m_settings.get(), &VideoOverlaySettings::settingsChanged, this,
            &CVideoOverlayManager::onSettingsChanged);
    connect(m_settings.get(), &VideoOverlaySettings::settingsChanged, this,
            &CVideoOverlayManager::settingsChanged);
}

CVideoOverlayManager::~CVideoOverlayManager()
{
    // Nobody is told: model, accessor and profiles model may be gone already.
    QMutexLocker lock(&m_mutex);
    const QList<CVideoOverlayElement *> elements = m_elements;
    m_elements.clear();
    for (CVideoOverlayElement *element : elements) {
        m_control.deleteElement(*element);
        discard(element);
    }
    if (CVideoOverlayImage *mark = std::exchange(m_watermark, nullptr)) {
        m_control.deleteElement(*mark);
        discard(mark);
    }
}

void CVideoOverlayManager::setProfilesModel(VideoOverlayProfilesModel *model)
{
    m_profilesModel = model;
}

VideoOverlayProfilesModel *CVideoOverlayManager::getProfilesModel() const
{
    return m_profilesModel;
}

VideoOverlayElementListModel *CVideoOverlayManager::getElementListModel() const
{
    return m_elementListModel.get();
}

Shared::QmlStringListModel *CVideoOverlayManager::getFavoritesModel() const
{
    return m_favoritesModel.get();
}

void CVideoOverlayManager::registerElementAccessor(IVideoOverlayElementAccessor *accessor)
{
    m_elementAccessor = accessor;
}

VideoOverlaySettings *CVideoOverlayManager::getSettings() const
{
    return m_settings.get();
}

QMutex *CVideoOverlayManager::mutex()
{
    return &m_mutex;
}

bool CVideoOverlayManager::videoOverlayAvailable() const
{
    return m_control.controlActive();
}

bool CVideoOverlayManager::videoOverlayEnabled() const
{
    return m_control.videoOverlayEnabled();
}

void CVideoOverlayManager::setVideoOverlayEnabled(bool enabled)
{
    m_control.setVideoOverlayEnabled(enabled);
}

Profile *CVideoOverlayManager::currentProfile() const
{
    return m_profilesModel ? m_profilesModel->currentProfile() : nullptr;
}

void CVideoOverlayManager::setCurrentProfile(Profile *profile)
{
    if (!m_profilesModel || m_profilesModel->currentProfile() == profile)
        return;
    m_profilesModel->setCurrentProfile(profile);
    Q_EMIT currentProfileChanged();
}

CVideoOverlayText *CVideoOverlayManager::createText()
{
    QMutexLocker lock(&m_mutex);
    auto *text = new CVideoOverlayText;
    text->setSettings(m_settings.get());
    adopt(text);
    connectText(text);
    m_control.displayElement(*text);
    return text;
}

CVideoOverlayImage *CVideoOverlayManager::createImage()
{
    QMutexLocker lock(&m_mutex);
    auto *image = new CVideoOverlayImage;
    image->setSettings(m_settings.get());
    adopt(image);
    connectImage(image);
    m_control.displayElement(*image);
    return image;
}

CVideoOverlayText *CVideoOverlayManager::createText(ElementParam &param)
{
    QMutexLocker lock(&m_mutex);
    CVideoOverlayText *text = createText();
    if (m_elementAccessor)
        m_elementAccessor->registerElement(m_elementAccessor->makeKey(param), text);
    return text;
}

CVideoOverlayImage *CVideoOverlayManager::createImage(ElementParam &param)
{
    QMutexLocker lock(&m_mutex);
    CVideoOverlayImage *image = createImage();
    if (m_elementAccessor)
        m_elementAccessor->registerElement(m_elementAccessor->makeKey(param), image);
    return image;
}

void CVideoOverlayManager::adopt(CVideoOverlayElement *element)
{
    element->m_groupMutex = &m_mutex;
    element->setParent(this);
    QQmlEngine::setObjectOwnership(element, QQmlEngine::CppOwnership); // no script destroys it
    element->setId(++lastElementId);
    // At once, in whatever thread: who changes an id holds the lock.
    connect(
        element, &CVideoOverlayElement::idChanged, this, [this] { m_idsInOrder = false; },
        Qt::DirectConnection);
    element->setTransparency(m_globalTransparency);
    m_elements.append(element);
    adjustElementPosition(element); // in its place when it is first shown
}

void CVideoOverlayManager::forEachElement(const std::function<void(CVideoOverlayElement &)> &visit)
{
    QMutexLocker lock(&m_mutex);
    QVector<QPointer<CVideoOverlayElement>> elements;
    elements.reserve(m_elements.size());
    for (CVideoOverlayElement *element : qAsConst(m_elements))
        elements.append(element);
    for (const QPointer<CVideoOverlayElement> &element : qAsConst(elements)) {
        if (element && isHere(*element))
            visit(*element);
    }
}

bool CVideoOverlayManager::isHere(const CVideoOverlayElement &element) const
{
    return element.m_groupMutex == &m_mutex; // until silence()
}

void CVideoOverlayManager::createWatermark(const QString &path)
{
    QMutexLocker lock(&m_mutex);
    if (CVideoOverlayImage *old = std::exchange(m_watermark, nullptr)) {
        m_control.deleteElement(*old);
        silence(old);
        old->deleteLater(); // a screen may still show it
    }
    auto *mark = new CVideoOverlayImage;
    m_watermark = mark;
    QQmlEngine::setObjectOwnership(mark, QQmlEngine::CppOwnership);
    mark->m_groupMutex = &m_mutex;
    mark->setId(++lastElementId);
    mark->setImageSrc(path);
    mark->setType(CVideoOverlayElement::Watermark);
    connectImage(mark);
    m_control.displayElement(*mark);

    ElementParam param;
    param.insert(QStringLiteral("type"), int(CVideoOverlayElement::Watermark));
    param.insert(QStringLiteral("row"), 5);
    param.insert(QStringLiteral("col"), 15);
    param.insert(QStringLiteral("imagePath"), path);
    param.insert(QStringLiteral("enabled"), true);
    param.insert(QStringLiteral("scale"), 1.0);
    new COsdImageDatasource(mark, param); // a child of the watermark
}

void CVideoOverlayManager::showWatermark()
{
    if (m_watermark)
        m_watermark->setVisible(true);
}

void CVideoOverlayManager::hideWatermark()
{
    if (m_watermark)
        m_watermark->setVisible(false);
}

void CVideoOverlayManager::connectText(CVideoOverlayText *text)
{
    using Element = CVideoOverlayElement;
    using Text = CVideoOverlayText;
    using Manager = CVideoOverlayManager;
    // Not with the slot that asks who called: finding that out looks through the connections of all
    // elements. An edit in another thread calls later, when the element may be gone or have left.
    const QPointer<Element> alive(text);
    const auto changed = [this, alive] {
        if (alive && isHere(*alive))
            onElementChanged(alive);
    };
    // The base's signals: the text class repeats some of them, and each change must count once.
    connect(text, &Element::deleteRequest, this, [this, alive](Element *asking) {
        if (alive && isHere(*alive))
            onChildDestroyed(asking);
    });
    connect(text, &Text::textColorChanged, this, changed);
    connect(text, &Text::textColorChanged, this, &Manager::globalTextColorChanged);
    connect(text, &Text::backgroundColorChanged, this, changed);
    connect(text, &Text::backgroundColorChanged, this, &Manager::globalBackgroundColorChanged);
    connect(text, &Element::columnChanged, this, changed);
    connect(text, &Element::columnChanged, text, &Text::typeset);
    connect(text, &Element::rowChanged, this, changed);
    connect(text, &Text::textChanged, this, changed);
    connect(text, &Element::visibleChanged, this, changed);
    connect(this, &Manager::globalTransparencyChanged, text, &Element::setTransparency);
    connect(text, &Element::transparencyChanged, this, changed);
    connect(text, &Text::fontChanged, this, changed);
    connect(text, &Element::heightChanged, this, changed);
    connect(text, &Element::widthChanged, this, changed);
    connect(text, &Text::alignmentChanged, this, changed);
}

void CVideoOverlayManager::connectImage(CVideoOverlayImage *image)
{
    using Element = CVideoOverlayElement;
    using Image = CVideoOverlayImage;
    const QPointer<Element> alive(image);
    const auto changed = [this, alive] {
        if (alive && isHere(*alive))
            onElementChanged(alive);
    };
    connect(image, &Element::deleteRequest, this, [this, alive](Element *asking) {
        if (alive && isHere(*alive))
            onChildDestroyed(asking);
    });
    connect(image, &Image::imageSrcChanged, this, changed);
    connect(image, &Element::visibleChanged, this, changed);
    connect(image, &Image::scaleFactorChanged, this, changed);
    connect(image, &Element::columnChanged, this, changed);
    connect(image, &Element::rowChanged, this, changed);
    connect(image, &Element::widthChanged, this, changed);
    connect(image, &Element::heightChanged, this, changed);
}

int CVideoOverlayManager::elementsCount()
{
    QMutexLocker lock(&m_mutex);
    return m_elements.size();
}

CVideoOverlayElement *CVideoOverlayManager::getElement(int index)
{
    QMutexLocker lock(&m_mutex);
    return m_elements.value(index);
}

QList<CVideoOverlayElement *> CVideoOverlayManager::getElementList()
{
    QMutexLocker lock(&m_mutex);
    return m_elements;
}

int CVideoOverlayManager::rowIndexByID(int id)
{
    QMutexLocker lock(&m_mutex);
    // Every change of an element asks for its row: a walk would make the loading of a profile grow
    // with the square of its size. So they are searched by halves, as long as nobody gave an
    // element another id. Ids are read without the elements' locks, because they change under this
    // one only; the caller may hold one of those already.
    const auto begin = m_elements.cbegin();
    const auto end = m_elements.cend();
    const auto isBefore
        = [](const CVideoOverlayElement *element, int wanted) { return element->m_id < wanted; };
    const auto hasId = [id](const CVideoOverlayElement *element) { return element->m_id == id; };
    const auto found = m_idsInOrder ? std::lower_bound(begin, end, id, isBefore)
                                    : std::find_if(begin, end, hasId);
    return found == end || !hasId(*found) ? -1 : int(found - begin);
}

bool CVideoOverlayManager::deleteElement(int index)
{
    QMutexLocker lock(&m_mutex);
    CVideoOverlayElement *element = m_elements.value(index);
    if (!element)
        return false;
    {
        const CVideoOverlayElement::Use use(*element);
        m_control.deleteElement(*element);
        // The display may have had elements deleted, this one or others before it.
        const int row = m_elements.value(index) == element ? index : m_elements.indexOf(element);
        if (row < 0)
            return true;
        m_elements.removeAt(row);
        m_idsInOrder = m_idsInOrder || m_elements.isEmpty();
        if (m_elementAccessor)
            m_elementAccessor->unregisterElement(element);
    }
    discard(element);
    return true;
}

void CVideoOverlayManager::discard(CVideoOverlayElement *element)
{
    if (!element->isBusy()) {
        // Destroyed at once, it needs not be silenced: that looks through the followers of all
        // elements, and removing a profile would grow with the square of its size. Its datasources
        // go first, because nothing may reach a half destroyed element through them.
        disconnect(element, nullptr, this, nullptr);
        qDeleteAll(datasourcesOf(*element));
        delete element;
        return;
    }
    // It was reached from one of its own signals, and its operation is still to be finished.
    silence(element);
    element->setParent(nullptr);
    element->deleteLater();
}

void CVideoOverlayManager::silence(CVideoOverlayElement *element)
{
    disconnect(element, nullptr, this, nullptr);
    disconnect(this, nullptr, element, nullptr);
    for (COsdElementDatasource *datasource : datasourcesOf(*element)) {
        if (auto *text = qobject_cast<COsdTextDatasource *>(datasource))
            text->detach();
        else
            datasource->detach();
    }
    QMutexLocker lock(&element->m_mutex);
    element->m_timer.stop();
    element->m_timeoutDisabled = true; // or showing it once more would start the timer, with a line
    element->m_groupMutex = nullptr;
}

bool CVideoOverlayManager::deleteElementFromModel(CVideoOverlayElement *element)
{
    QMutexLocker lock(&m_mutex);
    const QPointer<CVideoOverlayElement> removed(element);
    Q_EMIT beforeRemoveElement(element);
    // Not by an address, which a new element may have by now.
    const int row = removed ? m_elements.indexOf(removed) : -1;
    return row >= 0 && m_elementListModel->remove(row);
}

void CVideoOverlayManager::onChildDestroyed(CVideoOverlayElement *obj)
{
    if (!obj)
        return;
    const CVideoOverlayElement::Use use(*obj); // it is in the middle of asking
    deleteElementFromModel(obj);
}

void CVideoOverlayManager::removeElements()
{
    QMutexLocker lock(&m_mutex);
    QVector<QPointer<CVideoOverlayElement>> before;
    for (CVideoOverlayElement *element : qAsConst(m_elements))
        before.append(element);
    Q_EMIT beforeRemoveElements();
    // A handler that began another load has removed them all; what is there now is to stay.
    const auto isThere
        = [this](CVideoOverlayElement *element) { return m_elements.contains(element); };
    if (std::none_of(before.cbegin(), before.cend(), isThere))
        return;
    forEachElement([this](CVideoOverlayElement &element) {
        const QPointer<CVideoOverlayElement> alive(&element);
        if (element.type() == CVideoOverlayElement::Watermark || deleteElementFromModel(&element))
            return;
        // What may not be deleted by hand goes all the same: all belong to the old profile.
        if (alive)
            m_elementListModel->removeAlways(m_elements.indexOf(alive));
    });
}

void CVideoOverlayManager::adjustElementPosition(CVideoOverlayElement *element)
{
    if (!element)
        return;
    element->setPosition(m_settings->leftMargin() + element->column() * colWidth(),
                         m_settings->topMargin() + element->row() * rowHeight());
}

double CVideoOverlayManager::colWidth() const
{
    return m_settings->colWidth();
}

double CVideoOverlayManager::rowHeight() const
{
    return m_settings->rowHeight();
}

void CVideoOverlayManager::onTextChanged()
{
    onElementChanged(qobject_cast<CVideoOverlayElement *>(sender()));
}

void CVideoOverlayManager::onImageChanged()
{
    onElementChanged(qobject_cast<CVideoOverlayElement *>(sender()));
}

void CVideoOverlayManager::onElementChanged(CVideoOverlayElement *element)
{
    if (!element)
        return;
    QMutexLocker lock(&m_mutex);
    adjustElementPosition(element);
    const int row = rowIndexByID(element->id());
    if (row >= 0) { // the watermark has no row
        const QPointer<CVideoOverlayElement> alive(element);
        const bool wasHere = isHere(*element);
        const QModelIndex index = m_elementListModel->index(row);
        Q_EMIT m_elementListModel->dataChanged(index, index);
        // A handler may have deleted it, and then its box must not come back.
        if (!alive || isHere(*element) != wasHere)
            return;
    }
    m_control.displayElement(*element);
}

void CVideoOverlayManager::onSettingsChanged()
{
    QMutexLocker lock(&m_mutex);
    m_control.setPaintMargins(m_settings->marginRect());
    forEachElement([this](CVideoOverlayElement &element) {
        adjustElementPosition(&element);
        m_control.displayElement(element);
    });
}

int CVideoOverlayManager::getGlobalTransparency()
{
    QMutexLocker lock(&m_mutex);
    return m_globalTransparency;
}

void CVideoOverlayManager::setGlobalTransparency(int transparency)
{
    QMutexLocker lock(&m_mutex);
    if (m_globalTransparency == transparency)
        return;
    m_globalTransparency = transparency;
    Q_EMIT globalTransparencyChanged(transparency);
}

QColor CVideoOverlayManager::getTextColor()
{
    QMutexLocker lock(&m_mutex);
    QColor color;
    textsHaveSameColors(color);
    return color;
}

void CVideoOverlayManager::setTextColor(QColor color)
{
    QMutexLocker lock(&m_mutex);
    forEachElement([&color](CVideoOverlayElement &element) {
        if (auto *text = qobject_cast<CVideoOverlayText *>(&element))
            text->setTextColor(color);
    });
    Q_EMIT globalTextColorChanged(color);
}

QColor CVideoOverlayManager::getBackgroundColor()
{
    QMutexLocker lock(&m_mutex);
    QColor color;
    backgroundsHaveSameColors(color);
    return color;
}

void CVideoOverlayManager::setBackgroundColor(QColor color)
{
    QMutexLocker lock(&m_mutex);
    forEachElement([&color](CVideoOverlayElement &element) {
        if (auto *text = qobject_cast<CVideoOverlayText *>(&element))
            text->setBackgroundColor(color);
    });
    Q_EMIT globalBackgroundColorChanged(color);
}

bool CVideoOverlayManager::textsHaveSameColors(QColor &color)
{
    return commonColor(&CVideoOverlayText::textColor, color);
}

bool CVideoOverlayManager::backgroundsHaveSameColors(QColor &color)
{
    return commonColor(&CVideoOverlayText::backgroundColor, color);
}

bool CVideoOverlayManager::commonColor(QColor (CVideoOverlayText::*colorOf)() const, QColor &color)
{
    QSet<QString> names;
    QColor found;
    forEachElement([&](CVideoOverlayElement &element) {
        if (const auto *text = qobject_cast<CVideoOverlayText *>(&element)) {
            found = (text->*colorOf)();
            names.insert(found.name(QColor::HexArgb));
        }
    });
    if (names.size() != 1)
        return false;
    color = found; // never one made from its name: an invalid colour has that of opaque black
    return true;
}

bool CVideoOverlayManager::analogVideo() const
{
    return m_analogVideo;
}

void CVideoOverlayManager::setAnalogVideo(bool analog)
{
    if (m_analogVideo == analog)
        return;
    m_analogVideo = analog;
    Q_EMIT analogVideoChanged(analog);
}

bool CVideoOverlayManager::kx70iiState()
{
    QMutexLocker lock(&m_mutex);
    return m_kx70iiState;
}

void CVideoOverlayManager::setKx70iiState(bool on)
{
    QMutexLocker lock(&m_mutex);
    setKx70(m_kx70iiState, on);
}

int CVideoOverlayManager::kx70iiCol() const
{
    return m_kx70iiCol;
}

void CVideoOverlayManager::setKx70iiCol(int column)
{
    setKx70(m_kx70iiCol, column);
}

int CVideoOverlayManager::kx70iiRow() const
{
    return m_kx70iiRow;
}

void CVideoOverlayManager::setKx70iiRow(int row)
{
    setKx70(m_kx70iiRow, row);
}

QString CVideoOverlayManager::kx70iiUnits() const
{
    return m_kx70iiUnits;
}

void CVideoOverlayManager::setKx70iiUnits(const QString &units)
{
    setKx70(m_kx70iiUnits, units);
}

template <typename Value> void CVideoOverlayManager::setKx70(Value &stored, const Value &value)
{
    if (stored == value)
        return;
    stored = value;
    if (m_emitKx70Changes)
        Q_EMIT kx70iiChanged();
}

void CVideoOverlayManager::setFavorites(QStringList &favorites, int maxLineNumber)
{
    m_favoritesModel->setStringList(favorites);
    m_favoritesModel->setMaxLineNumber(maxLineNumber);
}

void CVideoOverlayManager::temporaryHideInspTexts(bool hide)
{
    forEachElement([hide](CVideoOverlayElement &element) {
        if (element.type() == CVideoOverlayElement::InspStaticText)
            element.setTemporaryHide(hide);
    });
}

void CVideoOverlayManager::onRecordingStateChanged(State state)
{
    if (state == State::Recording)
        Q_EMIT videoRecording();
    else
        Q_EMIT videoNotRecording();
}

void CVideoOverlayManager::setGeneralSettings(const ElementParam &param)
{
    QMutexLocker lock(&m_mutex);
    const ElementParam applied = param; // a handler may take the record away
    m_generalSettings = applied;
    m_emitKx70Changes = 0;
    const auto apply = [&applied, this](const QString &key, const auto &set) {
        // A handler that applied another record is done with it: the newer one wins alone.
        if (m_emitKx70Changes)
            return;
        const auto it = applied.constFind(key);
        if (it != applied.cend())
            set(*it);
    };
    apply(QStringLiteral("globalTransparency"),
          [this](const QVariant &value) { setGlobalTransparency(value.toInt()); });
    apply(QStringLiteral("analogVideo"),
          [this](const QVariant &value) { setAnalogVideo(value.toBool()); });
    apply(QStringLiteral("kx70ii_col"),
          [this](const QVariant &value) { setKx70iiCol(value.toInt()); });
    apply(QStringLiteral("kx70ii_row"),
          [this](const QVariant &value) { setKx70iiRow(value.toInt()); });
    apply(QStringLiteral("kx70ii_units"),
          [this](const QVariant &value) { setKx70iiUnits(value.toString()); });
    apply(QStringLiteral("kx70ii_state"),
          [this](const QVariant &value) { setKx70iiState(value.toBool()); });
    m_emitKx70Changes = 1;
    Q_EMIT kx70iiChanged();
}

ElementParam CVideoOverlayManager::generalSettingsGetAllProperties()
{
    QMutexLocker lock(&m_mutex);
    ElementParam all = m_generalSettings;
    all.insert(QStringLiteral("globalTransparency"), getGlobalTransparency());
    all.insert(QStringLiteral("analogVideo"), analogVideo());
    all.insert(QStringLiteral("kx70ii_state"), kx70iiState());
    all.insert(QStringLiteral("kx70ii_col"), kx70iiCol());
    all.insert(QStringLiteral("kx70ii_row"), kx70iiRow());
    all.insert(QStringLiteral("kx70ii_units"), kx70iiUnits());
    return all;
}

QList<ElementParam> CVideoOverlayManager::getAllPropertiesWithChanges()
{
    QMutexLocker lock(&m_mutex);
    QList<ElementParam> all;
    forEachElement([this, &all](CVideoOverlayElement &element) {
        ElementParam param = element.getAllProperties();
        if (element.type() == CVideoOverlayElement::FreeText)
            param.insert(favoritesKey, m_favoritesModel->stringList());
        all.append(param);
    });
    all.append(generalSettingsGetAllProperties());
    return all;
}

QList<ElementParam> CVideoOverlayManager::getPropertiesWithChanges()
{
    QMutexLocker lock(&m_mutex);
    QList<ElementParam> all;
    forEachElement([this, &all](CVideoOverlayElement &element) {
        ElementParam changed = element.getChangedProperties();
        // Once reported, the favourites count as saved.
        if (storeFavorites(element))
            changed.insert(favoritesKey, m_favoritesModel->stringList());
        if (!changed.isEmpty())
            all.append(changed);
    });
    const ElementParam general = generalSettingsGetChanges();
    if (!general.isEmpty())
        all.append(general);
    return all;
}

ElementParam CVideoOverlayManager::generalSettingsGetChanges()
{
    const ElementParam live = generalSettingsGetAllProperties();
    ElementParam changed;
    for (const QString &key : {QStringLiteral("globalTransparency"), QStringLiteral("analogVideo"),
                               QStringLiteral("kx70ii_state"), QStringLiteral("kx70ii_col"),
                               QStringLiteral("kx70ii_row"), QStringLiteral("kx70ii_units")}) {
        if (m_generalSettings.value(key) != live.value(key))
            changed.insert(key, live.value(key));
    }
    if (changed.isEmpty())
        return changed;
    changed.insert(QStringLiteral("id"),
                   m_generalSettings.value(QStringLiteral("id"), GeneralSettingsId));
    changed.insert(QStringLiteral("general"), true);
    return changed;
}

void CVideoOverlayManager::resetChanges()
{
    QMutexLocker lock(&m_mutex);
    forEachElement([this](CVideoOverlayElement &element) {
        element.applyChangesToOrigParams();
        storeFavorites(element);
    });
    m_generalSettings = generalSettingsGetAllProperties();
}

bool CVideoOverlayManager::storeFavorites(CVideoOverlayElement &element)
{
    const QStringList favorites = m_favoritesModel->stringList();
    if (element.type() != CVideoOverlayElement::FreeText
        || element.getAllProperties().value(favoritesKey).toStringList() == favorites)
        return false;
    element.storeParam(favoritesKey, favorites);
    return true;
}

} // namespace Velmar::VideoOverlay
