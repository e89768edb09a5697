#pragma once
// Small helpers shared by the test programs: the error number an action raises, the text of the
// internal error it reports, a counter that threads raise and wait on with a bound, and a
// scoped environment variable.

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <optional>
#include <string>

#include "XException.h"
#include "XInternalError.h"
#include "XTypes.h"

// The number of the XException that anAction raises, or 0 when it raises none.
inline UInt32 ErrorOf(const std::function<void()> & anAction)
{
    try
    {
        anAction();
    }
    catch (const XException & anError)
    {
        return anError.GetErrorNumber();
    }
    return 0;
}

// The expression of the XInternalError that anAction raises, or "" when it raises none.
inline std::string AssertionOf(const std::function<void()> & anAction)
{
    try
    {
        anAction();
    }
    catch (const XInternalError & anError)
    {
        return anError.GetExpression();
    }
    return "";
}

// Counts arrivals; WaitFor returns when the count reaches a target, or false after the bound,
// which only a bug reaches.
class XTestGate
{
public:
    static constexpr UInt32 kBoundMs = 20000;

    void Arrive()
    {
        std::lock_guard<std::mutex> guard(itsMutex);
        ++itsCount;
        itsChanged.notify_all();
    }
    bool WaitFor(int aTarget, UInt32 aTimeOutMs = kBoundMs)
    {
        std::unique_lock<std::mutex> guard(itsMutex);
        return itsChanged.wait_for(guard, std::chrono::milliseconds(aTimeOutMs),
                                   [&] { return itsCount >= aTarget; });
    }
    int GetCount()
    {
        std::lock_guard<std::mutex> guard(itsMutex);
        return itsCount;
    }

private:
    std::mutex itsMutex;
    std::condition_variable itsChanged;
    int itsCount = 0;
};

// Sets (or, with a null value, unsets) an environment variable for the life of the object.
class XScopedEnvironment
{
public:
    XScopedEnvironment(const char * aName, const char * aValue) : itsName(aName)
    {
        if (const char * old = std::getenv(aName))
            itsOld = old;
        if (aValue != nullptr)
            ::setenv(aName, aValue, 1);
        else
            ::unsetenv(aName);
    }
    XScopedEnvironment(const XScopedEnvironment &) = delete;
    XScopedEnvironment & operator=(const XScopedEnvironment &) = delete;
    ~XScopedEnvironment()
    {
        if (itsOld)
            ::setenv(itsName.c_str(), itsOld->c_str(), 1);
        else
            ::unsetenv(itsName.c_str());
    }

private:
    std::string itsName;
    std::optional<std::string> itsOld;
};
