// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/multimedia/CVideoRecorder.h"
#include "videooverlay/elements/CVideoOverlayElement.h"
#include "videooverlay/elements/CVideoOverlayImage.h"
#include "videooverlay/elements/CVideoOverlayText.h"
#include "videooverlay/profiles/Profile.h"
#include "videooverlay/xqvideooverlay_export.h"

#include <QColor>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace Velmar::Shared {
class QmlStringListModel;
}

namespace Velmar::VideoOverlay {

class CVideoOverlayCapabilities;
class CVideoOverlayControl;
class IVideoOverlayElementAccessor;
class VideoOverlayElementListModel;
class VideoOverlayProfilesModel;
class VideoOverlaySettings;

/// The live overlay: owns the elements, places them on the grid, sends every change of them to the
/// display, keeps what holds for the whole overlay, and answers for all of it when a profile is
/// saved. The host makes one; everything happens on the GUI thread. Another thread may read the
/// elements while it holds mutex().
class XQVIDEOOVERLAY_EXPORT CVideoOverlayManager : public QObject
{
    Q_OBJECT
    // clang-format off
    /// Whether the display is there and can show elements.
    Q_PROPERTY(bool videoOverlayAvailable READ videoOverlayAvailable NOTIFY videoOverlayAvailableChanged)
    /// Whether the overlay is switched on.
    Q_PROPERTY(bool videoOverlayEnabled READ videoOverlayEnabled WRITE setVideoOverlayEnabled NOTIFY videoOverlayEnabledChanged)
    /// The current profile of the profiles model; may be null.
    Q_PROPERTY(Velmar::VideoOverlay::Profile *currentProfile READ currentProfile WRITE setCurrentProfile NOTIFY currentProfileChanged)
    /// Transparency of all texts, from 0, opaque, to 100, invisible.
    Q_PROPERTY(int transparency READ getGlobalTransparency WRITE setGlobalTransparency NOTIFY globalTransparencyChanged)
    /// Colour of all texts; invalid unless they have the same.
    Q_PROPERTY(QColor textColor READ getTextColor WRITE setTextColor NOTIFY globalTextColorChanged)
    /// Colour of all boxes; invalid unless they have the same.
    Q_PROPERTY(QColor backgroundColor READ getBackgroundColor WRITE setBackgroundColor NOTIFY globalBackgroundColorChanged)
    /// Width of a grid cell [px].
    Q_PROPERTY(double colWidth READ colWidth NOTIFY settingsChanged)
    /// Height of a grid cell [px].
    Q_PROPERTY(double rowHeight READ rowHeight NOTIFY settingsChanged)
    // clang-format on

public:
    /// What the video recorder does, as the host says it.
    using State = Velmar::Multimedia::CVideoRecorder::State;

    /// @p control and @p capabilities are not owned and must outlive the manager. The global
    /// transparency is 44 afterwards, because the list model sets it.
    CVideoOverlayManager(CVideoOverlayControl &control, CVideoOverlayCapabilities &capabilities);
    ~CVideoOverlayManager() override;

    // wiring
    void setProfilesModel(VideoOverlayProfilesModel *model); ///< not owned, may die first
    /// Null until it is set, and again when it was destroyed.
    VideoOverlayProfilesModel *getProfilesModel() const;
    VideoOverlayElementListModel *getElementListModel() const;     ///< owned by the manager
    Velmar::Shared::QmlStringListModel *getFavoritesModel() const; ///< owned by the manager
    void
    registerElementAccessor(IVideoOverlayElementAccessor *accessor); ///< not owned, may be null
    VideoOverlaySettings *getSettings() const; ///< the grid; owned by the manager
    QMutex *mutex(); ///< recursive; hold it over several calls that must see one element list

    // availability, forwarded to the control
    /// Whether a backend is set, ready and active.
    bool videoOverlayAvailable() const;
    /// False while the display is not available.
    bool videoOverlayEnabled() const;
    /// Does nothing while the display is not available.
    void setVideoOverlayEnabled(bool enabled);

    // the current profile, as the profiles model has it
    Profile *currentProfile() const; ///< null without a profiles model
    /// Selects it on the profiles model and emits currentProfileChanged; nothing for the one that
    /// is current already, and without a profiles model.
    void setCurrentProfile(Profile *profile);

    // elements
    /// A new text element in the cell 0, 0, owned by the manager, connected, and handed to the
    /// display. Never null. Its datasource is the caller's to make.
    CVideoOverlayText *createText();
    /// A new picture element, as createText() makes texts.
    CVideoOverlayImage *createImage();
    /// As createText(), and registered with the host's accessor under the key that it makes of @p
    /// param.
    CVideoOverlayText *createText(ElementParam &param);
    /// As createImage(), and registered with the host's accessor under the key that it makes of @p
    /// param.
    CVideoOverlayImage *createImage(ElementParam &param);
    /// Shows the picture file at @p path as the watermark, in place of an earlier one. A file that
    /// cannot be read gives a watermark without picture and a line in the log.
    void createWatermark(const QString &path);
    /// Nothing without a watermark. A watermark that is shown already is not sent to the display
    /// again.
    void showWatermark();
    /// Nothing without a watermark.
    void hideWatermark();
    /// How many elements there are, the watermark not counted.
    int elementsCount();
    /// Null for an index out of range.
    Q_INVOKABLE Velmar::VideoOverlay::CVideoOverlayElement *getElement(int index);
    /// The elements in order of creation, which is the order of the list model. A copy: handlers
    /// may delete elements.
    QList<CVideoOverlayElement *> getElementList();
    int rowIndexByID(int id); ///< of the first element with the id; -1 when none has it
    /// Takes the element of a row off display, list and accessor and destroys it, at once or when
    /// its own running operation is over. No row signals: the list model's remove() gives them.
    /// False when there is no such row.
    bool deleteElement(int index);
    /// Emits beforeRemoveElement always, then has the list model remove the row. False when the
    /// element is none of these or must stay.
    bool deleteElementFromModel(CVideoOverlayElement *element);
    /// Emits beforeRemoveElements, then removes every element with its row signals, also what the
    /// operator may not delete. The watermark stays.
    void removeElements();

    // layout
    /// Sets the pixel position that follows from row and column, without a signal. Null is allowed.
    void adjustElementPosition(CVideoOverlayElement *element);
    double colWidth() const;  ///< [px]
    double rowHeight() const; ///< [px]

    // what holds for the whole overlay
    int getGlobalTransparency(); ///< 0 opaque .. 100 invisible
    /// Emits globalTransparencyChanged when it differs; all texts follow. The range is not checked.
    void setGlobalTransparency(int transparency);
    QColor getTextColor(); ///< invalid unless all texts have the same
    /// For all texts. Always emits globalTextColorChanged, after those of the texts.
    void setTextColor(QColor color);
    QColor getBackgroundColor(); ///< invalid unless all texts have the same
    /// For the boxes of all texts. Always emits globalBackgroundColorChanged, after those of the
    /// texts.
    void setBackgroundColor(QColor color);
    /// True, and the colour in @p color, when there are texts and all have one text colour; else @p
    /// color stays as it is.
    bool textsHaveSameColors(QColor &color);
    /// The same for the colour of the boxes.
    bool backgroundsHaveSameColors(QColor &color);
    /// Whether the video comes in by the analog way; only kept here.
    bool analogVideo() const;
    /// Emits analogVideoChanged when it differs.
    void setAnalogVideo(bool analog);
    /// Whether the position display of the KX70 is switched on; only kept here.
    bool kx70iiState();
    /// Emits kx70iiChanged when it differs.
    void setKx70iiState(bool on);
    int kx70iiCol() const; ///< [percent]
    /// In percent of the picture's width. Emits kx70iiChanged when it differs.
    void setKx70iiCol(int column);
    int kx70iiRow() const; ///< [percent]
    /// In percent of the picture's height. Emits kx70iiChanged when it differs.
    void setKx70iiRow(int row);
    /// The unit system of the position display, for example "metric".
    QString kx70iiUnits() const;
    /// Emits kx70iiChanged when it differs. Any text is taken.
    void setKx70iiUnits(const QString &units);
    /// The favourite texts for the free text, and the largest number of lines of each.
    void setFavorites(QStringList &favorites, int maxLineNumber);
    /// Hides all static inspection texts, or shows them as they were.
    void temporaryHideInspTexts(bool hide);

    // changes since the last save
    /// The general settings of a profile: applies what the record holds and makes it the baseline
    /// of changes. Always emits kx70iiChanged once.
    void setGeneralSettings(const ElementParam &param);
    /// The general settings as they are now, on top of the record they came from.
    ElementParam generalSettingsGetAllProperties();
    /// What a profile is saved from: the record of every element, in their order, then the general
    /// settings. Never empty.
    QList<ElementParam> getAllPropertiesWithChanges();
    /// Only what differs from the last save or load, one record for each element that differs;
    /// empty when nothing does. Favourites that differ are reported once and count as saved then.
    QList<ElementParam> getPropertiesWithChanges();
    /// Makes what is live the baseline: nothing counts as changed afterwards.
    void resetChanges();

Q_SIGNALS:
    /// The display came or went. Nothing is sent to it again by itself: call onSettingsChanged().
    void videoOverlayAvailableChanged();
    /// The overlay was switched on or off.
    void videoOverlayEnabledChanged();
    /// The recorder records.
    void videoRecording();
    /// The recorder does anything else.
    void videoNotRecording();
    /// Another transparency, 0 to 100, for all texts.
    void globalTransparencyChanged(int transparency);
    /// All texts were given this colour, or one of them was.
    void globalTextColorChanged(QColor color);
    /// All boxes were given this colour, or one of them was.
    void globalBackgroundColorChanged(QColor color);
    /// Another profile was selected through setCurrentProfile().
    void currentProfileChanged();
    /// The way of the video was changed.
    void analogVideoChanged(bool analog);
    /// Something of the KX70 position display was changed, or general settings were applied.
    void kx70iiChanged();
    /// The grid was computed anew.
    void settingsChanged();
    /// The element is about to be removed; it is whole still.
    void beforeRemoveElement(Velmar::VideoOverlay::CVideoOverlayElement *element);
    /// All elements are about to be removed.
    void beforeRemoveElements();
    /// Emitted by the host, which connects the builder's signal to it.
    void profileLoaded();

public Q_SLOTS:
    /// Emits videoRecording for the state 2 and videoNotRecording for every other one.
    void onRecordingStateChanged(Velmar::VideoOverlay::CVideoOverlayManager::State state);
    /// Sends margins and all elements to the display again, each at its place on the grid.
    void onSettingsChanged();
    /// For whoever connects more signals of an element: its sender has changed. Finding the sender
    /// takes longer the more elements there are, so the manager itself follows them in another way.
    void onTextChanged();
    /// As onTextChanged().
    void onImageChanged();
    /// For an element's deleteRequest: removes it, with its row. Its argument is spelled like the
    /// signal's, so that both can be connected by name.
    void onChildDestroyed(CVideoOverlayElement *obj);

private:
    friend class VideoOverlayElementListModel; ///< walks over the elements, too

    /// Comes to every element, in order and under the lock. Handlers and displays may delete
    /// elements meanwhile, this one or another: what has left is passed over.
    void forEachElement(const std::function<void(CVideoOverlayElement &)> &visit);
    bool isHere(const CVideoOverlayElement &element) const; ///< also the watermark
    void adopt(CVideoOverlayElement *element);
    /// Destroys it, at once or, in the middle of its own operation, when that is over.
    void discard(CVideoOverlayElement *element);
    /// Nothing comes of it any more: no signal to or from here, no timeout, no new value.
    void silence(CVideoOverlayElement *element);
    void connectText(CVideoOverlayText *text);
    void connectImage(CVideoOverlayImage *image);
    void onElementChanged(CVideoOverlayElement *element);
    /// The colour that all texts have; false when there is none or more than one.
    bool commonColor(QColor (CVideoOverlayText::*colorOf)() const, QColor &color);
    template <typename Value> void setKx70(Value &stored, const Value &value);
    ElementParam generalSettingsGetChanges();
    /// Takes the favourites into the record of a free text; false when there is nothing to take.
    bool storeFavorites(CVideoOverlayElement &element);

    CVideoOverlayControl &m_control;
    CVideoOverlayImage *m_watermark = nullptr; ///< owned; not among the elements
    QMutex m_mutex {QMutex::Recursive};        ///< comes before every element's own
    QList<CVideoOverlayElement *> m_elements;  ///< in order of creation; children
    std::unique_ptr<VideoOverlayElementListModel> m_elementListModel;
    IVideoOverlayElementAccessor *m_elementAccessor = nullptr;
    QPointer<VideoOverlayProfilesModel> m_profilesModel;
    std::unique_ptr<Velmar::Shared::QmlStringListModel> m_favoritesModel;
    std::unique_ptr<VideoOverlaySettings> m_settings;
    int m_globalTransparency = 0;
    int m_emitKx70Changes = 1;      ///< 0: values change without a signal
    ElementParam m_generalSettings; ///< what changes are compared with
    bool m_analogVideo = false;
    bool m_kx70iiState = false;
    int m_kx70iiCol = 1;
    int m_kx70iiRow = 1;
    // Not "metric" as in the default record: replaced as soon as general settings are applied.
    QString m_kx70iiUnits = QStringLiteral("metrics");
    bool m_idsInOrder = true; ///< all ids are the manager's own, which grow with the rows
};

} // namespace Velmar::VideoOverlay
