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
    Q_PROPERTY(bool videoOverlayAvailable READ videoOverlayAvailable NOTIFY videoOverlayAvailableChanged)
    Q_PROPERTY(bool videoOverlayEnabled READ videoOverlayEnabled WRITE setVideoOverlayEnabled NOTIFY videoOverlayEnabledChanged)
    Q_PROPERTY(Velmar::VideoOverlay::Profile *currentProfile READ currentProfile WRITE setCurrentProfile NOTIFY currentProfileChanged)
    Q_PROPERTY(int transparency READ getGlobalTransparency WRITE setGlobalTransparency NOTIFY globalTransparencyChanged)
    Q_PROPERTY(QColor textColor READ getTextColor WRITE setTextColor NOTIFY globalTextColorChanged)
    Q_PROPERTY(QColor backgroundColor READ getBackgroundColor WRITE setBackgroundColor NOTIFY globalBackgroundColorChanged)
    Q_PROPERTY(double colWidth READ colWidth NOTIFY settingsChanged)
    Q_PROPERTY(double rowHeight READ rowHeight NOTIFY settingsChanged)
    // clang-format on

public:
    using State = Velmar::Multimedia::CVideoRecorder::State;

    /// @p control and @p capabilities are not owned and must outlive the manager. The global
    /// transparency is 44 afterwards, because the list model sets it.
    CVideoOverlayManager(CVideoOverlayControl &control, CVideoOverlayCapabilities &capabilities);
    ~CVideoOverlayManager() override;

    // wiring
    void setProfilesModel(VideoOverlayProfilesModel *model); ///< not owned, may die first
    VideoOverlayProfilesModel *getProfilesModel() const;
    VideoOverlayElementListModel *getElementListModel() const;     ///< owned by the manager
    Velmar::Shared::QmlStringListModel *getFavoritesModel() const; ///< owned by the manager
    void
    registerElementAccessor(IVideoOverlayElementAccessor *accessor); ///< not owned, may be null
    VideoOverlaySettings *getSettings() const; ///< the grid; owned by the manager
    QMutex *mutex(); ///< recursive; hold it over several calls that must see one element list

    // availability, forwarded to the control
    bool videoOverlayAvailable() const;
    bool videoOverlayEnabled() const;
    void setVideoOverlayEnabled(bool enabled);

    // the current profile, as the profiles model has it
    Profile *currentProfile() const; ///< null without a profiles model
    void setCurrentProfile(Profile *profile);

    // elements
    CVideoOverlayText *createText();
    CVideoOverlayImage *createImage();
    CVideoOverlayText *createText(ElementParam &param);
    CVideoOverlayImage *createImage(ElementParam &param);
    void createWatermark(const QString &path);
    void showWatermark();
    void hideWatermark();
    int elementsCount();
    /// Null for an index out of range.
    Q_INVOKABLE Velmar::VideoOverlay::CVideoOverlayElement *getElement(int index);
    QList<CVideoOverlayElement *> getElementList();
    int rowIndexByID(int id); ///< of the first element with the id; -1 when none has it
    bool deleteElement(int index);
    bool deleteElementFromModel(CVideoOverlayElement *element);
    void removeElements();

    // layout
    void adjustElementPosition(CVideoOverlayElement *element);
    double colWidth() const;  ///< [px]
    double rowHeight() const; ///< [px]

    // what holds for the whole overlay
    int getGlobalTransparency(); ///< 0 opaque .. 100 invisible
    void setGlobalTransparency(int transparency);
    QColor getTextColor(); ///< invalid unless all texts have the same
    void setTextColor(QColor color);
    QColor getBackgroundColor(); ///< invalid unless all texts have the same
    void setBackgroundColor(QColor color);
    bool textsHaveSameColors(QColor &color);
    bool backgroundsHaveSameColors(QColor &color);
    bool analogVideo() const;
    void setAnalogVideo(bool analog);
    bool kx70iiState();
    void setKx70iiState(bool on);
    int kx70iiCol() const; ///< [percent]
    void setKx70iiCol(int column);
    int kx70iiRow() const; ///< [percent]
    void setKx70iiRow(int row);
    QString kx70iiUnits() const;
    void setKx70iiUnits(const QString &units);
    void setFavorites(QStringList &favorites, int maxLineNumber);
    void temporaryHideInspTexts(bool hide);

    // changes since the last save
    void setGeneralSettings(const ElementParam &param);
    ElementParam generalSettingsGetAllProperties();
    QList<ElementParam> getAllPropertiesWithChanges();
    QList<ElementParam> getPropertiesWithChanges();
    void resetChanges();

Q_SIGNALS:
    void videoOverlayAvailableChanged();
    void videoOverlayEnabledChanged();
    void videoRecording();
    void videoNotRecording();
    void globalTransparencyChanged(int transparency);
    void globalTextColorChanged(QColor color);
    void globalBackgroundColorChanged(QColor color);
    void currentProfileChanged();
    void analogVideoChanged(bool analog);
    void kx70iiChanged();
    void settingsChanged();
    void beforeRemoveElement(Velmar::VideoOverlay::CVideoOverlayElement *element);
    void beforeRemoveElements();
    void profileLoaded();

public Q_SLOTS:
    void onRecordingStateChanged(Velmar::VideoOverlay::CVideoOverlayManager::State state);
    void onSettingsChanged();
    // For whoever connects more signals of an element: its sender has changed. Finding the sender
    // takes longer the more elements there are, so the manager itself follows them in another way.
    void onTextChanged();
    void onImageChanged();
    void onChildDestroyed(CVideoOverlayElement *obj); // spelled like the signal, deleteRequest

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
