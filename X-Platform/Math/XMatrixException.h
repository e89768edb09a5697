#pragma once
// The failure of a matrix operation (error 2302): a size that does not fit the operation, an
// index out of range, a singular matrix. It carries the operation's own message, e.g.
// "matrixT::Solve(): Singular matrix!".

#include "XException.h"
#include "XString.h"

class XMatrixException : public XException
{
public:
    static constexpr UInt32 kErrorNumber = 2302;

    explicit XMatrixException(const char * aMessage);
    XMatrixException(const XMatrixException &) = default;
    XMatrixException & operator=(const XMatrixException &) = default;
    ~XMatrixException() override;

    // The message as given.
    const XString & GetErrorStr() const { return itsMessage; }
    // "a matrix error occurred:" and the message without its closing "." or "!", then the
    // number in brackets: "a matrix error occurred:matrixT::Solve(): Singular matrix (2302)".
    XString GetRawErrorMessage() const;
    // The same as GetRawErrorMessage.
    XString GetErrorMessage() const override;

private:
    XString itsMessage;
};
