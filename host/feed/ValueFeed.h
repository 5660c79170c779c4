// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <videooverlay/display/IVideoOverlayElementAccessor.h>

#include <QHash>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

namespace Velmar::Host {

/// Where live values meet the texts that show them. The manager registers every bound element here;
/// whoever has a value sets it by its name. A value stays known, so that the texts of the next
/// profile can have it. GUI thread only.
class ValueFeed : public VideoOverlay::IVideoOverlayElementAccessor
{
public:
    ~ValueFeed() override;

    /// The value that the record is bound to.
    QString makeKey(const VideoOverlay::ElementParam &param) override;
    /// Several elements may show one value. An empty key registers nothing.
    void registerElement(const QString &key, VideoOverlay::CVideoOverlayElement *element) override;
    void unregisterElement(VideoOverlay::CVideoOverlayElement *element) override;

    /// Shows @p value in every text of this name, and remembers it. A null one is ignored.
    void setValue(const QString &name, const QVariant &value);
    QVariant value(const QString &name) const; ///< the last one; invalid when there was none

    /// Shows the last values again: for the texts that were made since they came.
    void replay();
    /// Forgets the values; what the texts show stays.
    void clearValues();

    bool isShown(const QString &name) const; ///< some element is registered for it
    QStringList unshownNames() const;        ///< of the values that came so far, sorted

private:
    using Elements = QVector<QPointer<VideoOverlay::CVideoOverlayElement>>;

    void deliver(const QString &name, const QVariant &value);

    QHash<QString, Elements> m_elements; ///< by value name, in order of registration; not owned
    QHash<QString, QVariant> m_values;
};

} // namespace Velmar::Host
