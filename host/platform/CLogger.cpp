// SPDX-License-Identifier: Apache-2.0
#include "platform/logging/CLogger.h"

#include "host/platform/LogRouter.h"

namespace Velmar::Logging {

void CLogger::logMessage(LogLevel level, const QString &category, const QString &message)
{
    LogRouter::instance().write({level, category, message});
}

} // namespace Velmar::Logging
