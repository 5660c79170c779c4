// SPDX-License-Identifier: Apache-2.0
#include "host/burn/FrameBurner.h"

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

namespace Velmar::Host {

namespace {

#if defined(__x86_64__) || defined(__i386__)
__attribute__((target("avx"))) void clearUpperHalves()
{
    _mm256_zeroupper();
}
#endif

/// QPainter can leave the upper halves of the AVX registers in use, and every SSE instruction after
/// it on the same thread, such as the row loops here, then runs slower until they are cleared.
void prepareVectorUnit()
{
#if defined(__x86_64__) || defined(__i386__)
    static const bool hasAvx = __builtin_cpu_supports("avx");
    if (hasAvx)
        clearUpperHalves();
#endif
}

} // namespace

void FrameBurner::burn(const PlanarFrame &frame, const OverlaySnapshot &overlay)
{
    prepareVectorUnit();
    ++m_burnCount;
    size_t used = 0;
    for (const OverlayItem &item : overlay.items) {
        const QRect visible = visibleRect(item, overlay.clip, QSize(frame.width, frame.height));
        if (visible.isEmpty())
            continue;
        const auto [position, isNew] = m_entries.try_emplace(item.id);
        Entry &entry = position->second;
        const OverlayPlanes::Form form = OverlayPlanes::formFor(item, visible, frame);
        if (isNew || !(entry.planes.form() == form)) {
            entry.planes.prepare(item.image, form, m_scratch);
            ++m_conversionCount;
        }
        if (entry.usedIn != m_burnCount)
            ++used;
        entry.usedIn = m_burnCount;
        entry.planes.blend(frame, visible.topLeft());
    }
    if (used == m_entries.size())
        return;
    for (auto it = m_entries.begin(); it != m_entries.end();)
        it = it->second.usedIn == m_burnCount ? std::next(it) : m_entries.erase(it);
}

quint64 FrameBurner::conversionCount() const
{
    return m_conversionCount;
}

} // namespace Velmar::Host
