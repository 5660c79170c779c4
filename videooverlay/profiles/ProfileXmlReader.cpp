// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/profiles/ProfileXmlReader.h"

#include "videooverlay/Log_p.h"
#include "videooverlay/elements/CVideoOverlayElement.h"
#include "videooverlay/profiles/ReadXml_p.h"
#include "videooverlay/profiles/UnitNumbers_p.h"

#include <QDomDocument>
#include <QFile>
#include <QStringList>

#include <algorithm>

namespace Velmar::VideoOverlay {

namespace {

using Type = CVideoOverlayElement::Type;

constexpr int maximumFavoriteLines = 14;

QString profileTag()
{
    return QStringLiteral("PROFILE");
}

bool load(const QString &path, QDomDocument &document)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        log(LogLevel::Error, QStringLiteral("Cannot open osd xml settings file:") + path);
        return false;
    }
    QString message;
    if (readXml(file, document, &message))
        return true;
    log(LogLevel::Error, message);
    return false;
}

QString favoriteText(const QDomElement &favorite)
{
    QStringList lines;
    for (int number = 1; number <= maximumFavoriteLines; ++number) {
        const QDomElement line = favorite.firstChildElement(QStringLiteral("LINE%1").arg(number));
        if (!line.isNull())
            lines.append(line.text());
    }
    return lines.join(QLatin1Char('\n'));
}

QStringList favoriteTexts(const QDomElement &favorites)
{
    QStringList texts;
    for (QDomElement favorite = favorites.firstChildElement(); !favorite.isNull();
         favorite = favorite.nextSiblingElement())
        texts.append(favoriteText(favorite));
    return texts;
}

} // namespace

QString unitNumToString(const QString &number)
{
    const auto it = std::find_if(unitNumbers.cbegin(), unitNumbers.cend(), [&](const auto &unit) {
        return number == QLatin1String(unit.number);
    });
    return it == unitNumbers.cend() ? number : QString::fromUtf8(it->text);
}

/// A child element, and what becomes of its text. Where a default is given, a file without the
/// child stores that; everywhere else it stores nothing.
struct ProfileXmlReader::Field
{
    enum class Coding { Integer, Number, Boolean, String, Unit, TextColor, BackgroundColor };

    const char *tag;
    const char *key;
    Coding coding;
    const char *fallback = nullptr; ///< of a string
};

ProfileXmlReader::ProfileXmlReader(QObject *parent)
    : QObject(parent)
{
}

ProfileXmlReader::~ProfileXmlReader() = default;

bool ProfileXmlReader::readHeader(const QString &path, QHash<QString, QVariant> &header)
{
    QDomDocument document;
    if (!load(path, document))
        return false;
    // Null, and so without attributes, when the document is no profile.
    const QDomElement profile = document.firstChildElement(profileTag());
    header.insert(QStringLiteral("caption"), profile.attribute(QStringLiteral("name"), path));
    header.insert(QStringLiteral("readonly"),
                  profile.attribute(QStringLiteral("readonly"), QStringLiteral("false")));
    return true;
}

bool ProfileXmlReader::readElements(const QString &path, QList<ElementParam> &elements)
{
    if (!elements.isEmpty()) {
        log(LogLevel::Error,
            QStringLiteral("Profile setting storage should be empty before load data"));
        return false;
    }
    QDomDocument document;
    if (!load(path, document))
        return false;
    const QDomNodeList profiles = document.elementsByTagName(profileTag());
    if (profiles.size() != 1)
        return false;
    for (QDomNode node = profiles.at(0).firstChild(); !node.isNull(); node = node.nextSibling())
        appendRecord(node, elements);
    return true;
}

void ProfileXmlReader::appendRecord(QDomNode &node, QList<ElementParam> &elements) const
{
    struct Kind
    {
        const char *tag;
        Type type;
        ElementParam (ProfileXmlReader::*parse)(const QDomElement &) const;
    };
    static constexpr Kind kinds[] = {
        {"INSPTEXT", Type::InspText, &ProfileXmlReader::parseInspText},
        {"INSPSTATICTEXT", Type::InspStaticText, &ProfileXmlReader::parseInspText},
        {"IMAGE", Type::FreePicture, &ProfileXmlReader::parseImage},
        {"STATICTEXT", Type::StaticText, &ProfileXmlReader::parseStaticText},
        {"SYSTEMTEXT", Type::SystemText, &ProfileXmlReader::parseSystemText},
        {"FREETEXT", Type::FreeText, &ProfileXmlReader::parseFreeText},
    };
    const QDomElement element = node.toElement(); // a processing instruction has a name, too
    for (const Kind &kind : kinds) {
        if (element.tagName() != QLatin1String(kind.tag))
            continue;
        ElementParam param = (this->*kind.parse)(element);
        param.insert(QStringLiteral("type"), int(kind.type));
        elements.append(param);
        return;
    }
    if (element.tagName() == QLatin1String("GENERAL")) {
        ElementParam param = ElementParam::createGeneralSettingsDefault();
        parseGeneralSettings(param, node);
        elements.append(param);
    }
}

bool ProfileXmlReader::isValid(const QDomElement &element) const
{
    return !element.isNull();
}

bool ProfileXmlReader::parseBool(const QString &text) const
{
    return QVariant(text).toBool();
}

QColor ProfileXmlReader::parseColor(const QString &text) const
{
    return QColor(text);
}

QColor ProfileXmlReader::defaultTextColor() const
{
    return QColor(QStringLiteral("#FFFFFF"));
}

QColor ProfileXmlReader::defaultBackgroundColor() const
{
    return QColor(QStringLiteral("#0000FF"));
}

/// A text is bound to a column, to an empty name, or has no such entry; nothing is refused.
void ProfileXmlReader::validateText(ElementParam &param) const
{
    if (param.value(ElementParam::NAME_COLUMNBOUND).isNull())
        param.remove(ElementParam::NAME_COLUMNBOUND);
}

ElementParam ProfileXmlReader::parseStaticText(const QDomElement &element) const
{
    using Coding = Field::Coding;
    static constexpr Field fields[] = {
        {"STATIC_ID", "staticId", Coding::Integer},
        {"CANDELETE", "canDelete", Coding::Boolean},
        {"TEXT", "text", Coding::String},
        {"ROW", "row", Coding::Integer},
        {"COL", "col", Coding::Integer},
        {"BGCOLOR", "backgroundColor", Coding::BackgroundColor},
        {"FGCOLOR", "textColor", Coding::TextColor},
        {"VISIBLE", "enabled", Coding::Boolean},
        {"COL_Bound_Column", "columnBound", Coding::String},
        {"CAPTION", "caption", Coding::String},
    };
    ElementParam param;
    readFields(element, fields, param);
    validateText(param);
    return param;
}

ElementParam ProfileXmlReader::parseSystemText(const QDomElement &element) const
{
    using Coding = Field::Coding;
    static constexpr Field fields[] = {
        {"COL_Bound_Column", "columnBound", Coding::String},
        {"CAPTION", "columnCaption", Coding::String},
        {"ROW", "row", Coding::Integer},
        {"COL", "col", Coding::Integer},
        {"BGCOLOR", "backgroundColor", Coding::BackgroundColor},
        {"FGCOLOR", "textColor", Coding::TextColor},
        {"VISIBLE", "enabled", Coding::Boolean},
        {"SOURCE", "textDatasource", Coding::String, "DB"},
        {"SHOWCAPTION", "captionEnabled", Coding::Boolean},
        {"UNIT", "unit", Coding::Unit},
        {"WIDTH", "max_width", Coding::Integer},
        {"HEIGHT", "max_height", Coding::Integer},
        {"ALIGN", "align", Coding::String, "LEFT"},
    };
    ElementParam param;
    readFields(element, fields, param);
    validateText(param);
    return param;
}

ElementParam ProfileXmlReader::parseInspText(const QDomElement &element) const
{
    using Coding = Field::Coding;
    static constexpr Field fields[] = {
        {"COL_Bound_Column", "columnBound", Coding::String},
        {"TDIR_Key", "TDIR_Key", Coding::String},
        {"CAPTION", "columnCaption", Coding::String},
        {"ROW", "row", Coding::Integer},
        {"COL", "col", Coding::Integer},
        {"BGCOLOR", "backgroundColor", Coding::BackgroundColor},
        {"FGCOLOR", "textColor", Coding::TextColor},
        {"VISIBLE", "enabled", Coding::Boolean},
        {"SOURCE", "textDatasource", Coding::String, "DB"},
        {"WIDTH", "max_width", Coding::Integer},
        {"HEIGHT", "max_height", Coding::Integer},
        {"TIMEOUT", "timeout", Coding::Integer},
        {"SHOWCAPTION", "captionEnabled", Coding::Boolean},
    };
    ElementParam param;
    readFields(element, fields, param);
    validateText(param);
    return param;
}

ElementParam ProfileXmlReader::parseImage(const QDomElement &element) const
{
    using Coding = Field::Coding;
    static constexpr Field fields[] = {
        {"ROW", "row", Coding::Integer},         {"COL", "col", Coding::Integer},
        {"VISIBLE", "enabled", Coding::Boolean}, {"PATH", "imagePath", Coding::String},
        {"SCALE", "scale", Coding::Number},      {"SCREENSNIP", "screenSnip", Coding::Boolean},
        {"CAPTION", "caption", Coding::String},
    };
    ElementParam param;
    readFields(element, fields, param);
    return param;
}

ElementParam ProfileXmlReader::parseFreeText(const QDomElement &element) const
{
    using Coding = Field::Coding;
    static constexpr Field fields[] = {
        {"ROW", "row", Coding::Integer},
        {"COL", "col", Coding::Integer},
        {"BGCOLOR", "backgroundColor", Coding::BackgroundColor},
        {"FGCOLOR", "textColor", Coding::TextColor},
        {"VISIBLE", "enabled", Coding::Boolean},
        {"WIDTH", "max_width", Coding::Integer},
        {"HEIGHT", "max_height", Coding::Integer},
        {"TIMEOUT", "timeout", Coding::Integer},
        {"DEFAULT_LINE_NUMBER", "maxLineNumber", Coding::Integer},
    };
    ElementParam param;
    readFields(element, fields, param);
    const QDomElement favorites = element.firstChildElement(QStringLiteral("FAVORITES"));
    if (isValid(favorites))
        param.insert(QStringLiteral("favorites"), favoriteTexts(favorites));
    // A box starts without a caption and with a text that stands for "nothing typed yet".
    param.insert(ElementParam::NAME_COLUMNCAPTION, QString(QLatin1String("")));
    param.insert(QStringLiteral("captionEnabled"), false);
    param.insert(QStringLiteral("text"), QStringLiteral("null"));
    return param;
}

void ProfileXmlReader::parseGeneralSettings(ElementParam &param, QDomNode &element) const
{
    using Coding = Field::Coding;
    static constexpr Field fields[] = {
        {"GLOBAL_TRANSPARENCY", "globalTransparency", Coding::Integer},
        {"ANALOG_VIDEO", "analogVideo", Coding::Boolean},
        {"KX70II_STATE", "kx70ii_state", Coding::Boolean},
        // Crossed on purpose; the writer does not cross them.
        {"KX70II_RowPercent", "kx70ii_col", Coding::Integer},
        {"KX70II_ColPercent", "kx70ii_row", Coding::Integer},
        {"KX70II_Units", "kx70ii_units", Coding::String},
    };
    readFields(element.toElement(), fields, param);
}

template <std::size_t Count>
void ProfileXmlReader::readFields(const QDomElement &element, const Field (&fields)[Count],
                                  ElementParam &param) const
{
    for (const Field &field : fields) {
        const QDomElement child = element.firstChildElement(QLatin1String(field.tag));
        const QVariant value = isValid(child) ? valueOf(field, child.text()) : fallbackOf(field);
        if (value.isValid())
            param.insert(QLatin1String(field.key), value);
    }
}

QVariant ProfileXmlReader::fallbackOf(const Field &field) const
{
    switch (field.coding) {
    case Field::Coding::TextColor:
        return defaultTextColor();
    case Field::Coding::BackgroundColor:
        return defaultBackgroundColor();
    default:
        return field.fallback ? QVariant(QLatin1String(field.fallback)) : QVariant();
    }
}

QVariant ProfileXmlReader::valueOf(const Field &field, const QString &text) const
{
    switch (field.coding) {
    case Field::Coding::Integer:
        return text.toInt(nullptr, 10); // a variant's own conversion would overflow silently
    case Field::Coding::Number:
        return text.toDouble();
    case Field::Coding::Boolean:
        return parseBool(text);
    case Field::Coding::Unit:
        return unitNumToString(text);
    case Field::Coding::TextColor:
    case Field::Coding::BackgroundColor:
        return parseColor(text);
    case Field::Coding::String:
        break;
    }
    return text;
}

} // namespace Velmar::VideoOverlay
