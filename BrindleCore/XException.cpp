#include "XException.h"

#include <map>
#include <mutex>

#include "XString.h"

namespace
{
thread_local UInt32 tLastError = 0;

std::mutex & MapMutex()
{
    static std::mutex sMutex;
    return sMutex;
}

// Texts of the numbers that the foundation and the imaging library raise.
std::map<UInt32, std::string> & ErrorMap()
{
    static std::map<UInt32, std::string> sMap = {
        {kErrGeneric, "failure"},
        {kErrEndOfStream, "read past the end of the stream"},
        {kErrDamagedStream, "damaged stream data"},
        {kErrUnknownClass, "unknown class on a stream"},
        {kErrFileIO, "file error"},
        {kErrWrongClass, "wrong class on a stream"},
        {1006, "failed call of a graphics or numeric service"},
        {kErrOutOfMemory, "not enough memory"},
        {kErrCompression, "compression failure"},
        {kErrTimeOut, "time-out"},
        {kErrThreadStopped, "the thread was stopped"},
        {kErrBadArgument, "bad argument"},
        {1012, "Fourier failure"},
        {kErrStreamTooNew, "stream form newer than this code"},
        {kErrPreferences, "preferences could not be read or written"},
        {kErrThread, "thread could not be started"},
        {1050, "bad PICT data"},
        {1100, "bad JPEG data"},
        {1356, "curve fit failed"},
        {1357, "lookup mapping failed"},
        {2302, "matrix error"},
        {2500, "the tool does not handle this type of volume"},
        {2502, "image data source failure"},
        {2506, "the renderer has no look-up table"},
        {2509, "ratio failed"},
        {3095, "remote call failed"},
        {3142, "remote job failed"},
    };
    return sMap;
}

std::string LookUp(UInt32 aNumber)
{
    std::lock_guard<std::mutex> guard(MapMutex());
    auto found = ErrorMap().find(aNumber);
    if (found != ErrorMap().end())
        return found->second;
    return "Error " + std::to_string(aNumber);
}

std::string Compose(UInt32 aNumber, const std::string & aDetail)
{
    std::string text = LookUp(aNumber);
    if (!aDetail.empty())
        text += ": " + aDetail;
    return text + " (" + std::to_string(aNumber) + ")";
}
} // namespace

XException::XException(UInt32 aNumber) : XException(aNumber, std::string()) {}

XException::XException(UInt32 aNumber, const std::string & aDetail)
    : itsNumber(aNumber), itsDetail(aDetail), itsWhat(Compose(aNumber, aDetail))
{
    tLastError = aNumber;
}

XException::~XException() = default;

XString XException::GetErrorMessage() const
{
    return XString(Compose(itsNumber, itsDetail));
}

const char * XException::what() const noexcept
{
    return itsWhat.c_str();
}

bool XException::ShouldLogError() const
{
    return !IsSilentErrorCode(itsNumber);
}

bool XException::ShouldReportError() const
{
    return !IsSilentErrorCode(itsNumber);
}

bool XException::IsCrashError() const
{
    return false;
}

bool XException::GetCrashDump(XString & outDump) const
{
    outDump = XString::kEmptyString;
    return false;
}

bool XException::IsSilentErrorCode(UInt32 aNumber) const
{
    return aNumber == kErrThreadStopped;
}

void XException::AddErrorStringToMap(UInt32 aNumber, const XString & aText)
{
    std::lock_guard<std::mutex> guard(MapMutex());
    ErrorMap()[aNumber] = aText.GetStdString();
}

XString XException::GetErrorString(UInt32 aNumber)
{
    return XString(LookUp(aNumber));
}

UInt32 XException::GetLastError()
{
    return tLastError;
}

void XException::ResetLastError()
{
    tLastError = 0;
}
