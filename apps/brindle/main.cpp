// brindle: the command-line tool of BrindleImaging.
// For now it prints the library's version and checks the foundation.

#include <iostream>

#include "BrindleImaging.h"
#include "XSelfCheck.h"

int main()
{
    std::cout << "BrindleImaging " << XImagingLibrary::GetVersionString().c_str() << " (built "
              << XImagingLibrary::GetBuildDate().c_str() << ", " << XThread::GetProcessorCount()
              << " processors)\n";
    std::cout << "Self-check of the foundation:\n";
    XSelfCheck check;
    bool passed = check.Run(std::cout);
    std::cout << (passed ? "All checks passed.\n" : "Some checks FAILED.\n");
    return passed ? 0 : 1;
}
