#pragma once
// The exception that callers of the library meet: a number, with a message looked up in a
// process-wide map. Thrown by value.

#include <exception>
#include <string>

#include "XTypes.h"

class XString;

// Numbers of the failures that the foundation itself raises. The imaging library adds its own
// numbers (1005 wrong class, 1015 stream too new, 2500 volume type refused, ...).
enum XErrorNumber : UInt32
{
    kErrGeneric = 1000,
    kErrEndOfStream = 1001,         // a read past the end of a stream
    kErrDamagedStream = 1002,       // stream data that cannot be what it claims to be
    kErrUnknownClass = 1003,        // a class word that the registry does not know
    kErrFileIO = 1004,              // a file could not be opened, read, written or mapped
    kErrWrongClass = 1005,          // an object of the wrong class on a stream
    kErrOutOfMemory = 1007,         // a block could not be allocated
    kErrCompression = 1008,         // deflate or inflate failed
    kErrTimeOut = 1009,             // a wait ran out of time
    kErrThreadStopped = 1010,       // the current thread was asked to stop
    kErrBadArgument = 1011,         // a caller passed a value that cannot be used
    kErrStreamTooNew = 1015,        // a stream form newer than this code
    kErrPreferences = 1016,         // the settings file could not be read or written
    kErrThread = 1017               // a thread could not be started
};

class XException : public std::exception
{
public:
    explicit XException(UInt32 aNumber);
    XException(UInt32 aNumber, const std::string & aDetail);
    XException(const XException &) = default;
    XException & operator=(const XException &) = default;
    ~XException() override;

    UInt32 GetErrorNumber() const { return itsNumber; }
    // The message of the number, followed by the detail given at the throw, if any.
    virtual XString GetErrorMessage() const;
    const char * what() const noexcept override;
    const std::string & GetDetail() const { return itsDetail; }

    // Report flags: whether a handler should log the failure, show it, or treat it as a crash.
    virtual bool ShouldLogError() const;
    virtual bool ShouldReportError() const;
    virtual bool IsCrashError() const;
    // A text describing the failure for a crash report; false if there is nothing to add.
    virtual bool GetCrashDump(XString & outDump) const;

    // Message map shared by all exceptions. A number without an entry reads "Error <number>".
    static void AddErrorStringToMap(UInt32 aNumber, const XString & aText);
    static XString GetErrorString(UInt32 aNumber);
    // The number of the last XException made on this thread, 0 after ResetLastError.
    static UInt32 GetLastError();
    static void ResetLastError();

protected:
    // Silent errors are neither logged nor reported: a stop of a thread, for example.
    virtual bool IsSilentErrorCode(UInt32 aNumber) const;

private:
    UInt32 itsNumber;
    std::string itsDetail;
    std::string itsWhat;
};
