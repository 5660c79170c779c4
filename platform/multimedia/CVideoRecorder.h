// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/platform_export.h"

#include <QMetaType>
#include <QObject>

namespace Velmar::Multimedia {

/// The host's video recorder, as far as its state is concerned.
class VELMAR_PLATFORM_EXPORT CVideoRecorder
{
    Q_GADGET
public:
    /// The underlying type is fixed, so that a state of a newer host is a value like any other.
    enum State : int {
        Idle = 0,
        Starting = 1,
        Recording = 2,
        Stopping = 3,
        Failed = 4,
    };
    Q_ENUM(State)

    CVideoRecorder() = delete;
};

} // namespace Velmar::Multimedia
