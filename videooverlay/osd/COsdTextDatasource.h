// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/osd/COsdElementDatasource.h"

#include <QSharedPointer>
#include <QString>

namespace Velmar::VideoOverlay {

class CVideoOverlayText;
class TemplateCaptionResolver;
class UnitsProvider;

/// A text made of caption, value and unit. Writes it into its element whenever one of them, the
/// locale or the language changes.
class XQVIDEOOVERLAY_EXPORT COsdTextDatasource : public COsdElementDatasource
{
    Q_OBJECT
public:
    /// @p resolver is shared; without one (null) the caption comes from the record alone.
    COsdTextDatasource(QSharedPointer<TemplateCaptionResolver> resolver, CVideoOverlayText *text,
                       ElementParam &param);
    ~COsdTextDatasource() override;

    void detach(); ///< from the resolver, too

    /// What converts the value and names its unit, from now on; not owned, must outlive this
    /// object, may be null: then the value is shown as it is and no unit stands after it.
    void setUnitProvider(UnitsProvider *provider);

    /// Caption, value and unit as they stand on the picture.
    QString buildText();
    QString appendCaption(); ///< the caption and ": " while the element shows its caption
    QString appendValue();   ///< the value, converted to the element's unit
    QString appendUnit();    ///< a blank and the suffix; empty without a units provider

public Q_SLOTS:
    /// Asks the resolver for the caption; an empty answer keeps the old one.
    virtual void calculateCaption();
    void update(); ///< writes the text anew
    /// Always writes the text anew.
    void setValue(QString newValue);
    /// Always hands the caption on to the element; writes the text anew only if it is another one.
    void setCaption(QString newCaption);
    void renewCaption(); ///< the language changed

protected:
    CVideoOverlayText *textElement() const; ///< never null

private:
    QString m_caption;
    QString m_value;
    QString m_suffix; ///< kept empty: the suffix is asked for whenever the text is built
    QSharedPointer<TemplateCaptionResolver> m_captionResolver;
    QSharedPointer<UnitsProvider> m_unitsProvider; ///< never deletes: the provider is not owned
};

} // namespace Velmar::VideoOverlay
