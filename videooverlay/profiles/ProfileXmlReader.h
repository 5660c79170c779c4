// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/elements/ElementParam.h"
#include "videooverlay/xqvideooverlay_export.h"

#include <QColor>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QVariant>

#include <cstddef>

class QDomElement;
class QDomNode;

namespace Velmar::VideoOverlay {

/// The text shown for the unit that profile files store as @p number ("8" gives the degree sign).
/// What is no such number is returned unchanged.
XQVIDEOOVERLAY_EXPORT QString unitNumToString(const QString &number);

/// Reads profile files. A file that cannot be opened or parsed, or that would take unbounded memory
/// or time, is reported in the log at level 1 and leaves the receiver untouched; malformed values
/// inside a readable file become 0, false or an invalid colour.
class XQVIDEOOVERLAY_EXPORT ProfileXmlReader : public QObject
{
    Q_OBJECT

public:
    /// Has no state; one may read many files.
    explicit ProfileXmlReader(QObject *parent = nullptr);
    ~ProfileXmlReader() override;

    /// Sets "caption" (the profile's name; without one @p path as it is) and "readonly" (the text
    /// of the attribute, "false" without one) in @p header. True when the file could be parsed,
    /// even if it is no profile at all.
    bool readHeader(const QString &path, QHash<QString, QVariant> &header);

    /// Appends one record per element to @p elements, in the order of the file. @p elements must be
    /// empty. A key whose child the file leaves out is left out of the record. False without a line
    /// in the log unless the document holds exactly one profile, wherever it stands.
    bool readElements(const QString &path, QList<ElementParam> &elements);

private:
    bool isValid(const QDomElement &element) const; ///< there is such an element
    bool parseBool(const QString &text) const;
    QColor parseColor(const QString &text) const; ///< invalid when @p text names no colour
    QColor defaultTextColor() const;
    QColor defaultBackgroundColor() const;
    void validateText(ElementParam &param) const;

    ElementParam parseStaticText(const QDomElement &element) const;
    ElementParam parseSystemText(const QDomElement &element) const;
    ElementParam parseInspText(const QDomElement &element) const;
    ElementParam parseImage(const QDomElement &element) const;
    ElementParam parseFreeText(const QDomElement &element) const;
    void parseGeneralSettings(ElementParam &param, QDomNode &element) const;

    struct Field;
    template <std::size_t Count>
    void readFields(const QDomElement &element, const Field (&fields)[Count],
                    ElementParam &param) const;
    QVariant fallbackOf(const Field &field) const; ///< invalid: nothing is stored
    QVariant valueOf(const Field &field, const QString &text) const;
    void appendRecord(QDomNode &node, QList<ElementParam> &elements) const;
};

} // namespace Velmar::VideoOverlay
