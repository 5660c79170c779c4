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
    /// The manager's transparency of all texts, from 0, opaque, to 100, invisible.
    Q_PROPERTY(int transparency READ transparency WRITE setTransparency NOTIFY transparencyChanged)
    /// Colour of all texts; invalid unless they have the same.
    Q_PROPERTY(QColor textColor READ textColor WRITE setTextColor NOTIFY textColorChanged)
    /// Colour of all boxes; invalid unless they have the same.
    Q_PROPERTY(QColor backgroundColor READ backgroundColor WRITE setBackgroundColor NOTIFY backgroundColorChanged)
    /// An invalid colour, for screens to compare with.
    Q_PROPERTY(QColor invalidColor READ invalidColor CONSTANT)
    /// The free text of the profile; null when it has none. Announced by modelReset only.
    Q_PROPERTY(Velmar::VideoOverlay::CVideoOverlayText *freeText READ freeText CONSTANT)
    /// Whether the video comes in by the analog way.
    Q_PROPERTY(bool analogVideo READ analogVideo WRITE setAnalogVideo NOTIFY analogVideoChanged)
    /// Whether the position display of the KX70 is switched on.
    Q_PROPERTY(bool kx70State READ kx70State WRITE setKx70State NOTIFY kx70Changed)
    /// Its row, in percent of the picture's height.
    Q_PROPERTY(int kx70Row READ kx70Row WRITE setKx70Row NOTIFY kx70Changed)
    /// Its column, in percent of the picture's width.
    Q_PROPERTY(int kx70Col READ kx70Col WRITE setKx70Col NOTIFY kx70Changed)
    // clang-format on

public:
    /// What data() gives; any other role gives an invalid value.
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

    /// How many elements there are; 0 below a row.
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    /// Invalid for a row that is not there.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /// The four roles by the names beside them.
    QHash<int, QByteArray> roleNames() const override;
    /// Do not call with a @p count of 1 or more: such a call never returns. Kept so.
    bool removeRows(int row, int count, const QModelIndex &parent = QModelIndex()) override;

    /// From 0, opaque, to 100, invisible.
    int transparency() const;
    /// Emits transparencyChanged when it differs.
    void setTransparency(int transparency);
    /// Invalid unless all texts have the same.
    QColor textColor() const;
    /// For all texts; always emits textColorChanged.
    void setTextColor(const QColor &color);
    /// Invalid unless all texts have the same.
    QColor backgroundColor() const;
    /// For the boxes of all texts; always emits backgroundColorChanged.
    void setBackgroundColor(const QColor &color);
    /// An invalid colour.
    QColor invalidColor() const;
    CVideoOverlayText *freeText() const; ///< null once that element is gone
    /// Not owned, may be null. No signal: whoever sets it resets the model.
    void setFreeText(CVideoOverlayText *text);
    /// As the manager has it.
    bool analogVideo() const;
    /// Emits analogVideoChanged when it differs.
    void setAnalogVideo(bool analog);
    /// As the manager has it.
    bool kx70State() const;
    /// Emits kx70Changed when it differs.
    void setKx70State(bool on);
    /// In percent.
    int kx70Row() const;
    /// In percent. Emits kx70Changed when it differs.
    void setKx70Row(int row);
    /// In percent.
    int kx70Col() const;
    /// In percent. Emits kx70Changed when it differs.
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
    /// Announces that all rows are others now.
    Q_INVOKABLE void reset();
    /// The first half of reset(), before whoever calls makes the elements anew.
    Q_INVOKABLE void beginReset();
    /// The second half of reset().
    Q_INVOKABLE void endReset();
    Q_INVOKABLE void showObservationElements(); ///< those of table "SECOBS"
    Q_INVOKABLE void showSecInspElements();     ///< those of every other table
    Q_INVOKABLE void hideStartUpInspElements(); ///< all inspection texts

Q_SIGNALS:
    void onRemoveAt(int index);        ///< never emitted by the library
    void createFreeText(QString text); ///< never emitted by the library
    /// Another transparency, 0 to 100.
    void transparencyChanged(int transparency);
    /// All texts were given this colour, or one of them was.
    void textColorChanged(QColor color);
    /// All boxes were given this colour, or one of them was.
    void backgroundColorChanged(QColor color);
    /// The way of the video was changed.
    void analogVideoChanged(bool analog);
    /// Something of the KX70 position display was changed.
    void kx70Changed();

private:
    CVideoOverlayManager &m_manager;
    QPointer<CVideoOverlayText> m_freeText;
};

} // namespace Velmar::VideoOverlay
