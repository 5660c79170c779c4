// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

/// Marks what a host's platform library offers. Only that library itself defines
/// VELMAR_PLATFORM_LIBRARY; everybody else imports.
#if defined(VELMAR_PLATFORM_LIBRARY)
#define VELMAR_PLATFORM_EXPORT Q_DECL_EXPORT
#else
#define VELMAR_PLATFORM_EXPORT Q_DECL_IMPORT
#endif
