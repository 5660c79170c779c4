// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/appstate/AppState.h"
#include "platform/platform_export.h"

namespace Velmar {

/// How the host's own code changes what AppState answers and announces. Every operation stores
/// first and emits after, always exactly once. GUI thread only.
class VELMAR_PLATFORM_EXPORT AppStateControl
{
public:
    enum class ProjectKind {
        Full,
        Simple, ///< pictures and videos without records
    };

    /// Opens, switches or, with null, closes the project. Announce the inspection null before.
    static void setActiveProject(const Database::CDomainObjectPointer &project,
                                 ProjectKind kind = ProjectKind::Full);
    static void setActiveInspection(const Database::CDomainObjectPointer &inspection);
    static Database::CDomainObjectPointer activeInspection();
    static void announceObservation(const Database::CDomainObjectPointer &observation);
    static void announceTemplate(const QString &uniqueId);

    AppStateControl() = delete;
};

} // namespace Velmar
