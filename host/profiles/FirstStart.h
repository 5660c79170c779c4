// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace Velmar::Host {

/// Brings the shipped profiles into the settings directory, where the library looks for profiles:
/// each one once, so that what the operator changed, renamed or removed stays so, and a start that
/// was interrupted is completed by the next. Only the default one is put back when it is missing,
/// and when it cannot be read or has lost its name; then what was there is kept beside it, as
/// ".damaged". Pictures that a shipped profile names relative to itself are copied into the
/// settings directory, too, and the copy of the profile names them there. False, and a text in @p
/// error, when something cannot be read or written.
bool prepareProfiles(const QString &shippedDirectory, QString *error);

} // namespace Velmar::Host
