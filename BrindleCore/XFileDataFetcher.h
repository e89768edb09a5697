#pragma once
// A data fetcher that loads from a file named by an XFileSpec.
//
// LoadDataSelf first asks LoadDataFromCache, which answers from an object that an earlier load
// kept; only when that gives false does it call LoadFromFile. Subclasses keep whatever cache
// they like (the lazy file stream keeps the handle or volume that it read).

#include "XDataFetcher.h"
#include "XFileSpec.h"

class XFileDataFetcher : public XDataFetcher
{
public:
    explicit XFileDataFetcher(const XFileSpec & aFileSpec);
    ~XFileDataFetcher() override;

    const XFileSpec & GetFileSpec() const { return itsFileSpec; }

protected:
    void LoadDataSelf(XLockable & aTarget) override;
    // Fills aTarget from the cache; false when there is nothing cached. The default has no cache.
    virtual bool LoadDataFromCache(XLockable & aTarget);
    // Reads the data from aFileSpec into aTarget.
    virtual void LoadFromFile(const XFileSpec & aFileSpec, XLockable & aTarget) = 0;

private:
    XFileSpec itsFileSpec;
};
