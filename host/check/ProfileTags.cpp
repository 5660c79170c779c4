// SPDX-License-Identifier: Apache-2.0
#include "host/check/ProfileTags.h"

#include "host/check/MarkupTree.h"

#include <videooverlay/elements/CVideoOverlayElement.h>
#include <videooverlay/profiles/ProfileXmlReader.h>

#include <QVariant>

#include <algorithm>

namespace Velmar::Host {

using VideoOverlay::CVideoOverlayElement;
using VideoOverlay::ElementParam;
using Coding = ProfileTag::Coding;

namespace {

std::vector<ProfileTag> inspectionTags()
{
    return {
        {"COL_Bound_Column", Coding::Text, "columnBound"},
        {"TDIR_Key", Coding::Text, "TDIR_Key"},
        {"CAPTION", Coding::Text, "columnCaption"},
        {"ROW", Coding::Integer, "row"},
        {"COL", Coding::Integer, "col"},
        {"BGCOLOR", Coding::Color, "backgroundColor"},
        {"FGCOLOR", Coding::Color, "textColor"},
        {"VISIBLE", Coding::Switch, "enabled"},
        {"SOURCE", Coding::Text, "textDatasource"},
        {"WIDTH", Coding::Integer, "max_width"},
        {"HEIGHT", Coding::Integer, "max_height"},
        {"TIMEOUT", Coding::Integer, "timeout"},
        {"SHOWCAPTION", Coding::Switch, "captionEnabled"},
    };
}

const std::vector<ProfileKind> &kinds()
{
    static const std::vector<ProfileKind> all {
        {"STATICTEXT",
         CVideoOverlayElement::StaticText,
         {{"STATIC_ID", Coding::Integer, "staticId"},
          {"CANDELETE", Coding::Switch, "canDelete"},
          {"TEXT", Coding::Text, "text"},
          {"ROW", Coding::Integer, "row"},
          {"COL", Coding::Integer, "col"},
          {"BGCOLOR", Coding::Color, "backgroundColor"},
          {"FGCOLOR", Coding::Color, "textColor"},
          {"VISIBLE", Coding::Switch, "enabled"},
          {"COL_Bound_Column", Coding::Text, "columnBound"},
          {"CAPTION", Coding::Text, "caption"}}},
        {"SYSTEMTEXT",
         CVideoOverlayElement::SystemText,
         {{"COL_Bound_Column", Coding::Text, "columnBound"},
          {"CAPTION", Coding::Text, "columnCaption"},
          {"ROW", Coding::Integer, "row"},
          {"COL", Coding::Integer, "col"},
          {"BGCOLOR", Coding::Color, "backgroundColor"},
          {"FGCOLOR", Coding::Color, "textColor"},
          {"VISIBLE", Coding::Switch, "enabled"},
          {"SOURCE", Coding::Text, "textDatasource"},
          {"SHOWCAPTION", Coding::Switch, "captionEnabled"},
          {"UNIT", Coding::Unit, "unit"},
          {"WIDTH", Coding::Integer, "max_width"},
          {"HEIGHT", Coding::Integer, "max_height"},
          {"ALIGN", Coding::Text, "align"}}},
        {"INSPTEXT", CVideoOverlayElement::InspText, inspectionTags()},
        {"INSPSTATICTEXT", CVideoOverlayElement::InspStaticText, inspectionTags()},
        {"IMAGE",
         CVideoOverlayElement::FreePicture,
         {{"ROW", Coding::Integer, "row"},
          {"COL", Coding::Integer, "col"},
          {"VISIBLE", Coding::Switch, "enabled"},
          {"PATH", Coding::Text, "imagePath"},
          {"SCALE", Coding::Number, "scale"},
          {"SCREENSNIP", Coding::Switch, "screenSnip"},
          {"CAPTION", Coding::Text, "caption"}}},
        {"FREETEXT",
         CVideoOverlayElement::FreeText,
         {{"ROW", Coding::Integer, "row"},
          {"COL", Coding::Integer, "col"},
          {"BGCOLOR", Coding::Color, "backgroundColor"},
          {"FGCOLOR", Coding::Color, "textColor"},
          {"VISIBLE", Coding::Switch, "enabled"},
          {"WIDTH", Coding::Integer, "max_width"},
          {"HEIGHT", Coding::Integer, "max_height"},
          {"TIMEOUT", Coding::Integer, "timeout"},
          {"DEFAULT_LINE_NUMBER", Coding::Integer, "maxLineNumber"},
          {"FAVORITES", Coding::List, "favorites"}}},
        {"GENERAL",
         CVideoOverlayElement::Invalid,
         {{"GLOBAL_TRANSPARENCY", Coding::Integer, "globalTransparency"},
          {"ANALOG_VIDEO", Coding::Switch, "analogVideo"},
          {"KX70II_STATE", Coding::Switch, "kx70ii_state"},
          // Crossed when read, as the library does it.
          {"KX70II_RowPercent", Coding::Integer, "kx70ii_col"},
          {"KX70II_ColPercent", Coding::Integer, "kx70ii_row"},
          {"KX70II_Units", Coding::Text, "kx70ii_units"}}},
    };
    return all;
}

QVariant valueOf(const ProfileTag &tag, const QString &text)
{
    switch (tag.coding) {
    case Coding::Integer:
        return text.toInt();
    case Coding::Number:
        return text.toDouble();
    case Coding::Switch:
        return QVariant(text).toBool();
    case Coding::Unit:
        return VideoOverlay::unitNumToString(text);
    case Coding::Text:
        return text;
    case Coding::Color:
    case Coding::List:
        break;
    }
    return {};
}

} // namespace

const ProfileKind *ProfileKind::find(const QString &name)
{
    const auto &all = kinds();
    const auto found = std::find_if(all.cbegin(), all.cend(), [&](const ProfileKind &kind) {
        return name == QLatin1String(kind.name);
    });
    return found == all.cend() ? nullptr : &*found;
}

const ProfileTag *ProfileKind::tag(const QString &tagName) const
{
    const auto found = std::find_if(tags.cbegin(), tags.cend(), [&](const ProfileTag &tag) {
        return tagName == QLatin1String(tag.name);
    });
    return found == tags.cend() ? nullptr : &*found;
}

const char *ProfileKind::tagOf(const QString &key) const
{
    const auto found = std::find_if(tags.cbegin(), tags.cend(), [&](const ProfileTag &tag) {
        return key == QLatin1String(tag.key);
    });
    return found == tags.cend() ? "" : found->name;
}

ElementParam ProfileKind::record(const MarkupNode &element) const
{
    ElementParam record;
    record.insert(QStringLiteral("type"), type);
    for (const ProfileTag &tag : tags) {
        if (const MarkupNode *child = element.child(QString::fromLatin1(tag.name)))
            record.insert(QString::fromLatin1(tag.key), valueOf(tag, child->text));
        else if (qstrcmp(tag.key, "textDatasource") == 0)
            record.insert(QString::fromLatin1(tag.key), QStringLiteral("DB"));
    }
    return record;
}

} // namespace Velmar::Host
