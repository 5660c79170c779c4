// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/base/GUID.h"
#include "platform/templates/CCatalogTemplate.h"
#include "videooverlay/xqvideooverlay_export.h"

#include <QObject>
#include <QSharedPointer>
#include <QString>

namespace Velmar::VideoOverlay {

class ElementParam;

/// Finds the caption that stands before an element's value, from the element's parameter record.
/// Datasources ask it and ask again whenever it says that its answers may have changed.
/// For the GUI thread.
class XQVIDEOOVERLAY_EXPORT CaptionResolver : public QObject
{
    Q_OBJECT
public:
    /// For those who implement it.
    explicit CaptionResolver(QObject *parent = nullptr);
    ~CaptionResolver() override;

    /// The caption for @p param; empty, and a line in the log, when there is none.
    virtual QString getCaption(ElementParam &param) const = 0;

Q_SIGNALS:
    void resolverReady(); ///< captions may have changed

public Q_SLOTS:
    /// The catalog template that captions come from, from now on; may be null.
    virtual void
    setTemplate(const Velmar::Base::GUID &uniqueId,
                const QSharedPointer<Velmar::Templates::CCatalogTemplate> &catalogTemplate)
        = 0;
};

} // namespace Velmar::VideoOverlay
