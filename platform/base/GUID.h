// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace Velmar::Base {

/// Identifies templates and catalogs. An alias, so that a signature can say what a text stands for.
using GUID = QString;

} // namespace Velmar::Base
