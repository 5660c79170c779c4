// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMetaObject>
#include <QStringList>

namespace Velmar::Test {

/// The properties that @p meta itself declares, in order, each as "type name", then "write" when it
/// can be written, "constant", and the signature of its notify signal.
QStringList propertiesOf(const QMetaObject &meta);

/// The methods that @p meta itself declares, in order, each as "signal", "slot" or "method" and the
/// return type unless void, the name and the parameters.
QStringList methodsOf(const QMetaObject &meta);

} // namespace Velmar::Test
