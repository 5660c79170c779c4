// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <initializer_list>

namespace Velmar::VideoOverlay {

class UnitsProvider;

struct SelfTestCase
{
    QString text; ///< the value, as it would arrive
    QString from;
    QString to;
    double expected;
};

/// Runs the cases, in order, through the virtual convert() and returns how many yield the expected
/// text of two decimals.
int matchingCases(UnitsProvider &converter, std::initializer_list<SelfTestCase> cases);

} // namespace Velmar::VideoOverlay
