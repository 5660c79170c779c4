// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace Velmar::Host {

/// Brings the shipped profiles into the settings directory, where the library looks for profiles:
/// all of them when there is no profile directory yet, later only the default one, should it be
/// missing. What the operator changed or removed stays so. Pictures that a shipped profile names
/// relative to itself are copied into the settings directory, too, and the copy of the profile
/// names them there. False, and a text in @p error, when something cannot be written.
bool prepareProfiles(const QString &shippedDirectory, QString *error);

} // namespace Velmar::Host
