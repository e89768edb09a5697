#include "XStorable.h"

#include "XException.h"
#include "XStream.h"

XStorable::~XStorable() = default;

bool XStorable::PreReadStream(XStream &, const XVersion &, XOptions)
{
    return true;
}

void XStorable::WriteStream(XStream & aStream) const
{
    WriteStream2(aStream, kNormal);
}

XVersion XStorable::ReadClassVersion(XStream & aStream, XVersion aDefault)
{
    return aStream.TakeClassVersion(aDefault);
}

void XStorable::CheckClassVersion(const XVersion & aWord, const XVersion & aClassVersion)
{
    if (!aWord.IsA(aClassVersion))
        throw XException(kErrWrongClass, "class " + std::to_string(aWord.GetClass()) +
                                             " where class " +
                                             std::to_string(aClassVersion.GetClass()) +
                                             " was expected");
    if (aWord.GetVersion() > aClassVersion.GetVersion())
        throw XException(kErrStreamTooNew, "class " + std::to_string(aWord.GetClass()) +
                                               " version " + std::to_string(aWord.GetVersion()) +
                                               " is newer than version " +
                                               std::to_string(aClassVersion.GetVersion()));
}

XVersion XStorable::ReadLevelVersion(XStream & aStream, const XVersion & aClassVersion)
{
    XVersion word = ReadClassVersion(aStream, XVersion());
    CheckClassVersion(word, aClassVersion);
    return word;
}
