// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/inspection/ProjectSession.h"

#include <QHash>
#include <QString>

#include <optional>

namespace Velmar::Host {

/// The columns of a run that describe an observation. They come one by one, in any order.
class ObservationColumns
{
public:
    static bool isOne(const QString &name);

    void add(const QString &name, const QString &value);
    /// Code, text and remark of what came since the last call; nothing when no code did.
    std::optional<ProjectSession::Observation> take();

private:
    QHash<QString, QString> m_values; ///< by column
};

} // namespace Velmar::Host
