// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <videooverlay/display/IVideoOverlayElementAccessor.h>

#include <QHash>
#include <QMap>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

namespace Velmar::Host {

/// Where live values meet the texts that show them. The manager registers every bound element here;
/// whoever has a value sets it by its name. A value stays known, so that the texts of the next
/// profile can have it. Free texts are no different, although their records name no value; but one
/// that has hidden since does not come back with the next profile. GUI thread only.
class ValueFeed : public VideoOverlay::IVideoOverlayElementAccessor
{
public:
    ~ValueFeed() override;

    /// The value that the record is bound to; OSD_FREE_TEXT_BOX for a free text.
    QString makeKey(const VideoOverlay::ElementParam &param) override;
    /// Several elements may show one value. An empty key registers nothing.
    void registerElement(const QString &key, VideoOverlay::CVideoOverlayElement *element) override;
    void unregisterElement(VideoOverlay::CVideoOverlayElement *element) override;

    /// Shows @p value in every text of this name, and remembers it. A null one is ignored. A free
    /// text shows no more lines than it may have.
    void setValue(const QString &name, const QVariant &value);
    QVariant value(const QString &name) const; ///< the last one; invalid when there was none

    /// Shows the last values again: for the texts that were made since they came.
    void replay();
    /// Forgets the values; what the texts show stays.
    void clearValues();

    bool isShown(const QString &name) const; ///< some element is registered for it
    QStringList unshownNames() const;        ///< of the values that came so far, sorted

private:
    /// By the number of the registration, so in its order; not owned.
    using Elements = QMap<quint64, QPointer<VideoOverlay::CVideoOverlayElement>>;

    /// Where an element is registered.
    struct Place
    {
        QString name;
        quint64 number;
    };

    void deliver(const QString &name, const QVariant &value);
    void noteFreeText(const VideoOverlay::CVideoOverlayElement &element);

    QHash<QString, Elements> m_elements; ///< by value name
    /// Everything above once more, so that nothing is searched when a profile goes. The keys may
    /// have died; they are compared only.
    QHash<VideoOverlay::CVideoOverlayElement *, QVector<Place>> m_places;
    quint64 m_lastNumber = 0;
    QHash<QString, QVariant> m_values;
    bool m_freeTextIsOver = false; ///< it was shown and has hidden
};

} // namespace Velmar::Host
