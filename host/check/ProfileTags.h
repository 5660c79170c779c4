// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <videooverlay/elements/ElementParam.h>

#include <QString>

#include <vector>

namespace Velmar::Host {

struct MarkupNode;

/// A value of an element of profile files: its tag, how its text is to be read, and the key that
/// the record has it under.
struct ProfileTag
{
    enum class Coding {
        Text,
        Integer,
        Number,
        Switch,
        Color,
        Unit,
        List,
    };

    const char *name;
    Coding coding;
    const char *key;
};

/// A kind of element of profile files.
struct ProfileKind
{
    const char *name;
    int type; ///< of the record
    std::vector<ProfileTag> tags;

    static const ProfileKind *find(const QString &name); ///< null for any other element

    const ProfileTag *tag(const QString &name) const; ///< null for a tag that it has not
    const char *tagOf(const QString &key) const;      ///< empty for a key that it has not

    /// What the library reads from @p element, without its colours and favourites.
    VideoOverlay::ElementParam record(const MarkupNode &element) const;
};

} // namespace Velmar::Host
