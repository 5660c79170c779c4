// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/database/CDomainObject.h"
#include "platform/platform_export.h"

#include <QObject>
#include <QSharedPointer>
#include <QString>

namespace Velmar {

/// What the operator is working on. A state is set first and announced after, so that a receiver
/// who asks gets the new one. Lives in the GUI thread.
class VELMAR_PLATFORM_EXPORT AppState : public QObject
{
    Q_OBJECT
public:
    /// Never null, and never destroyed while the library is in use.
    static AppState *instance();

    /// Null when no project is open.
    QSharedPointer<Velmar::Database::CDomainObject> getActiveProject() const;

    /// The active project is a simple one: pictures and videos without records. False without a
    /// project.
    bool isSimpleProjectActive() const;

Q_SIGNALS:
    /// Also emitted when a project was closed; @p project is null then.
    void activeProjectChanged(QSharedPointer<Velmar::Database::CDomainObject> project);
    /// Also emitted when an inspection ended; @p inspection is null then.
    void activeInspectionChanged(Velmar::Database::CDomainObjectPointer inspection);
    /// An observation was stored; it is complete.
    void observationCreated(Velmar::Database::CDomainObjectPointer observation);
    /// The template manager's cache holds the template of this catalog now.
    void templateLoadCompleted(const QString &uniqueId);

private:
    AppState();
    ~AppState() override;
};

} // namespace Velmar
