#include "XNeighbourhoodScanner.h"

#include <atomic>

namespace
{
std::atomic<bool> sFastPaths{true};
}

void XNeighbourhoodScanner::SetFastPathsEnabled(bool anEnabled)
{
    sFastPaths.store(anEnabled, std::memory_order_relaxed);
}

bool XNeighbourhoodScanner::AreFastPathsEnabled()
{
    return sFastPaths.load(std::memory_order_relaxed);
}
