#pragma once
// The exception that ends a worker thread that was asked to stop. XThread::TestCancelCurrentThread
// throws it at the worker's next check; XThread catches it where the worker's body ends and
// records the stop. It is silent: a stop is the caller's wish, not a failure to log or show.

#include "XException.h"

class XStopThreadException : public XException
{
public:
    XStopThreadException();
    // aThreadName appears in the detail of the message.
    explicit XStopThreadException(const std::string & aThreadName);
    XStopThreadException(const XStopThreadException &) = default;
    XStopThreadException & operator=(const XStopThreadException &) = default;
    ~XStopThreadException() override;

    bool ShouldLogError() const override;
    bool ShouldReportError() const override;
};
