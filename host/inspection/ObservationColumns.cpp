// SPDX-License-Identifier: Apache-2.0
#include "host/inspection/ObservationColumns.h"

#include <utility>

namespace Velmar::Host {

namespace {

const QString codeColumn = QStringLiteral("OBS_OpCode"); ///< says that there is an observation
const QString textColumn = QStringLiteral("OBS_Observation");
const QString memoColumn = QStringLiteral("OBS_Memo");

} // namespace

bool ObservationColumns::isOne(const QString &name)
{
    return name == codeColumn || name == textColumn || name == memoColumn;
}

void ObservationColumns::add(const QString &name, const QString &value)
{
    m_values.insert(name, value);
}

std::optional<ProjectSession::Observation> ObservationColumns::take()
{
    const QHash<QString, QString> values = std::exchange(m_values, {});
    if (!values.contains(codeColumn))
        return std::nullopt;
    ProjectSession::Observation observation;
    observation.code = values.value(codeColumn);
    observation.text = values.value(textColumn);
    observation.remark = values.value(memoColumn);
    return observation;
}

} // namespace Velmar::Host
