// SPDX-License-Identifier: Apache-2.0
#include "platform/appstate/AppState.h"

#include "host/platform/AppStateControl.h"

namespace Velmar {

namespace {

/// Never destroyed, like AppState itself: records must be released by whoever set them.
struct State
{
    Database::CDomainObjectPointer project;
    AppStateControl::ProjectKind kind = AppStateControl::ProjectKind::Full;
    Database::CDomainObjectPointer inspection;
};

State &state()
{
    static auto *const theState = new State;
    return *theState;
}

} // namespace

AppState::AppState()
{
    // One of the signals spells the type out; by name the meta-type system knows only the alias.
    qRegisterMetaType<Database::CDomainObjectPointer>(
        "QSharedPointer<Velmar::Database::CDomainObject>");
}

AppState::~AppState() = default;

AppState *AppState::instance()
{
    // Never destroyed: what is connected to it may outlive every static object.
    static auto *const theInstance = new AppState;
    return theInstance;
}

QSharedPointer<Database::CDomainObject> AppState::getActiveProject() const
{
    return state().project;
}

bool AppState::isSimpleProjectActive() const
{
    return state().project && state().kind == AppStateControl::ProjectKind::Simple;
}

void AppStateControl::setActiveProject(const Database::CDomainObjectPointer &project,
                                       ProjectKind kind)
{
    state().project = project;
    state().kind = kind;
    Q_EMIT AppState::instance()->activeProjectChanged(project);
}

void AppStateControl::setActiveInspection(const Database::CDomainObjectPointer &inspection)
{
    state().inspection = inspection;
    Q_EMIT AppState::instance()->activeInspectionChanged(inspection);
}

Database::CDomainObjectPointer AppStateControl::activeInspection()
{
    return state().inspection;
}

void AppStateControl::announceObservation(const Database::CDomainObjectPointer &observation)
{
    Q_EMIT AppState::instance()->observationCreated(observation);
}

void AppStateControl::announceTemplate(const QString &uniqueId)
{
    Q_EMIT AppState::instance()->templateLoadCompleted(uniqueId);
}

} // namespace Velmar
