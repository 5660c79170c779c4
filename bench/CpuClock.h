// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ctime>

/// CPU time that this process has used so far, all threads together [s].
inline double cpuSeconds()
{
    timespec now {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}
