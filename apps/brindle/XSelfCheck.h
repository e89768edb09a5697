#pragma once
// A quick check that the foundation works on this machine: a stream round trip, locks across
// threads, and the value behaviour of memory handles. Each check prints one line.

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

class XSelfCheck
{
public:
    // Runs every check, printing "name: ok" or "name: FAILED (reason)"; true if all passed.
    bool Run(std::ostream & anOut);

private:
    static void CheckStreamRoundTrip();
    static void CheckLocks();
    static void CheckHandles();
};
