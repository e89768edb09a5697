// The walk of the neighbourhood filters: the work box, the order of voxels, masked regions,
// rows against single voxels, locks, progress by rows, and the voxel size it was compiled for.

#include <gtest/gtest.h>

#include <string>

#include "X3DRegion.h"
#include "XFilterTestSupport.h"
#include "XGrey16Volume.h"
#include "XGrey8Volume.h"
#include "XMaskVolume.h"
#include "XNeighbourhoodScanner.h"
#include "XProgress.h"
#include "XTestSupport.h"

namespace
{
// Notes what the walk asks of it, and what it sees of the locks and the progress.
class XRecordingWorker
{
public:
    void Begin(const XBasePackedVolume & aSource, XBasePackedVolume & aDest)
    {
        itsLocks = aSource.IsLocked() && !aSource.IsWriteLockedByCurrentThread() && aDest.IsWriteLockedByCurrentThread();
        itsLog += "begin ";
    }
    void ScanRow(SInt32 aX, UInt32 aCount, SInt32 aY, SInt32 aZ)
    {
        itsProgressTotal = XProgress::GetCurrentProgress() == nullptr ? 0 : XProgress::GetCurrentProgress()->GetTotal();
        itsLog += "row(" + std::to_string(aX) + "+" + std::to_string(aCount) + "," + std::to_string(aY) + "," +
                  std::to_string(aZ) + ") ";
    }
    void ScanVoxel(SInt32 aX, SInt32 aY, SInt32 aZ)
    {
        itsLog += "(" + std::to_string(aX) + "," + std::to_string(aY) + "," + std::to_string(aZ) + ") ";
    }

    std::string itsLog;
    bool itsLocks = false;
    UInt64 itsProgressTotal = 0;
};
} // namespace

TEST(NeighbourhoodScanner, WalksTheCommonBoxByRowsInOrderOfZYX)
{
    const XGrey8Volume source(X3DRect(0, 0, 0, 4, 3, 2));
    XGrey8Volume dest(X3DRect(1, 1, 0, 5, 4, 3));
    XRecordingWorker worker;
    XNeighbourhoodScanner::Scan<UInt8>(source, dest, worker);
    EXPECT_EQ(worker.itsLog, "begin row(1+3,1,0) row(1+3,2,0) row(1+3,1,1) row(1+3,2,1) ");
    EXPECT_TRUE(worker.itsLocks);
    // Progress counts rows: two rows in each of two planes.
    EXPECT_EQ(worker.itsProgressTotal, 4u);
    EXPECT_FALSE(source.IsLocked());
    EXPECT_FALSE(dest.IsLocked());

    // The plain rule alone, one voxel at a time.
    const XFilterPathGuard guard;
    XNeighbourhoodScanner::SetFastPathsEnabled(false);
    XRecordingWorker plain;
    const XGrey8Volume small(X3DRect(2, 1, 2));
    XGrey8Volume smallDest(X3DRect(2, 1, 2));
    XNeighbourhoodScanner::Scan<UInt8>(small, smallDest, plain);
    EXPECT_EQ(plain.itsLog, "begin (0,0,0) (1,0,0) (0,0,1) (1,0,1) ");
}

TEST(NeighbourhoodScanner, AMaskedRegionVisitsTheVoxelsWhoseMaskByteIsNotZero)
{
    const XGrey8Volume source(X3DRect(6, 2, 1));
    XGrey8Volume dest(X3DRect(6, 2, 1));
    // Cropped to x 1..4: byte 1 is not set for the region, but it is not 0 either.
    const auto mask = XMakeVolume<XMaskVolume>(X3DRect(6, 2, 1), {0, 255, 0, 1, 255, 0, 0, 0, 0, 0, 0, 0});
    const X3DRegion region(mask);
    ASSERT_TRUE(region.IsComplex());
    XRecordingWorker worker;
    XNeighbourhoodScanner::Scan<UInt8>(source, dest, worker, &region);
    EXPECT_EQ(worker.itsLog, "begin (1,0,0) (3,0,0) (4,0,0) ");
    // A plain box limits the rows.
    XRecordingWorker boxed;
    const X3DRegion box(X3DRect(2, 1, 0, 9, 2, 1));
    XNeighbourhoodScanner::Scan<UInt8>(source, dest, boxed, &box);
    EXPECT_EQ(boxed.itsLog, "begin row(2+4,1,0) ");
}

TEST(NeighbourhoodScanner, AVoxelSizeOtherThanTheCompiledOneIsABrokenPrecondition)
{
    const XGrey8Volume source(X3DRect(2, 2, 1));
    XGrey8Volume dest(X3DRect(2, 2, 1));
    XRecordingWorker worker;
    EXPECT_EQ(AssertionOf([&] { XNeighbourhoodScanner::Scan<UInt16>(source, dest, worker); }),
              "volumeA.GetVoxelBytes() == sizeof(TVolType)");
    EXPECT_EQ(worker.itsLog, "");
    EXPECT_FALSE(source.IsLocked());
}
