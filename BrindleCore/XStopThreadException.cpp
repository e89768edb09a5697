#include "XStopThreadException.h"

XStopThreadException::XStopThreadException() : XException(kErrThreadStopped) {}

XStopThreadException::XStopThreadException(const std::string & aThreadName)
    : XException(kErrThreadStopped, aThreadName.empty() ? std::string() : "thread \"" + aThreadName + "\"")
{
}

XStopThreadException::~XStopThreadException() = default;

bool XStopThreadException::ShouldLogError() const
{
    return false;
}

bool XStopThreadException::ShouldReportError() const
{
    return false;
}
