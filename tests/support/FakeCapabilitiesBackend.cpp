// SPDX-License-Identifier: Apache-2.0
#include "tests/support/FakeCapabilitiesBackend.h"

namespace Velmar::Test {

FakeCapabilitiesBackend::FakeCapabilitiesBackend(int columns, int rows, int width, int height)
    : columns(columns)
    , rows(rows)
    , width(width)
    , height(height)
{
}

int FakeCapabilitiesBackend::maximumColumnCount()
{
    return columns;
}

int FakeCapabilitiesBackend::maximumRowCount()
{
    return rows;
}

int FakeCapabilitiesBackend::imageWidth()
{
    return width;
}

int FakeCapabilitiesBackend::imageHeight()
{
    return height;
}

} // namespace Velmar::Test
