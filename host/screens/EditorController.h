// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/editor/EditHistory.h"
#include "host/screens/OverlayWarnings.h"

#include <videooverlay/elements/CVideoOverlayElement.h>
#include <videooverlay/elements/ElementParam.h>

#include <QColor>
#include <QHash>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QRectF>
#include <QSize>
#include <QStringList>
#include <QTimer>
#include <QVariantList>

#include <memory>

namespace Velmar::VideoOverlay {
class CVideoOverlayImage;
class CVideoOverlayManager;
class VideoOverlayElementListModel;
} // namespace Velmar::VideoOverlay

namespace Velmar::Host {

class LiveOverlay;
class Messages;
class UiTexts;

/// The editing of the overlay: which element is selected, moving on the grid, changes that can be
/// taken back, adding and deleting, warnings, saving. All changes of the screens go through here.
class EditorController : public QObject
{
    Q_OBJECT
    // clang-format off
    Q_PROPERTY(Velmar::Host::EditHistory *history READ history CONSTANT)
    Q_PROPERTY(Velmar::VideoOverlay::CVideoOverlayElement *selected READ selected NOTIFY selectionChanged)
    Q_PROPERTY(int selectedIndex READ selectedIndex NOTIFY selectionChanged)
    Q_PROPERTY(bool selectedIsText READ selectedIsText NOTIFY selectionChanged)
    Q_PROPERTY(bool selectedIsPicture READ selectedIsPicture NOTIFY selectionChanged)
    Q_PROPERTY(bool selectedHasOwnText READ selectedHasOwnText NOTIFY selectionChanged)
    Q_PROPERTY(bool selectedIsFreeText READ selectedIsFreeText NOTIFY selectionChanged)
    Q_PROPERTY(QStringList selectedKeeps READ selectedKeeps NOTIFY selectionChanged)
    Q_PROPERTY(QString selectedName READ selectedName NOTIFY selectedNameChanged)
    Q_PROPERTY(bool canDelete READ canDelete NOTIFY selectionChanged)
    Q_PROPERTY(QStringList unitChoices READ unitChoices NOTIFY selectionChanged)
    Q_PROPERTY(QStringList favorites READ favorites NOTIFY favoritesChanged)

    Q_PROPERTY(QSize pictureSize READ pictureSize NOTIFY gridChanged)
    Q_PROPERTY(QRectF grid READ grid NOTIFY gridChanged)
    Q_PROPERTY(double cellWidth READ cellWidth NOTIFY gridChanged)
    Q_PROPERTY(double cellHeight READ cellHeight NOTIFY gridChanged)
    Q_PROPERTY(QVariantList warnings READ warnings NOTIFY warningsChanged)
    Q_PROPERTY(int smallestScale MEMBER SmallestScale CONSTANT)
    Q_PROPERTY(int largestScale MEMBER LargestScale CONSTANT)
    // clang-format on

public:
    /// None of the references is owned; all must outlive this object.
    EditorController(LiveOverlay &overlay, Messages &messages, const UiTexts &texts,
                     QObject *parent = nullptr);
    ~EditorController() override;

    EditHistory *history() { return &m_history; }
    VideoOverlay::CVideoOverlayElement *selected() const { return m_selected; } ///< may be null
    int selectedIndex() const;                                                  ///< -1: none
    bool selectedIsText() const;
    bool selectedIsPicture() const;
    bool selectedHasOwnText() const; ///< typed by the operator, not taken from a value
    bool selectedIsFreeText() const;
    QStringList selectedKeeps() const; ///< the properties that a profile keeps of it
    QString selectedName() const;
    bool canDelete() const;          ///< what the operator could add again
    QStringList unitChoices() const; ///< none for what has no unit; an empty one is the user's
    QStringList favorites() const;

    QSize pictureSize() const;
    QRectF grid() const; ///< [px] of the picture
    double cellWidth() const;
    double cellHeight() const;
    /// What looks wrong: maps of "text" and the element's "index", in element order.
    QVariantList warnings() const { return m_warnings; }

    Q_INVOKABLE void select(int index); ///< a row of the element list; -1: nothing
    /// The next element, or with -1 the one before, of those that are switched on; for keys.
    Q_INVOKABLE void selectNext(int step = 1);
    /// Selects what is at this point of the picture [px], or nearest within @p tolerance; nothing
    /// where there is nothing. Of those on top of each other, the selected one stays.
    Q_INVOKABLE bool selectAt(double x, double y, double tolerance);
    Q_INVOKABLE bool isColor(const QColor &color) const { return color.isValid(); }
    Q_INVOKABLE QString nameOf(int index) const;
    Q_INVOKABLE QString kindOf(int index) const;
    Q_INVOKABLE bool isEnabledAt(int index) const;

    /// Moving by a gesture, in whole cells from where it began, within the grid. One step to undo.
    Q_INVOKABLE void beginDrag();
    Q_INVOKABLE void dragTo(int columns, int rows);
    Q_INVOKABLE void endDrag();
    /// By keys or arrow buttons. While one of them is held, what it repeats is one step to undo.
    Q_INVOKABLE void nudge(int columns, int rows, bool isRepeated = false);

    /// Scales the selected picture by a gesture that pulls its lower right corner to a point of the
    /// video picture [px]; its shape stays. Whole percents within the limits and, as long as these
    /// allow, within the grid. Between beginDrag() and endDrag(), for one step to undo.
    Q_INVOKABLE void pullCornerTo(double x, double y);
    Q_INVOKABLE void scaleBy(int percents); ///< of the file's size, by keys

    /// Changes a property of the selected element, or one of the whole overlay.
    /// One that goes on with the last change of the same element, as one letter after the other
    /// does, is one step to undo with it.
    Q_INVOKABLE void set(const QString &property, const QVariant &value, bool goesOn = false);
    Q_INVOKABLE void setForAll(const QString &property, const QVariant &value);

    Q_INVOKABLE void addFavorite(const QString &text);
    Q_INVOKABLE void removeFavorite(int row);
    Q_INVOKABLE void addText(const QString &text);
    /// False, with a message, for what is no picture.
    Q_INVOKABLE bool addPicture(const QString &path);
    Q_INVOKABLE void deleteSelected();

    Q_INVOKABLE bool canSave() const; ///< the current profile may be written
    /// Into the current profile. False, with a message, when it cannot be written.
    Q_INVOKABLE bool save();
    /// Into a new profile, which becomes the current one.
    Q_INVOKABLE bool saveAs(const QString &name);
    Q_INVOKABLE void revert();
    Q_INVOKABLE bool hasUnsavedChanges() const;

    QString name(const VideoOverlay::CVideoOverlayElement &element) const;
    QString kind(VideoOverlay::CVideoOverlayElement::Type type) const;

Q_SIGNALS:
    void selectionChanged();
    void selectedNameChanged();
    void favoritesChanged();
    void gridChanged();
    void warningsChanged();

private:
    using Element = VideoOverlay::CVideoOverlayElement;

    static const int SmallestScale; ///< of pictures [%]
    static const int LargestScale;

    /// Stands for an element in the history, also when that was deleted and made anew.
    struct Handle
    {
        QPointer<Element> element;
    };
    using HandlePointer = std::shared_ptr<Handle>;

    VideoOverlay::VideoOverlayElementListModel &model() const;
    VideoOverlay::CVideoOverlayManager &manager() const;
    void onProfileLoaded();
    void select(Element *element);
    HandlePointer handleOf(Element *element);
    void change(Element *element, const QByteArray &property, const QVariant &value);
    void moveTo(Element &element, QPoint cell);
    void scaleTo(VideoOverlay::CVideoOverlayImage &image, double percent);
    QPoint clamped(QPoint cell, QSize cells) const;
    QSize cellsOf(Element &element) const;
    void setFavorites(const QStringList &favorites);
    void noteAdded(Element *element);
    Element *create(VideoOverlay::ElementParam record);
    void remove(const HandlePointer &handle);
    void updateWarnings();
    bool report(const QStringList &complaints);

    LiveOverlay &m_overlay;
    Messages &m_messages;
    const UiTexts &m_texts;
    EditHistory m_history;
    QHash<Element *, HandlePointer> m_handles;
    QPointer<Element> m_selected;
    QPointer<Element> m_dragged;
    QPoint m_dragStart;
    QSize m_dragCells;
    OverlayWarnings m_overlayWarnings;
    QVariantList m_warnings;
    QTimer m_warningTimer;
};

} // namespace Velmar::Host
