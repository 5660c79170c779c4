// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/elements/CVideoOverlayImage.h"
#include "videooverlay/elements/CVideoOverlayText.h"
#include "videooverlay/xqvideooverlay_export.h"

#include <QAbstractListModel>
#include <QColor>
#include <QPointer>
#include <QVariant>

namespace Velmar::VideoOverlay {

class CVideoOverlayManager;

/// The live elements as a list for the screens, one row per element in the manager's order, with
/// the overlay-wide settings beside them. Adds texts and pictures, deletes elements, and shows or
/// hides groups of them. For the GUI thread; walks over the elements hold the manager's lock.
class XQVIDEOOVERLAY_EXPORT VideoOverlayElementListModel : public QAbstractListModel
{
    Q_OBJECT
    // clang-format off
    Q_PROPERTY(int transparency READ transparency WRITE setTransparency NOTIFY transparencyChanged)
    Q_PROPERTY(QColor textColor READ textColor WRITE setTextColor NOTIFY textColorChanged)
    Q_PROPERTY(QColor backgroundColor READ backgroundColor WRITE setBackgroundColor NOTIFY backgroundColorChanged)
    Q_PROPERTY(QColor invalidColor READ invalidColor CONSTANT)
    Q_PROPERTY(Velmar::VideoOverlay::CVideoOverlayText *freeText READ freeText CONSTANT)
    Q_PROPERTY(bool analogVideo READ analogVideo WRITE setAnalogVideo NOTIFY analogVideoChanged)
    Q_PROPERTY(bool kx70State READ kx70State WRITE setKx70State NOTIFY kx70Changed)
    Q_PROPERTY(int kx70Row READ kx70Row WRITE setKx70Row NOTIFY kx70Changed)
    Q_PROPERTY(int kx70Col READ kx70Col WRITE setKx70Col NOTIFY kx70Changed)
    // clang-format on

public:
    enum Role {
        IndexRole = Qt::UserRole, ///< "index": the row
        TypeRole,                 ///< "type": CVideoOverlayElement::Type as a number
        ColumnBoundRole,          ///< "columnBound": what the record says, as text
        StaticIdRole,             ///< "staticId": what the record says, as a number
    };
    Q_ENUM(Role)

    /// @p manager is not owned and must outlive this object. Sets its transparency to 44.
    explicit VideoOverlayElementListModel(CVideoOverlayManager &manager);
    ~VideoOverlayElementListModel() override;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;
    /// Do not call with a @p count of 1 or more: such a call never returns. Kept so.
    bool removeRows(int row, int count, const QModelIndex &parent = QModelIndex()) override;

    int transparency() const;
    void setTransparency(int transparency);
    QColor textColor() const;
    void setTextColor(const QColor &color);
    QColor backgroundColor() const;
    void setBackgroundColor(const QColor &color);
    QColor invalidColor() const;
    CVideoOverlayText *freeText() const; ///< null once that element is gone
    void setFreeText(CVideoOverlayText *text);
    bool analogVideo() const;
    void setAnalogVideo(bool analog);
    bool kx70State() const;
    void setKx70State(bool on);
    int kx70Row() const;
    void setKx70Row(int row);
    int kx70Col() const;
    void setKx70Col(int column);

    /// Deletes the element of a row; false when there is none, or when its record says "canDelete"
    /// true. That reading is the inverse of the element's canDelete(), and kept so.
    Q_INVOKABLE bool remove(int index);
    /// The same whatever the record says. For whoever replaces all elements.
    bool removeAlways(int index);
    /// Adds a text in the upper left cell and returns it as QObject *. Give it colours and switch
    /// it on.
    Q_INVOKABLE QVariant createStaticText(QString text);
    /// Adds a picture in the upper left cell and returns it as CVideoOverlayImage *.
    Q_INVOKABLE QVariant createImage(QString path);
    /// Hides what is only shown for a while: elements with a timeout, inspection and free texts.
    Q_INVOKABLE void hideNotPermanentElements();
    Q_INVOKABLE void reset();
    Q_INVOKABLE void beginReset();
    Q_INVOKABLE void endReset();
    Q_INVOKABLE void showObservationElements(); ///< those of table "SECOBS"
    Q_INVOKABLE void showSecInspElements();     ///< those of every other table
    Q_INVOKABLE void hideStartUpInspElements(); ///< all inspection texts

Q_SIGNALS:
    void onRemoveAt(int index);        ///< never emitted by the library
    void createFreeText(QString text); ///< never emitted by the library
    void transparencyChanged(int transparency);
    void textColorChanged(QColor color);
    void backgroundColorChanged(QColor color);
    void analogVideoChanged(bool analog);
    void kx70Changed();

private:
    CVideoOverlayManager &m_manager;
    QPointer<CVideoOverlayText> m_freeText;
};

} // namespace Velmar::VideoOverlay
