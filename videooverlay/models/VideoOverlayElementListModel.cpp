// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/models/VideoOverlayElementListModel.h"

#include "videooverlay/Log_p.h"
#include "videooverlay/display/CVideoOverlayManager.h"
#include "videooverlay/osd/COsdImageDatasource.h"
#include "videooverlay/osd/COsdStaticTextDatasource.h"

#include <QMutexLocker>
#include <QQmlEngine>

namespace Velmar::VideoOverlay {

namespace {

constexpr int InitialTransparency = 44;

const QString tableKey = QStringLiteral("TDIR_Key");
const QString observationTable = QStringLiteral("SECOBS");

} // namespace

VideoOverlayElementListModel::VideoOverlayElementListModel(CVideoOverlayManager &manager)
    : m_manager(manager)
{
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
    using Manager = CVideoOverlayManager;
    using Model = VideoOverlayElementListModel;
    connect(&m_manager, &Manager::globalTransparencyChanged, this, &Model::transparencyChanged);
    connect(&m_manager, &Manager::globalTextColorChanged, this, &Model::textColorChanged);
    connect(&m_manager, &Manager::globalBackgroundColorChanged, this,
            &Model::backgroundColorChanged);
    connect(&m_manager, &Manager::analogVideoChanged, this, &Model::analogVideoChanged);
    connect(&m_manager, &Manager::kx70iiChanged, this, &Model::kx70Changed);
    setTransparency(InitialTransparency);
}

VideoOverlayElementListModel::~VideoOverlayElementListModel() = default;

int VideoOverlayElementListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_manager.elementsCount();
}

QVariant VideoOverlayElementListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const CVideoOverlayElement *element = m_manager.getElement(index.row()); // null beyond the end
    if (!element)
        return {};
    switch (role) {
    case IndexRole:
        return index.row();
    case TypeRole:
        return int(element->type());
    case ColumnBoundRole:
        return element->getParamObject().value(ElementParam::NAME_COLUMNBOUND).toString();
    case StaticIdRole:
        return element->getParamObject().value(ElementParam::NAME_STATIC_ID).toInt();
    default:
        return {};
    }
}

QHash<int, QByteArray> VideoOverlayElementListModel::roleNames() const
{
    return {
        {IndexRole, "index"},
        {TypeRole, "type"},
        {ColumnBoundRole, "columnBound"},
        {StaticIdRole, "staticId"},
    };
}

bool VideoOverlayElementListModel::removeRows(int row, int count, const QModelIndex &parent)
{
    beginRemoveRows(parent, row, row + count - 1);
    // Without an end, and kept so: nobody removes rows in this way, see remove().
    while (count >= 1)
        m_manager.deleteElement(row);
    endRemoveRows();
    return true;
}

int VideoOverlayElementListModel::transparency() const
{
    return m_manager.getGlobalTransparency();
}

void VideoOverlayElementListModel::setTransparency(int transparency)
{
    m_manager.setGlobalTransparency(transparency);
}

QColor VideoOverlayElementListModel::textColor() const
{
    return m_manager.getTextColor();
}

void VideoOverlayElementListModel::setTextColor(const QColor &color)
{
    m_manager.setTextColor(color);
}

QColor VideoOverlayElementListModel::backgroundColor() const
{
    return m_manager.getBackgroundColor();
}

void VideoOverlayElementListModel::setBackgroundColor(const QColor &color)
{
    m_manager.setBackgroundColor(color);
}

QColor VideoOverlayElementListModel::invalidColor() const
{
    return QColor();
}

CVideoOverlayText *VideoOverlayElementListModel::freeText() const
{
    return m_freeText;
}

void VideoOverlayElementListModel::setFreeText(CVideoOverlayText *text)
{
    m_freeText = text;
    if (text)
        QQmlEngine::setObjectOwnership(text, QQmlEngine::CppOwnership);
}

bool VideoOverlayElementListModel::analogVideo() const
{
    return m_manager.analogVideo();
}

void VideoOverlayElementListModel::setAnalogVideo(bool analog)
{
    m_manager.setAnalogVideo(analog);
}

bool VideoOverlayElementListModel::kx70State() const
{
    return m_manager.kx70iiState();
}

void VideoOverlayElementListModel::setKx70State(bool on)
{
    m_manager.setKx70iiState(on);
}

int VideoOverlayElementListModel::kx70Row() const
{
    return m_manager.kx70iiRow();
}

void VideoOverlayElementListModel::setKx70Row(int row)
{
    m_manager.setKx70iiRow(row);
}

int VideoOverlayElementListModel::kx70Col() const
{
    return m_manager.kx70iiCol();
}

void VideoOverlayElementListModel::setKx70Col(int column)
{
    m_manager.setKx70iiCol(column);
}

bool VideoOverlayElementListModel::remove(int index)
{
    {
        QMutexLocker lock(m_manager.mutex());
        const CVideoOverlayElement *element = m_manager.getElement(index);
        if (!element || element->getParamObject().value(QStringLiteral("canDelete")).toBool())
            return false;
    }
    return removeAlways(index);
}

bool VideoOverlayElementListModel::removeAlways(int index)
{
    const QPointer<CVideoOverlayElement> element(m_manager.getElement(index));
    if (!element)
        return false;
    beginRemoveRows(QModelIndex(), index, index);
    // A handler that loaded another profile took it along, and another is in its row.
    const bool isThere = element && m_manager.getElement(index) == element;
    const bool deleted = isThere && m_manager.deleteElement(index);
    endRemoveRows();
    if (!isThere)
        reset();
    return deleted;
}

QVariant VideoOverlayElementListModel::createStaticText(QString text)
{
    const int row = m_manager.elementsCount();
    beginInsertRows(QModelIndex(), row, row);
    QMutexLocker lock(m_manager.mutex());
    CVideoOverlayText *element = m_manager.createText();
    ElementParam param;
    param.insert(QStringLiteral("type"), int(CVideoOverlayElement::StaticText));
    param.insert(QStringLiteral("row"), 0);
    param.insert(QStringLiteral("col"), 0);
    param.insert(QStringLiteral("text"), text);
    new COsdStaticTextDatasource(element, param); // a child of the element
    const QPointer<QObject> created(element);     // whoever follows the rows may delete it
    endInsertRows();
    return QVariant::fromValue<QObject *>(created);
}

QVariant VideoOverlayElementListModel::createImage(QString path)
{
    const int row = m_manager.elementsCount();
    beginInsertRows(QModelIndex(), row, row);
    QMutexLocker lock(m_manager.mutex());
    CVideoOverlayImage *element = m_manager.createImage();
    ElementParam param;
    param.insert(QStringLiteral("type"), int(CVideoOverlayElement::FreePicture));
    param.insert(QStringLiteral("row"), 0);
    param.insert(QStringLiteral("col"), 0);
    param.insert(QStringLiteral("imagePath"), path);
    param.insert(QStringLiteral("enabled"), true);
    param.insert(QStringLiteral("scale"), 1.0);
    new COsdImageDatasource(element, param);             // a child of the element
    const QPointer<CVideoOverlayImage> created(element); // whoever follows the rows may delete it
    endInsertRows();
    return QVariant::fromValue(created.data());
}

void VideoOverlayElementListModel::hideNotPermanentElements()
{
    m_manager.forEachElement([](CVideoOverlayElement &element) {
        const CVideoOverlayElement::Type type = element.type();
        if (element.timeout() < 1 && type != CVideoOverlayElement::InspText
            && type != CVideoOverlayElement::FreeText)
            return;
        const QPointer<CVideoOverlayElement> alive(&element);
        element.expireTimer();
        if (alive)
            alive->setVisible(false);
    });
    log(LogLevel::Debug, QStringLiteral("VideoOverlayElementListModel::hideNotPermanentElements"));
}

void VideoOverlayElementListModel::reset()
{
    beginResetModel();
    endResetModel();
}

void VideoOverlayElementListModel::beginReset()
{
    beginResetModel();
}

void VideoOverlayElementListModel::endReset()
{
    endResetModel();
}

void VideoOverlayElementListModel::showObservationElements()
{
    m_manager.forEachElement([](CVideoOverlayElement &element) {
        if (element.getParamObject().value(tableKey) == QVariant(observationTable))
            element.setVisible(true);
    });
}

void VideoOverlayElementListModel::showSecInspElements()
{
    m_manager.forEachElement([](CVideoOverlayElement &element) {
        const ElementParam param = element.getParamObject();
        const auto it = param.constFind(tableKey);
        if (it != param.cend() && *it != QVariant(observationTable))
            element.setVisible(true);
    });
}

void VideoOverlayElementListModel::hideStartUpInspElements()
{
    m_manager.forEachElement([](CVideoOverlayElement &element) {
        if (element.type() == CVideoOverlayElement::InspText)
            element.setVisible(false);
    });
}

} // namespace Velmar::VideoOverlay
