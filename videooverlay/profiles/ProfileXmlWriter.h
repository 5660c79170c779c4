// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/elements/ElementParam.h"
#include "videooverlay/xqvideooverlay_export.h"

#include <QColor>
#include <QList>
#include <QObject>
#include <QString>

class QXmlStreamWriter;

namespace Velmar::VideoOverlay {

/// The number under which profile files store the unit shown as @p text ("m/s" gives "1"). What is
/// no such unit is returned unchanged.
XQVIDEOOVERLAY_EXPORT QString unitStringToNum(const QString &text);

/// Writes profile files: the format of ProfileXmlReader, always writable and without a name, since
/// a saved profile is named by its file.
class XQVIDEOOVERLAY_EXPORT ProfileXmlWriter : public QObject
{
    Q_OBJECT

public:
    /// Has no state; one may write many files.
    explicit ProfileXmlWriter(QObject *parent = nullptr);
    ~ProfileXmlWriter() override;

    /// Replaces the file at @p path. Records of a kind that profiles do not hold are left out; a
    /// value that does not convert is written as the empty value of its type. False, and a line in
    /// the log, when the file could not be written; it is then as it was before.
    bool writeElements(const QString &path, const QList<ElementParam> &elements);

    /// @name Each writes one child element with this value as its text
    /// @{
    static void createTextElement(QXmlStreamWriter &writer, const QString &tag,
                                  const QString &value); ///< as it is
    /// In decimal digits.
    static void createTextElement(QXmlStreamWriter &writer, const QString &tag, int value);
    /// As "true" or "false".
    static void createTextElement(QXmlStreamWriter &writer, const QString &tag, bool value);
    static void createTextElement(QXmlStreamWriter &writer, const QString &tag,
                                  const QColor &value); ///< as \#aarrggbb
    static void createTextElement(QXmlStreamWriter &writer, const QString &tag,
                                  double value); ///< with 6 significant digits
    /// A literal would be written as a truth value.
    static void createTextElement(QXmlStreamWriter &writer, const QString &tag, const char *value)
        = delete;
    /// @}

private:
    void prepareStaticText(QXmlStreamWriter &writer, const ElementParam &param) const;
    void prepareSystemText(QXmlStreamWriter &writer, const ElementParam &param) const;
    void prepareFreePicture(QXmlStreamWriter &writer, const ElementParam &param) const;
    void prepareInspText(QXmlStreamWriter &writer, const ElementParam &param) const;
    void prepareInspStaticText(QXmlStreamWriter &writer, const ElementParam &param) const;
    void prepareFreeText(QXmlStreamWriter &writer, const ElementParam &param) const;
    void prepareGeneralSettings(QXmlStreamWriter &writer, const ElementParam &param) const;

    enum class Timeout { Written, LeftOut };
    void writeInspText(QXmlStreamWriter &writer, const QString &tag, Timeout timeout,
                       const ElementParam &param) const;
    void writeRecord(QXmlStreamWriter &writer, const ElementParam &param) const;
};

} // namespace Velmar::VideoOverlay
