// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/elements/ElementParam.h"
#include "videooverlay/elements/RenderedElement.h"
#include "videooverlay/xqvideooverlay_export.h"

#include <QMutex>
#include <QMutexLocker>
#include <QObject>
#include <QPointer>
#include <QSize>
#include <QString>
#include <QTimer>

#include <atomic>

namespace Velmar::VideoOverlay {

class VideoOverlaySettings;

/// What everything drawn over the video shares: identity, place on the character grid, caption, the
/// operator's switch, the timeout after which it hides itself, and the parameter record it was
/// built from, against which edits are detected. The manager owns elements and places them;
/// datasources fill them; QML shows and edits them.
///
/// Setters compare, store and emit while they hold the element's lock, so that a value and its
/// signal are one step for a reader in another thread; a setter given the current value is silent.
/// The exceptions say so. All signals are emitted on the caller's thread; timerExpired and
/// deleteRequest without the lock, because a receiver may destroy the element.
class XQVIDEOOVERLAY_EXPORT CVideoOverlayElement : public QObject
{
    Q_OBJECT
    // clang-format off
    // identity and placement
    /// The identity, unique among all elements of the process; -1 until it is given one.
    Q_PROPERTY(int id READ id WRITE setId NOTIFY idChanged)
    /// Row of the top-left cell on the character grid, from 0.
    Q_PROPERTY(int row READ row WRITE setRow NOTIFY rowChanged)
    /// Column of the top-left cell on the character grid, from 0.
    Q_PROPERTY(int column READ column WRITE setColumn NOTIFY columnChanged)
    // crossed on purpose: both change only when a new row or column re-places the element
    /// Left edge on the picture [px], fraction cut off.
    Q_PROPERTY(int x READ wholeX NOTIFY rowChanged)
    /// Top edge on the picture [px], fraction cut off.
    Q_PROPERTY(int y READ wholeY NOTIFY columnChanged)
    /// Height on the picture [px]; follows from the contents.
    Q_PROPERTY(double height READ height NOTIFY heightChanged)
    /// Width on the picture [px]; follows from the contents.
    Q_PROPERTY(double width READ width WRITE setWidth NOTIFY widthChanged)

    // visibility and caption
    /// Reads the effective visibility, writes the element's own.
    Q_PROPERTY(bool visible READ visible WRITE setVisible NOTIFY visibleChanged)
    /// The operator's switch.
    Q_PROPERTY(bool enabled READ enabled WRITE setEnabled NOTIFY enabledChanged)
    /// Whether the caption stands before the value.
    Q_PROPERTY(bool captionVisible READ captionVisible WRITE setCaptionVisible NOTIFY captionVisibleChanged)
    /// What stands before the value.
    Q_PROPERTY(QString caption READ caption WRITE setCaption NOTIFY captionChanged)
    /// The kind; typeChanged is emitted for every write.
    Q_PROPERTY(Type type READ type WRITE setType NOTIFY typeChanged)

    // timeout and text
    /// Seconds until the element hides itself; 0: never.
    Q_PROPERTY(int timeout READ timeout WRITE setTimeout NOTIFY timeoutChanged)
    /// Largest number of text lines; enforced by whoever sets the text.
    Q_PROPERTY(int maxlinenumber READ getMaxLineNumber WRITE setMaxLineNumber NOTIFY maxlinenumberChanged)
    /// Keeps the timeout from being started.
    Q_PROPERTY(bool timeoutDisabled READ timeoutDisabled WRITE setTimeoutDisabled NOTIFY timeoutDisabledChanged)
    /// Unit in which a value is shown; empty where there is none.
    Q_PROPERTY(QString unit READ unit WRITE setUnit NOTIFY unitChanged)
    /// From 0, opaque, to 100, invisible; applied by the display. Bindings are not notified, though
    /// transparencyChanged is emitted.
    Q_PROPERTY(int transparency READ transparency WRITE setTransparency)
    /// Whether the operator may delete the element.
    Q_PROPERTY(bool canDelete READ canDelete CONSTANT)
    // clang-format on

public:
    /// Element kinds. The numbers are stored in profiles, which may hold others.
    enum Type : int {
        StaticText = 0,     ///< fixed text
        SystemText = 1,     ///< a live system value
        FreePicture = 2,    ///< picture file or screen snip
        InspText = 3,       ///< value of an inspection column
        FreeText = 4,       ///< typed by the operator
        Watermark = 5,      ///< the watermark picture
        InspStaticText = 6, ///< static text bound to an inspection column
        Invalid = 7,        ///< no element; also the general settings
    };
    Q_ENUM(Type)

    /// An element that is not visible, of no kind, without id and place.
    explicit CVideoOverlayElement(QObject *parent = nullptr);
    ~CVideoOverlayElement() override;

    /// Height on the picture [px]. Changed only by the library, through setHeight().
    virtual double height();
    /// Width on the picture [px].
    virtual double width();
    /// Unit in which a value is shown; empty for elements that show none.
    virtual QString unit();
    /// Does nothing in elements that show no unit.
    virtual void setUnit(const QString &unit);
    /// Draws the element into @p image, top left at (0, 0). The base draws nothing.
    virtual void renderInto(QImage &image) const;
    /// The element as the display gets it, its picture drawn anew. The base has no picture.
    virtual RenderedElement getElement() const;
    /// The stored record with every edit on top.
    virtual ElementParam getAllProperties() const;
    /// Only the keys whose live value differs from the stored record (absent reads as 0 or false).
    virtual ElementParam getChangedProperties() const;
    /// Makes the live state the new stored record: nothing counts as changed afterwards.
    virtual void applyChangesToOrigParams();

    int id() const; ///< -1 until it is given one
    /// Emits idChanged when it differs. Ids are given by the manager; of two equal ones the first
    /// is found.
    void setId(int id);
    int row() const; ///< grid row of the top-left cell
    /// Emits rowChanged when it differs, upon which the manager places the element anew. Any row is
    /// taken, also one off the grid.
    void setRow(int row);
    int column() const; ///< grid column of the top-left cell
    /// Emits columnChanged when it differs, upon which the manager places the element anew. Any
    /// column is taken, also one off the grid.
    void setColumn(int column);
    double x() const; ///< left edge [px]; 0 until placed
    double y() const; ///< top edge [px]; 0 until placed
    /// Moves the element on the picture [px] without a signal. For whoever lays the grid out;
    /// safe while another thread reads, because it neither waits for the lock nor tears a value.
    void setPosition(double x, double y);
    void setHeight(double height); ///< [px]
    void setWidth(double width);   ///< [px]

    /// Effective visibility: enabled, shown, and not hidden for the time being.
    bool visible() const;
    /// Sets the element's own visibility and with it starts or stops the timeout timer.
    void setVisible(bool visible);
    bool enabled() const; ///< the operator's switch
    /// Also decides visibility anew; emits enabledChanged, then visibleChanged.
    void setEnabled(bool enabled);
    /// Whether the caption stands before the value; true until it is changed.
    bool captionVisible() const;
    /// Emits captionVisibleChanged when it differs, upon which datasources build the text anew.
    void setCaptionVisible(bool visible);
    /// What stands before the value; empty at first.
    QString caption() const;
    /// Emits captionChanged when it differs. Does not change a text; its datasource does.
    void setCaption(const QString &caption);
    /// The kind; Invalid until it is given one.
    Type type() const;
    /// Always emits typeChanged, also for the current type.
    void setType(Type type);

    int timeout() const; ///< [s] until the element hides itself; 0: never
    /// Also decides visibility anew, so that an element with a timeout hides at once.
    void setTimeout(int timeoutSeconds);
    bool timeoutDisabled() const; ///< keeps the timer from being started
    /// Emits timeoutDisabledChanged when it differs. A timer that runs goes on.
    void setTimeoutDisabled(bool disabled);
    int getMaxLineNumber() const; ///< largest number of lines, kept here for those who set the text
    /// Emits maxlinenumberChanged when it differs.
    void setMaxLineNumber(int lines);
    int transparency() const; ///< 0 opaque .. 100 invisible; applied by the display
    /// Emits transparencyChanged when it differs. The range is not checked.
    void setTransparency(int transparency);
    /// False only where the record says so; an element without that key may be deleted.
    bool canDelete() const;

    /// A deletion that was asked for by deleteLater() waits until no operation of the element runs,
    /// also where a handler of its signals turns an event loop of its own.
    bool event(QEvent *event) override;

    /// Hides the element for the time being, without touching its own visibility.
    /// Always emits visibleChanged.
    void setTemporaryHide(bool hide);

    /// The grid; not owned, may be null and may die first.
    void setSettings(VideoOverlaySettings *settings);

    /// The record that edits are compared with. Emits nothing and changes no property.
    void setParamObject(const ElementParam &param);
    /// A copy of the stored record.
    ElementParam getParamObject() const;
    /// The stored record itself, for those who must write into it. Not locked.
    ElementParam &getParamObjectRef();
    /// Writes one value into the stored record itself, under the lock. Emits nothing.
    void storeParam(const QString &key, const QVariant &value);

Q_SIGNALS:
    /// Another row, and so another y; also the notification of x.
    void rowChanged();
    /// Another column, and so another x; also the notification of y.
    void columnChanged();
    void visibleChanged(); ///< the effective visibility may have changed
    /// Another id.
    void idChanged();
    /// Another width [px].
    void widthChanged();
    /// Another height [px].
    void heightChanged();
    /// Another caption.
    void captionChanged();
    /// Another timeout; the visibility has been decided anew.
    void timeoutChanged();
    /// The operator's switch was turned; the visibility has been decided anew.
    void enabledChanged();
    /// The caption was shown or hidden.
    void captionVisibleChanged();
    /// Another unit.
    void unitChanged();
    /// The kind was set, to another one or not.
    void typeChanged();
    /// The timeout was disabled or allowed again.
    void timeoutDisabledChanged();
    /// Another largest number of lines.
    void maxlinenumberChanged();
    /// Another transparency.
    void transparencyChanged();
    void
    timerExpired(); ///< the timeout ran out and the element has hidden itself; without the lock
    void canDeleteChanged(); ///< never emitted by the library
    /// The element asks to be destroyed; a receiver may do so at once. Emitted without the lock.
    void deleteRequest(CVideoOverlayElement *element);
    void settingsChanged(); ///< another grid, not a change within it

public Q_SLOTS:
    /// Starts the timeout, or resumes a suspended one. Needs a timeout, the operator's switch on
    /// and the timeout not disabled. A resumed timer runs a thousand times the time that was left:
    /// the remaining milliseconds are taken for seconds. Kept so; hosts rely on it.
    void startTimer();
    void
    suspendTimer(); ///< stops a running timer and remembers what was left; needs timeout and switch
    void stopTimer();   ///< stops a running timer for good
    void expireTimer(); ///< ends a running timer now, as if its time were over
    /// With a timeout: hides, and something must show the element again. Without: follows the
    /// operator's switch, except for inspection and free texts, which their datasources show.
    void determineVisibility();
    void handleTimeout(); ///< hides; may ask for deletion; announces timerExpired

protected:
    VideoOverlaySettings *settings() const; ///< may be null
    QSize pixelSize() const;                ///< width and height, fractions cut off

    /// Held by every operation that emits. The manager's lock, which handlers of the signals take,
    /// comes before the element's own: a reader who holds the manager's lock and asks elements
    /// would otherwise wait for an edit that waits for the reader.
    class EditLock
    {
    public:
        /// Waits for both locks; never null.
        explicit EditLock(CVideoOverlayElement *element);
        ~EditLock();

    private:
        Q_DISABLE_COPY(EditLock)
        QMutexLocker m_group;
        QMutexLocker m_own;
        CVideoOverlayElement *m_element;
    };

    mutable QMutex m_mutex {QMutex::Recursive}; ///< guards every field below

    /// Set by element kinds that are to be deleted, not only hidden, when their time is over.
    bool m_deleteOnExpiry = false;

private:
    friend class CVideoOverlayControl; ///< locks and uses the element while a backend has it
    friend class CVideoOverlayManager; ///< sets the group's lock, and asks before it destroys

    /// Says that somebody is at work with the element and will come back to it: an operation of its
    /// own, or a display. Others may destroy it meanwhile all the same.
    class Use
    {
    public:
        explicit Use(CVideoOverlayElement &element);
        ~Use();

    private:
        Q_DISABLE_COPY(Use)
        QPointer<CVideoOverlayElement> m_element;
    };

    bool isBusy() const; ///< somebody is at work with it
    void endUse();       ///< with the lock held
    int wholeX() const;  ///< x() as QML reads it: cut off, and never beyond an int
    int wholeY() const;

    std::atomic<double> m_x {0.0}; ///< written without the lock, hence atomic
    std::atomic<double> m_y {0.0};
    int m_id = -1;
    int m_row = 0;
    int m_column = 0;
    bool m_visible = false; ///< the element's own visibility, before switch and temporary hide
    bool m_captionVisible = true;
    QString m_caption;
    Type m_type = Invalid;
    double m_width = 0.0;
    double m_height = 0.0;
    int m_timeout = 0; ///< [s]
    bool m_enabled = false;
    QTimer m_timer {this}; ///< a child, so that it moves to another thread with the element
    int m_remaining = -1;  ///< [ms] left when suspended; 0 after a stop, -1 never suspended
    bool m_timeoutDisabled = false;
    int m_transparency = 100;
    bool m_temporaryHide = false;
    int m_maxLineNumber = 3;
    QPointer<VideoOverlaySettings> m_settings;
    ElementParam m_params;
    QMutex *m_groupMutex = nullptr; ///< the manager's; null while nobody manages the element
    int m_runningEdits = 0;         ///< who is at work with this element
    bool m_deleteWhenIdle = false;  ///< its deletion came while somebody was
};

} // namespace Velmar::VideoOverlay
