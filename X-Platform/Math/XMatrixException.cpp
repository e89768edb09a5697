#include "XMatrixException.h"

#include <string>

XMatrixException::XMatrixException(const char * aMessage)
    : XException(kErrorNumber, aMessage), itsMessage(aMessage)
{
}

XMatrixException::~XMatrixException() = default;

XString XMatrixException::GetRawErrorMessage() const
{
    std::string message = itsMessage.GetStdString();
    while (!message.empty() && (message.back() == '.' || message.back() == '!'))
        message.pop_back();
    return XString("a matrix error occurred:" + message + " (" +
                   std::to_string(GetErrorNumber()) + ")");
}

XString XMatrixException::GetErrorMessage() const
{
    return GetRawErrorMessage();
}
