// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/profiles/ProfileXmlWriter.h"

#include "videooverlay/Log_p.h"
#include "videooverlay/elements/ElementType_p.h"
#include "videooverlay/profiles/ReplaceFile_p.h"
#include "videooverlay/profiles/UnitNumbers_p.h"

#include <QStringList>
#include <QXmlStreamWriter>

#include <algorithm>
#include <limits>

namespace Velmar::VideoOverlay {

namespace {

using Type = CVideoOverlayElement::Type;

/// 0 for what is no integer; the variant alone would wrap a number that is too large.
int integerOf(const QVariant &value)
{
    const double number = value.toDouble();
    const bool fits
        = number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
    return fits ? value.toInt() : 0;
}

/// Writes the children of one record's element.
class RecordWriter
{
public:
    RecordWriter(QXmlStreamWriter &writer, const ElementParam &param)
        : m_writer(writer)
        , m_param(param)
    {
    }

    bool has(const char *key) const { return m_param.contains(QLatin1String(key)); }
    QVariant value(const char *key) const { return m_param.value(QLatin1String(key)); }

    void integer(const char *tag, const char *key) { write(tag, integerOf(value(key))); }
    void number(const char *tag, const char *key) { write(tag, value(key).toDouble()); }
    void boolean(const char *tag, const char *key) { write(tag, value(key).toBool()); }
    void string(const char *tag, const char *key) { write(tag, value(key).toString()); }
    void color(const char *tag, const char *key) { write(tag, value(key).value<QColor>()); }

    template <typename Value> void write(const char *tag, const Value &value)
    {
        ProfileXmlWriter::createTextElement(m_writer, QLatin1String(tag), value);
    }

private:
    QXmlStreamWriter &m_writer;
    const ElementParam &m_param;
};

void writePlace(RecordWriter &record)
{
    record.integer("COL", "col");
    record.integer("ROW", "row");
}

void writeColors(RecordWriter &record)
{
    record.color("FGCOLOR", "textColor");
    record.color("BGCOLOR", "backgroundColor");
}

void writeSize(RecordWriter &record)
{
    record.integer("HEIGHT", "max_height");
    record.integer("WIDTH", "max_width");
}

/// Lines have no upper number here, though the reader takes 14 at most.
void writeFavorites(QXmlStreamWriter &writer, const QStringList &favorites)
{
    writer.writeStartElement(QStringLiteral("FAVORITES"));
    for (const QString &favorite : favorites) {
        writer.writeStartElement(QStringLiteral("TEXT"));
        int number = 0;
        for (const QString &line : favorite.split(QLatin1Char('\n')))
            ProfileXmlWriter::createTextElement(writer, QStringLiteral("LINE%1").arg(++number),
                                                line);
        writer.writeEndElement();
    }
    writer.writeEndElement();
}

} // namespace

QString unitStringToNum(const QString &text)
{
    const auto it = std::find_if(unitNumbers.cbegin(), unitNumbers.cend(), [&](const auto &unit) {
        return text == QString::fromUtf8(unit.text);
    });
    return it == unitNumbers.cend() ? text : QString(QLatin1String(it->number));
}

ProfileXmlWriter::ProfileXmlWriter(QObject *parent)
    : QObject(parent)
{
}

ProfileXmlWriter::~ProfileXmlWriter() = default;

bool ProfileXmlWriter::writeElements(const QString &path, const QList<ElementParam> &elements)
{
    QString text;
    // Over a string: over bytes, half a surrogate pair would cost every element after it. A string
    // has no encoding of its own, so that the declaration is spelled out.
    QXmlStreamWriter writer(&text);
    writer.writeProcessingInstruction(QStringLiteral("xml"),
                                      QStringLiteral("version=\"1.0\" encoding=\"UTF-8\""));
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(4);
    writer.writeStartElement(QStringLiteral("PROFILE"));
    // Constant: a saved profile may be changed, and its file's name is its name.
    writer.writeAttribute(QStringLiteral("readonly"), QStringLiteral("false"));
    writer.writeAttribute(QStringLiteral("name"), QLatin1String(""));
    for (const ElementParam &param : elements)
        writeRecord(writer, param);
    writer.writeEndElement();
    writer.writeEndDocument();
    // The stream writer's error is not asked: it only tells that a control character was left out.
    if (replaceFile(path, text))
        return true;
    log(LogLevel::Error, QStringLiteral("Cannot open profile file for save:") + path);
    return false;
}

void ProfileXmlWriter::writeRecord(QXmlStreamWriter &writer, const ElementParam &param) const
{
    switch (typeOf(param)) {
    case Type::StaticText:
        return prepareStaticText(writer, param);
    case Type::SystemText:
        return prepareSystemText(writer, param);
    case Type::FreePicture:
        return prepareFreePicture(writer, param);
    case Type::InspText:
        return prepareInspText(writer, param);
    case Type::FreeText:
        return prepareFreeText(writer, param);
    case Type::InspStaticText:
        return prepareInspStaticText(writer, param);
    case Type::Invalid: // the general settings go by that type
        return prepareGeneralSettings(writer, param);
    case Type::Watermark:
        return;
    }
}

void ProfileXmlWriter::prepareStaticText(QXmlStreamWriter &writer, const ElementParam &param) const
{
    RecordWriter record(writer, param);
    writer.writeStartElement(QStringLiteral("STATICTEXT"));
    if (record.value("columnBound").toString().isEmpty()) // else the column tells the text
        record.string("TEXT", "text");
    writePlace(record);
    writeColors(record);
    record.boolean("VISIBLE", "enabled");
    if (record.has("columnBound"))
        record.string("COL_Bound_Column", "columnBound");
    if (record.has("caption"))
        record.string("CAPTION", "caption");
    if (record.has("canDelete"))
        record.boolean("CANDELETE", "canDelete");
    if (record.has("staticId"))
        record.integer("STATIC_ID", "staticId");
    writer.writeEndElement();
}

/// The caption is read, but never written: it is looked up in the user's language.
void ProfileXmlWriter::prepareSystemText(QXmlStreamWriter &writer, const ElementParam &param) const
{
    RecordWriter record(writer, param);
    writer.writeStartElement(QStringLiteral("SYSTEMTEXT"));
    writePlace(record);
    writeColors(record);
    record.boolean("VISIBLE", "enabled");
    record.boolean("SHOWCAPTION", "captionEnabled");
    record.write("UNIT", unitStringToNum(record.value("unit").toString()));
    record.string("SOURCE", "textDatasource");
    record.string("COL_Bound_Column", "columnBound");
    writeSize(record);
    record.string("ALIGN", "align");
    writer.writeEndElement();
}

void ProfileXmlWriter::prepareFreePicture(QXmlStreamWriter &writer, const ElementParam &param) const
{
    RecordWriter record(writer, param);
    writer.writeStartElement(QStringLiteral("IMAGE"));
    writePlace(record);
    record.boolean("VISIBLE", "enabled");
    record.number("SCALE", "scale");
    record.string("PATH", "imagePath");
    record.boolean("SCREENSNIP", "screenSnip");
    record.string("CAPTION", "caption");
    writer.writeEndElement();
}

void ProfileXmlWriter::prepareInspText(QXmlStreamWriter &writer, const ElementParam &param) const
{
    writeInspText(writer, QStringLiteral("INSPTEXT"), Timeout::Written, param);
}

/// The timeout is read, but never written.
void ProfileXmlWriter::prepareInspStaticText(QXmlStreamWriter &writer,
                                             const ElementParam &param) const
{
    writeInspText(writer, QStringLiteral("INSPSTATICTEXT"), Timeout::LeftOut, param);
}

void ProfileXmlWriter::writeInspText(QXmlStreamWriter &writer, const QString &tag, Timeout timeout,
                                     const ElementParam &param) const
{
    RecordWriter record(writer, param);
    writer.writeStartElement(tag);
    record.string("COL_Bound_Column", "columnBound");
    record.string("TDIR_Key", "TDIR_Key");
    record.string("SOURCE", "textDatasource");
    if (timeout == Timeout::Written)
        record.integer("TIMEOUT", "timeout");
    writePlace(record);
    writeColors(record);
    record.boolean("VISIBLE", "enabled");
    record.boolean("SHOWCAPTION", "captionEnabled");
    writeSize(record);
    writer.writeEndElement();
}

/// Caption and text are the reader's own and stand in no file.
void ProfileXmlWriter::prepareFreeText(QXmlStreamWriter &writer, const ElementParam &param) const
{
    RecordWriter record(writer, param);
    writer.writeStartElement(QStringLiteral("FREETEXT"));
    writePlace(record);
    writeColors(record);
    record.boolean("VISIBLE", "enabled");
    writeSize(record);
    record.integer("TIMEOUT", "timeout");
    record.integer("DEFAULT_LINE_NUMBER", "maxLineNumber");
    writeFavorites(writer, record.value("favorites").toStringList());
    writer.writeEndElement();
}

void ProfileXmlWriter::prepareGeneralSettings(QXmlStreamWriter &writer,
                                              const ElementParam &param) const
{
    RecordWriter record(writer, param);
    writer.writeStartElement(QStringLiteral("GENERAL"));
    record.integer("GLOBAL_TRANSPARENCY", "globalTransparency");
    record.boolean("ANALOG_VIDEO", "analogVideo");
    record.boolean("KX70II_STATE", "kx70ii_state");
    // The reader crosses these two on purpose.
    record.integer("KX70II_RowPercent", "kx70ii_row");
    record.integer("KX70II_ColPercent", "kx70ii_col");
    record.string("KX70II_Units", "kx70ii_units");
    writer.writeEndElement();
}

void ProfileXmlWriter::createTextElement(QXmlStreamWriter &writer, const QString &tag,
                                         const QString &value)
{
    writer.writeTextElement(tag, value);
}

void ProfileXmlWriter::createTextElement(QXmlStreamWriter &writer, const QString &tag, int value)
{
    createTextElement(writer, tag, QString::number(value, 10));
}

void ProfileXmlWriter::createTextElement(QXmlStreamWriter &writer, const QString &tag, bool value)
{
    createTextElement(writer, tag, value ? QStringLiteral("true") : QStringLiteral("false"));
}

void ProfileXmlWriter::createTextElement(QXmlStreamWriter &writer, const QString &tag,
                                         const QColor &value)
{
    createTextElement(writer, tag, value.name(QColor::HexArgb));
}

void ProfileXmlWriter::createTextElement(QXmlStreamWriter &writer, const QString &tag, double value)
{
    createTextElement(writer, tag, QString::number(value, 'g', 6));
}

} // namespace Velmar::VideoOverlay
