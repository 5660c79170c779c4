// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/platform/CatalogDescriptor.h"
#include "host/platform/JsonNode.h"

#include <QByteArray>
#include <QSharedPointer>
#include <QString>
#include <QStringList>

#include <memory>

namespace Velmar::Templates {
class CatalogTemplate;
}

namespace Velmar::CATManagement {

/// Reads one catalog file; data/catalogs/README.md describes the format. Nothing of a faulty part
/// is taken.
class CatalogFile
{
public:
    /// Reads the file, which may have up to 16 MiB.
    explicit CatalogFile(const QString &path);

    /// Null when the head is faulty.
    std::unique_ptr<CatalogDescriptor> descriptor();

    /// Null when anything but the head is faulty.
    QSharedPointer<Templates::CatalogTemplate> catalogTemplate();

    /// What was found wrong so far, each "path:line:column: reason", or "path: reason" for what
    /// has no place in the text. Long lists are cut.
    const QStringList &problems() const { return m_problems; }

private:
    class TemplateReader;

    void report(const JsonNode &at, const QString &reason);
    void report(const QString &place, const QString &reason);

    /// A text that must be there and not be empty; else empty, and reported.
    QString text(const JsonNode &object, const QString &member);
    /// The same for @p length upper-case letters.
    QString code(const JsonNode &object, const QString &member, int length);

    QString m_path;
    QByteArray m_json;
    JsonNode m_root; ///< undefined when the file could not be read
    QStringList m_problems;
    int m_faultCount = 0; ///< listed or not
};

} // namespace Velmar::CATManagement
