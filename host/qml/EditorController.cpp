// SPDX-License-Identifier: Apache-2.0
#include "host/qml/EditorController.h"

#include "host/feed/SystemValues.h"
#include "host/qml/LiveOverlay.h"
#include "host/qml/LockedProfiles.h"
#include "host/qml/Messages.h"
#include "host/qml/UiTexts.h"
#include "platform/shared/QmlStringListModel.h"

#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/display/VideoOverlaySettings.h>
#include <videooverlay/models/VideoOverlayElementListModel.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>
#include <videooverlay/osd/COsdImageDatasource.h>
#include <videooverlay/osd/COsdStaticTextDatasource.h>

#include <QFileInfo>
#include <QFontMetricsF>
#include <QImageReader>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace Velmar::Host {

using namespace VideoOverlay;

namespace {

constexpr int WarningDelayMs = 250;
constexpr double Rounding = 0.01; ///< of a cell

QString boundTo(const CVideoOverlayElement &element)
{
    return element.getParamObject().value(ElementParam::NAME_COLUMNBOUND).toString();
}

QStringList unitsOf(const QString &valueName)
{
    const SystemValue *value = SystemValues::find(valueName);
    return value ? SystemValues::units(value->quantity) : QStringList();
}

QString firstLine(const QString &text)
{
    return text.section(QLatin1Char('\n'), 0, 0).trimmed();
}

QRectF rectOf(CVideoOverlayElement &element)
{
    return QRectF(element.x(), element.y(), element.width(), element.height());
}

/// What stands for an element in the editor: one that shows nothing now has four cells.
QRectF boxOf(CVideoOverlayElement &element, double cellWidth, double cellHeight)
{
    return QRectF(element.x(), element.y(), std::max(element.width(), 4 * cellWidth),
                  std::max(element.height(), cellHeight));
}

/// A free text never shows itself: it is there while it says something.
void showIfFreeText(CVideoOverlayElement &element, const QByteArray &changedProperty)
{
    auto *text = qobject_cast<CVideoOverlayText *>(&element);
    if (text && text->type() == CVideoOverlayElement::FreeText && changedProperty == "text")
        text->setVisible(!text->text().isEmpty());
}

} // namespace

const int EditorController::SmallestScale = 5;
const int EditorController::LargestScale = 400;

EditorController::EditorController(LiveOverlay &overlay, Messages &messages, const UiTexts &texts,
                                   QObject *parent)
    : QObject(parent)
    , m_overlay(overlay)
    , m_messages(messages)
    , m_texts(texts)
{
    m_warningTimer.setSingleShot(true);
    m_warningTimer.setInterval(WarningDelayMs);
    connect(&m_warningTimer, &QTimer::timeout, this, &EditorController::updateWarnings);
    // Live values change elements all the time; looking now and then is enough.
    const auto look = [this] {
        if (!m_warningTimer.isActive())
            m_warningTimer.start();
    };
    for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(&model(), signal, this, look);
    connect(&model(), &QAbstractItemModel::dataChanged, this, look);
    connect(&model(), &QAbstractItemModel::modelReset, this, look);
    connect(&manager(), &CVideoOverlayManager::settingsChanged, this,
            &EditorController::gridChanged);
    connect(&m_overlay, &LiveOverlay::pictureSizeChanged, this, &EditorController::gridChanged);
    connect(&m_overlay, &LiveOverlay::profileLoaded, this, &EditorController::onProfileLoaded);
    connect(manager().getFavoritesModel(), &Shared::QmlStringListModel::stringListChanged, this,
            &EditorController::favoritesChanged);
    m_warningTimer.start();
}

EditorController::~EditorController() = default;

VideoOverlayElementListModel &EditorController::model() const
{
    return *manager().getElementListModel();
}

CVideoOverlayManager &EditorController::manager() const
{
    return m_overlay.manager();
}

void EditorController::onProfileLoaded()
{
    m_handles.clear();
    m_history.clear();
    select(nullptr);
    Q_EMIT favoritesChanged();
    m_warningTimer.start();
}

// Selection

void EditorController::select(int index)
{
    m_history.endStep();
    select(manager().getElement(index));
}

void EditorController::select(Element *element)
{
    if (m_selected == element)
        return;
    m_selected = element;
    Q_EMIT selectionChanged();
    Q_EMIT selectedNameChanged();
}

void EditorController::selectNext(int step)
{
    m_history.endStep();
    const QList<Element *> elements = manager().getElementList();
    const int count = elements.size();
    int index = selectedIndex();
    if (index < 0)
        index = step > 0 ? -1 : count; // begins at an end
    for (int tries = 0; tries < count; ++tries) {
        index = (index + step + count) % count;
        if (elements.at(index)->enabled())
            return select(elements.at(index));
    }
}

bool EditorController::selectAt(double x, double y, double tolerance)
{
    m_history.endStep();
    Element *nearest = nullptr;
    double smallest = tolerance;
    const QList<Element *> elements = manager().getElementList();
    for (Element *element : elements) { // the last of equals: it is painted over the others
        if (!element->enabled() && element != m_selected)
            continue;
        const QRectF box = boxOf(*element, cellWidth(), cellHeight());
        const double away = std::hypot(std::max({box.left() - x, 0.0, x - box.right()}),
                                       std::max({box.top() - y, 0.0, y - box.bottom()}));
        if (away < smallest || (away == smallest && nearest != m_selected)) {
            smallest = away;
            nearest = element;
        }
    }
    select(nearest);
    return nearest;
}

int EditorController::selectedIndex() const
{
    return m_selected ? manager().rowIndexByID(m_selected->id()) : -1;
}

bool EditorController::selectedIsText() const
{
    return qobject_cast<CVideoOverlayText *>(m_selected);
}

bool EditorController::selectedIsPicture() const
{
    return qobject_cast<CVideoOverlayImage *>(m_selected);
}

bool EditorController::selectedHasOwnText() const
{
    if (!selectedIsText() || m_selected->type() == Element::SystemText)
        return false;
    return m_selected->type() == Element::FreeText || boundTo(*m_selected).isEmpty();
}

bool EditorController::selectedIsFreeText() const
{
    return m_selected && m_selected->type() == Element::FreeText;
}

QString EditorController::selectedName() const
{
    return m_selected ? kind(m_selected->type()) + QStringLiteral(": ") + name(*m_selected)
                      : QString();
}

bool EditorController::canDelete() const
{
    if (!m_selected || !m_selected->canDelete()
        || m_selected->getParamObject().value(QStringLiteral("canDelete")).toBool())
        return false; // the list refuses a record that says so
    const Element::Type type = m_selected->type();
    return type == Element::FreePicture
        || (type == Element::StaticText && boundTo(*m_selected).isEmpty());
}

QStringList EditorController::unitChoices() const
{
    if (!m_selected || m_selected->type() != Element::SystemText)
        return {};
    return unitsOf(boundTo(*m_selected));
}

QStringList EditorController::favorites() const
{
    return manager().getFavoritesModel()->stringList();
}

QString EditorController::nameOf(int index) const
{
    const Element *element = manager().getElement(index);
    return element ? name(*element) : QString();
}

QString EditorController::kindOf(int index) const
{
    const Element *element = manager().getElement(index);
    return element ? kind(element->type()) : QString();
}

bool EditorController::isEnabledAt(int index) const
{
    const Element *element = manager().getElement(index);
    return element && element->enabled();
}

QString EditorController::name(const Element &element) const
{
    if (const auto *image = qobject_cast<const CVideoOverlayImage *>(&element))
        return QFileInfo(image->imageSrc()).fileName();
    const auto *text = qobject_cast<const CVideoOverlayText *>(&element);
    const Element::Type type = element.type();
    if (type == Element::FreeText)
        return m_texts.text(QStringLiteral("kindFreeText"));
    if (type == Element::StaticText && text && !firstLine(text->text()).isEmpty())
        return firstLine(text->text());
    if (!firstLine(element.caption()).isEmpty())
        return firstLine(element.caption());
    return boundTo(element).isEmpty() ? kind(type) : boundTo(element);
}

QString EditorController::kind(Element::Type type) const
{
    switch (type) {
    case Element::StaticText:
        return m_texts.text(QStringLiteral("kindStaticText"));
    case Element::SystemText:
        return m_texts.text(QStringLiteral("kindSystemText"));
    case Element::FreePicture:
        return m_texts.text(QStringLiteral("kindPicture"));
    case Element::InspText:
        return m_texts.text(QStringLiteral("kindInspectionText"));
    case Element::InspStaticText:
        return m_texts.text(QStringLiteral("kindInspectionStaticText"));
    case Element::FreeText:
        return m_texts.text(QStringLiteral("kindFreeText"));
    case Element::Watermark:
    case Element::Invalid:
        break;
    }
    return QString();
}

// The grid

QSize EditorController::pictureSize() const
{
    return m_overlay.pictureSize();
}

QRectF EditorController::grid() const
{
    return manager().getSettings()->marginRect();
}

double EditorController::cellWidth() const
{
    return manager().colWidth();
}

double EditorController::cellHeight() const
{
    return manager().rowHeight();
}

QSize EditorController::cellsOf(Element &element) const
{
    if (cellWidth() <= 0 || cellHeight() <= 0)
        return {1, 1};
    return {std::max(1, int(std::ceil(element.width() / cellWidth() - Rounding))),
            std::max(1, int(std::ceil(element.height() / cellHeight() - Rounding)))};
}

QPoint EditorController::clamped(QPoint cell, QSize cells) const
{
    if (cellWidth() <= 0 || cellHeight() <= 0)
        return cell;
    const int columns = qRound(grid().width() / cellWidth());
    const int rows = qRound(grid().height() / cellHeight());
    return {std::max(0, std::min(cell.x(), columns - cells.width())),
            std::max(0, std::min(cell.y(), rows - cells.height()))};
}

void EditorController::beginDrag()
{
    if (!m_selected)
        return;
    m_dragged = m_selected;
    m_dragStart = {m_selected->column(), m_selected->row()};
    // A text near the edge breaks its lines as it moves: the size that it had counts.
    m_dragCells = cellsOf(*m_selected);
    m_history.beginStep();
}

void EditorController::dragTo(int columns, int rows)
{
    if (m_selected && m_selected == m_dragged) // another finger may have chosen another
        moveTo(*m_selected, clamped(m_dragStart + QPoint(columns, rows), m_dragCells));
}

void EditorController::endDrag()
{
    m_history.endStep();
}

void EditorController::nudge(int columns, int rows, bool isRepeated)
{
    if (!m_selected)
        return;
    beginDrag();
    if (isRepeated)
        m_history.resumeStep(handleOf(m_selected).get());
    dragTo(columns, rows);
    endDrag();
}

void EditorController::moveTo(Element &element, QPoint cell)
{
    change(&element, "column", cell.x());
    change(&element, "row", cell.y());
}

void EditorController::pullCornerTo(double x, double y)
{
    auto *image = qobject_cast<CVideoOverlayImage *>(m_selected);
    if (!image || image->imageSrcWidth() <= 0 || image->imageSrcHeight() <= 0)
        return;
    // The nearest point of the diagonal on which the corner of a picture of this shape can be.
    const double width = image->imageSrcWidth();
    const double height = image->imageSrcHeight();
    const double scale = ((x - image->x()) * width + (y - image->y()) * height)
        / (width * width + height * height);
    scaleTo(*image, int(std::lround(std::clamp(scale, 0.0, 100.0) * 100)));
}

void EditorController::scaleBy(int percents)
{
    auto *image = qobject_cast<CVideoOverlayImage *>(m_selected);
    if (!image)
        return;
    m_history.endStep();
    scaleTo(*image, int(std::lround(image->scaleFactor() * 100)) + percents);
}

void EditorController::scaleTo(CVideoOverlayImage &image, int percent)
{
    const QRectF area = grid();
    const auto fits = [](double room, int length) {
        return length > 0 ? int(std::floor(room / length * 100)) : LargestScale;
    };
    const int largest
        = std::min({LargestScale, fits(area.right() - image.x(), image.imageSrcWidth()),
                    fits(area.bottom() - image.y(), image.imageSrcHeight())});
    const int wanted = std::max(SmallestScale, std::min(percent, largest));
    change(&image, "scaleFactor", wanted / 100.0);
}

// Changes

EditorController::HandlePointer EditorController::handleOf(Element *element)
{
    HandlePointer &handle = m_handles[element];
    if (!handle || handle->element != element) // another one may live at an old address
        handle = std::make_shared<Handle>(Handle {element});
    return handle;
}

void EditorController::change(Element *element, const QByteArray &property, const QVariant &value)
{
    const QVariant before = element->property(property);
    if (!element->setProperty(property, value))
        return;
    const QVariant after = element->property(property);
    if (before == after)
        return;
    const HandlePointer handle = handleOf(element);
    const auto write = [handle, property](const QVariant &wanted) {
        if (!handle->element)
            return;
        handle->element->setProperty(property, wanted);
        showIfFreeText(*handle->element, property);
    };
    showIfFreeText(*element, property);
    m_history.add({[write, before] { write(before); }, [write, after] { write(after); },
                   handle.get(), property});
}

void EditorController::set(const QString &property, const QVariant &value, bool goesOn)
{
    if (!m_selected)
        return;
    if (goesOn)
        m_history.resumeStep(handleOf(m_selected).get());
    change(m_selected, property.toLatin1(), value);
    if (goesOn)
        m_history.endStep();
}

void EditorController::setForAll(const QString &property, const QVariant &value)
{
    const QByteArray name = property.toLatin1();
    if (name == "textColor" || name == "backgroundColor") {
        // One colour for all, but each gets its own back.
        const bool isOwnStep = !m_history.isOpen();
        if (isOwnStep)
            m_history.beginStep();
        const QList<Element *> elements = manager().getElementList();
        for (Element *element : elements) {
            if (qobject_cast<CVideoOverlayText *>(element))
                change(element, name, value);
        }
        if (isOwnStep)
            m_history.endStep();
        return;
    }
    QPointer<QObject> target = &model();
    const QVariant before = target->property(name);
    if (!target->setProperty(name, value) || target->property(name) == before)
        return;
    const QVariant after = target->property(name);
    const auto write = [target, name](const QVariant &wanted) {
        if (target)
            target->setProperty(name, wanted);
    };
    m_history.add(
        {[write, before] { write(before); }, [write, after] { write(after); }, target, name});
}

void EditorController::setFavorites(const QStringList &favorites)
{
    Shared::QmlStringListModel *list = manager().getFavoritesModel();
    const QStringList before = list->stringList();
    if (before == favorites)
        return;
    list->setStringList(favorites);
    m_history.add({[list, before] { list->setStringList(before); },
                   [list, favorites] { list->setStringList(favorites); }, list, "favorites"});
}

void EditorController::addFavorite(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (!trimmed.isEmpty() && !favorites().contains(trimmed))
        setFavorites(favorites() << trimmed);
}

void EditorController::removeFavorite(int row)
{
    QStringList list = favorites();
    if (row < 0 || row >= list.size())
        return;
    list.removeAt(row);
    setFavorites(list);
}

// Adding and deleting

void EditorController::addText(const QString &text)
{
    auto *element
        = qobject_cast<CVideoOverlayText *>(model().createStaticText(text).value<QObject *>());
    if (!element)
        return;
    // The library leaves these to whoever asks for the text.
    const QColor textColor = manager().getTextColor();
    const QColor backgroundColor = manager().getBackgroundColor();
    element->setTextColor(textColor.isValid() ? textColor : QColor(Qt::white));
    element->setBackgroundColor(backgroundColor.isValid() ? backgroundColor : QColor(Qt::black));
    element->setEnabled(true);
    element->setVisible(true);
    noteAdded(element);
}

bool EditorController::addPicture(const QString &path)
{
    QImageReader reader(path);
    if (!reader.canRead()) {
        m_messages.error(m_texts.text(QStringLiteral("errorNoPictureFile")).arg(path));
        return false;
    }
    CVideoOverlayImage *image = nullptr;
    const QStringList complaints = Messages::complaintsOf(
        [&] { image = model().createImage(path).value<CVideoOverlayImage *>(); });
    if (!image || image->imageSrcHeight() == 0) {
        report(complaints);
        if (image)
            model().remove(manager().rowIndexByID(image->id()));
        return false;
    }
    // A third of the picture at most, so that it does not hide what it is laid over.
    const double fit = std::min({1.0, pictureSize().width() / 3.0 / image->imageSrcWidth(),
                                 pictureSize().height() / 3.0 / image->imageSrcHeight()});
    image->setScaleFactor(fit);
    image->setVisible(true);
    noteAdded(image);
    return true;
}

void EditorController::noteAdded(Element *element)
{
    const HandlePointer handle = handleOf(element);
    const auto record = std::make_shared<ElementParam>();
    m_history.endStep();
    m_history.add({[this, handle, record] {
                       if (handle->element)
                           *record = handle->element->getAllProperties();
                       remove(handle);
                   },
                   [this, handle, record] {
                       handle->element = create(*record);
                       m_handles.insert(handle->element, handle);
                   },
                   nullptr,
                   {}});
    select(element);
}

void EditorController::deleteSelected()
{
    if (!canDelete())
        return;
    const HandlePointer handle = handleOf(m_selected);
    const ElementParam record = m_selected->getAllProperties();
    m_history.endStep();
    remove(handle);
    m_history.add({[this, handle, record] {
                       handle->element = create(record);
                       m_handles.insert(handle->element, handle);
                   },
                   [this, handle] { remove(handle); },
                   nullptr,
                   {}});
}

EditorController::Element *EditorController::create(ElementParam record)
{
    model().beginReset();
    Element *element = nullptr;
    if (record.value(QStringLiteral("type")).toInt() == Element::FreePicture) {
        CVideoOverlayImage *image = manager().createImage(record);
        new COsdImageDatasource(image, record); // a child of its element
        element = image;
    } else {
        CVideoOverlayText *text = manager().createText(record);
        new COsdStaticTextDatasource(text, record); // a child of its element
        element = text;
    }
    model().endReset();
    return element;
}

void EditorController::remove(const HandlePointer &handle)
{
    Element *element = handle->element;
    if (!element)
        return;
    if (m_selected == element)
        select(nullptr);
    m_handles.remove(element);
    model().remove(manager().rowIndexByID(element->id()));
    handle->element.clear();
}

// Warnings

bool EditorController::isClipped(Element &element) const
{
    const auto *text = qobject_cast<CVideoOverlayText *>(&element);
    if (!text)
        return false;
    const QRectF area = grid();
    const double available = area.right() - element.x() + 1;
    const QFontMetricsF metrics(text->font());
    const QStringList words = text->text().split(QRegularExpression(QStringLiteral("\\s")));
    return std::any_of(words.begin(), words.end(), [&](const QString &word) {
        return metrics.horizontalAdvance(word) >= available;
    });
}

void EditorController::updateWarnings()
{
    QVariantList found;
    const auto warn = [&](int index, const QString &text) {
        found.append(
            QVariantMap {{QStringLiteral("index"), index}, {QStringLiteral("text"), text}});
    };
    const QList<Element *> elements = manager().getElementList();
    const QRectF area = grid().adjusted(-Rounding, -Rounding, Rounding, Rounding);
    for (int i = 0; i < elements.size(); ++i) {
        Element &element = *elements.at(i);
        if (!element.enabled())
            continue;
        const QRectF rect = rectOf(element);
        if (isClipped(element)) {
            warn(i, m_texts.text(QStringLiteral("warningClipped")).arg(name(element)));
        } else if (element.row() < 0 || element.column() < 0 || rect.x() >= area.right()
                   || rect.y() >= area.bottom() || (rect.isValid() && !area.contains(rect))) {
            warn(i, m_texts.text(QStringLiteral("warningOutside")).arg(name(element)));
        }
        if (!element.visible() || !rect.isValid())
            continue;
        for (int j = i + 1; j < elements.size(); ++j) {
            Element &other = *elements.at(j);
            const QRectF common = rect & rectOf(other);
            if (other.visible() && common.width() > 1 && common.height() > 1)
                warn(
                    i,
                    m_texts.text(QStringLiteral("warningOverlap")).arg(name(element), name(other)));
        }
    }
    Q_EMIT selectedNameChanged();
    if (found == m_warnings)
        return;
    m_warnings = found;
    Q_EMIT warningsChanged();
}

// Saving

bool EditorController::canSave() const
{
    const Profile *profile = manager().currentProfile();
    return profile && !profile->readOnly();
}

bool EditorController::report(const QStringList &complaints)
{
    if (complaints.isEmpty())
        return true;
    m_messages.error(complaints.join(QLatin1Char('\n')));
    return false;
}

bool EditorController::save()
{
    if (!canSave()) {
        m_messages.error(m_texts.text(QStringLiteral("errorReadOnly")));
        return false;
    }
    const bool isSaved = whileProfilesAreLocked(m_messages, m_texts, [this] {
        return report(
            Messages::complaintsOf([this] { m_overlay.profiles().saveCurrentProfile(); }));
    });
    if (!isSaved)
        return false;
    m_overlay.profileStamps().note(manager().currentProfile()->path());
    m_history.clear();
    m_messages.notice(
        m_texts.text(QStringLiteral("saved")).arg(manager().currentProfile()->caption()));
    return true;
}

bool EditorController::saveAs(const QString &name)
{
    Profile *current = manager().currentProfile();
    if (!current || name.trimmed().isEmpty())
        return false;
    VideoOverlayProfilesModel &profiles = m_overlay.profiles();
    Profile *copy = nullptr;
    const bool isSaved = whileProfilesAreLocked(m_messages, m_texts, [&] {
        bool isWritten = false;
        const QStringList complaints = Messages::complaintsOf([&] {
            copy = profiles.clone(current, name);
            isWritten = copy && profiles.applyChanges(copy)->save();
        });
        if (!isWritten)
            report(complaints.isEmpty() ? QStringList(m_texts.text(QStringLiteral("errorNotSaved")))
                                        : complaints);
        return isWritten;
    });
    if (!isSaved)
        return false;
    m_overlay.profileStamps().note(copy->path());
    profiles.setCurrentProfile(copy);
    m_messages.notice(m_texts.text(QStringLiteral("saved")).arg(copy->caption()));
    return true;
}

void EditorController::revert()
{
    m_overlay.profiles().revertCurrentProfile();
}

bool EditorController::hasUnsavedChanges() const
{
    // The history first: asking the library counts changed favourites as saved.
    return m_history.isModified()
        || (manager().currentProfile() && m_overlay.profiles().isCurrentProfileChanged());
}

} // namespace Velmar::Host
