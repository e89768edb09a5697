#include "XProgressStrategy.h"

#include <mutex>
#include <utility>

namespace
{
std::mutex & StrategyMutex()
{
    static std::mutex * sMutex = new std::mutex;
    return *sMutex;
}

// Held in a pointer that is never deleted, so that progress during shut-down finds it.
XProgressStrategy::XStrategyPtr & ProcessStrategy()
{
    static auto * sStrategy = new XProgressStrategy::XStrategyPtr;
    return *sStrategy;
}

thread_local XProgressStrategy::XStrategyPtr tThreadStrategy;
} // namespace

XProgressStrategy::~XProgressStrategy() = default;

void XProgressStrategy::ProgressBegin(const XReport &) {}

void XProgressStrategy::ProgressChanged(const XReport &) {}

void XProgressStrategy::ProgressEnd(const XReport &) {}

bool XProgressStrategy::IsCancelRequested(UInt64) const
{
    return false;
}

void XProgressStrategy::SetStrategy(XStrategyPtr aStrategy)
{
    std::unique_lock<std::mutex> lock(StrategyMutex());
    std::swap(ProcessStrategy(), aStrategy);
    lock.unlock(); // the previous strategy is let go of outside the lock
}

XProgressStrategy::XStrategyPtr XProgressStrategy::GetStrategy()
{
    std::lock_guard<std::mutex> guard(StrategyMutex());
    return ProcessStrategy();
}

void XProgressStrategy::SetThreadStrategy(XStrategyPtr aStrategy)
{
    tThreadStrategy = std::move(aStrategy);
}

XProgressStrategy::XStrategyPtr XProgressStrategy::GetThreadStrategy()
{
    return tThreadStrategy;
}

XProgressStrategy::XStrategyPtr XProgressStrategy::GetStrategyInForce()
{
    if (tThreadStrategy)
        return tThreadStrategy;
    return GetStrategy();
}

XProgressStrategy::XThreadScope::XThreadScope(XStrategyPtr aStrategy) : itsPrevious(tThreadStrategy)
{
    tThreadStrategy = std::move(aStrategy);
}

XProgressStrategy::XThreadScope::~XThreadScope()
{
    tThreadStrategy = std::move(itsPrevious);
}
