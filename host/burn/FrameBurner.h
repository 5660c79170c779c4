// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/burn/OverlayPlanes.h"
#include "host/burn/PlanarFrame.h"
#include "host/display/OverlaySnapshot.h"

#include <QtGlobal>

#include <unordered_map>

namespace Velmar::Host {

/// Burns an overlay into video frames, straight into their planes and nowhere but where the overlay
/// is. What a picture needs is prepared once and kept until the picture, its place on the chroma
/// grid or the kind of frame changes. Not thread-safe; every stream has its own.
class FrameBurner
{
public:
    FrameBurner() = default;
    Q_DISABLE_COPY(FrameBurner)

    /// Pictures that are no longer in @p overlay are forgotten.
    void burn(const PlanarFrame &frame, const OverlaySnapshot &overlay);

    quint64 conversionCount() const; ///< pictures prepared so far

private:
    struct Entry
    {
        OverlayPlanes planes;
        quint64 usedIn = 0; ///< the burn that used it last
    };

    std::unordered_map<int, Entry> m_entries; ///< by id of the item
    OverlayPlanes::Scratch m_scratch;
    quint64 m_burnCount = 0;
    quint64 m_conversionCount = 0;
};

} // namespace Velmar::Host
