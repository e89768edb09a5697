// The nearest-lower index tables of XVolumeScaler and XImageScaler.

#include <gtest/gtest.h>

#include <vector>

#include "XImageScaler.h"
#include "XVolumeScaler.h"

namespace
{
template <class Scaler, typename Get>
std::vector<UInt64> TableOf(const Scaler & aScaler, Get aGet, UInt32 aCount)
{
    std::vector<UInt64> table;
    for (UInt32 i = 0; i < aCount; ++i)
        table.push_back((aScaler.*aGet)(i));
    return table;
}
} // namespace

TEST(Scaler, VolumeTablesRepeatOrSkipWithoutRounding)
{
    // x: 3 onto 5 with stride 1, ((i * 3) / 5): 0 0 1 1 2, the last below 3. y: 5 onto 2 with
    // the row stride 7, ((i * 5) / 2) * 7: 0, 14. z: 4 onto 4 with the plane stride 100.
    const XVolumeScaler scaler(X3DRect(10, 20, 30, 13, 25, 34), X3DRect(-1, -1, -1, 4, 1, 3), 1, 7, 100);
    EXPECT_EQ(TableOf(scaler, &XVolumeScaler::GetSrcX, 5), (std::vector<UInt64>{0, 0, 1, 1, 2}));
    EXPECT_EQ(TableOf(scaler, &XVolumeScaler::GetSrcY, 2), (std::vector<UInt64>{0, 14}));
    EXPECT_EQ(TableOf(scaler, &XVolumeScaler::GetSrcZ, 4), (std::vector<UInt64>{0, 100, 200, 300}));
    EXPECT_EQ(scaler.GetYStride(), 7u);
    EXPECT_EQ(scaler.GetSource(), X3DRect(10, 20, 30, 13, 25, 34));

    // Strides in bytes, and 7 onto 3: 0, 7/3 = 2, 14/3 = 4.
    UInt64 table[3];
    XVolumeScaler::FillArray(table, 7, 3, 4);
    EXPECT_EQ(std::vector<UInt64>(table, table + 3), (std::vector<UInt64>{0, 8, 16}));
    // An empty destination axis has an empty table, and the other axes theirs: 3 onto 2, 0 3.
    const XVolumeScaler empty(X3DRect(3, 3, 3), X3DRect(0, 2, 2), 1, 3, 9);
    EXPECT_EQ(TableOf(empty, &XVolumeScaler::GetSrcY, 2), (std::vector<UInt64>{0, 3}));
}

TEST(Scaler, ImageTables)
{
    const XImageScaler scaler(XRect(5, 5, 8, 7), XRect(0, 0, 4, 3), 2, 100);
    // x: 3 onto 4, ((i * 3) / 4) * 2: 0 0 2 4. y: 2 onto 3, ((i * 2) / 3) * 100: 0 0 100.
    EXPECT_EQ(TableOf(scaler, &XImageScaler::GetSrcX, 4), (std::vector<UInt64>{0, 0, 2, 4}));
    EXPECT_EQ(TableOf(scaler, &XImageScaler::GetSrcY, 3), (std::vector<UInt64>{0, 0, 100}));
    EXPECT_EQ(scaler.GetXStride(), 2u);
    EXPECT_EQ(scaler.GetDest(), XRect(0, 0, 4, 3));
}
