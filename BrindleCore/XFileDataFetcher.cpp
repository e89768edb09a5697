#include "XFileDataFetcher.h"

XFileDataFetcher::XFileDataFetcher(const XFileSpec & aFileSpec) : itsFileSpec(aFileSpec) {}

XFileDataFetcher::~XFileDataFetcher() = default;

void XFileDataFetcher::LoadDataSelf(XLockable & aTarget)
{
    if (!LoadDataFromCache(aTarget))
        LoadFromFile(itsFileSpec, aTarget);
}

bool XFileDataFetcher::LoadDataFromCache(XLockable &)
{
    return false;
}
