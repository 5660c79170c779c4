// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/catmanagement/CCatalogDescriptor.h"

#include <utility>

namespace Velmar::CATManagement {

/// The head of a catalog file.
class CatalogDescriptor final : public CCatalogDescriptor
{
public:
    CatalogDescriptor(Base::GUID uniqueId, QString name, QString languageCode, QString countryCode)
        : m_uniqueId(std::move(uniqueId))
        , m_name(std::move(name))
        , m_languageCode(std::move(languageCode))
        , m_countryCode(std::move(countryCode))
    {
    }

    Base::GUID uniqueId() const override { return m_uniqueId; }
    QString name() const { return m_name; } ///< for people, in the catalog's language
    QString languageCode() const override { return m_languageCode; }
    QString countryCode() const override { return m_countryCode; }

private:
    Base::GUID m_uniqueId;
    QString m_name;
    QString m_languageCode;
    QString m_countryCode;
};

} // namespace Velmar::CATManagement
