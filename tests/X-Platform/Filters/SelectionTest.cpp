// The selection steps of the median filters against a sort: quickselect, the sorting networks,
// and the sliding histogram with values at the edges of its coarse bins.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "XQuickSelect.h"
#include "XSelectionNetwork.h"
#include "XSlidingHistogram.h"

namespace
{
template <typename C>
C LowerMedianBySort(std::vector<C> aValues)
{
    std::sort(aValues.begin(), aValues.end());
    return aValues[(aValues.size() - 1) / 2];
}

template <UInt32 N>
void ExpectNetworkSelects(std::mt19937 & aRandom)
{
    for (int trial = 0; trial < 4000; ++trial)
    {
        // Few distinct values, so that ties and every order of them occur.
        const UInt32 levels = trial % 2 == 0 ? 3 : 1000;
        std::vector<UInt16> values(N);
        for (UInt16 & value : values)
            value = UInt16(aRandom() % levels);
        const UInt16 expected = LowerMedianBySort(values);
        using Network = XSelectionNetwork<N, (N - 1) / 2>;
        ASSERT_EQ(Network::Select(values.data()), expected) << N;
    }
}
} // namespace

TEST(Selection, QuickselectFindsTheLowerMiddle)
{
    std::mt19937 random(21);
    for (UInt32 count = 1; count < 140; ++count)
        for (UInt32 levels : {2u, 7u, 100000u})
        {
            std::vector<UInt32> values(count);
            for (UInt32 & value : values)
                value = random() % levels;
            const UInt32 expected = LowerMedianBySort(values);
            ASSERT_EQ(XSelectLowerMedian(values.data(), count), expected) << count << " " << levels;
        }
    std::vector<float> even = {4.0f, -1.0f, 3.0f, 2.0f};
    EXPECT_EQ(XSelectLowerMedian(even.data(), 4), 2.0f);
    // NaNs have no place, but the search stays inside the array (and the sanitizers watch).
    std::vector<float> withNaN = {5.0f, std::nanf(""), 1.0f, std::nanf(""), 3.0f, 2.0f, std::nanf("")};
    XSelectLowerMedian(withNaN.data(), UInt32(withNaN.size()));
}

TEST(Selection, NetworksSelectTheLowerMiddle)
{
    std::mt19937 random(22);
    ExpectNetworkSelects<3>(random);
    ExpectNetworkSelects<5>(random);
    ExpectNetworkSelects<6>(random);
    ExpectNetworkSelects<7>(random);
    ExpectNetworkSelects<9>(random);
    ExpectNetworkSelects<12>(random);
    ExpectNetworkSelects<18>(random);
    ExpectNetworkSelects<27>(random);
    // The pruning keeps what the median of 27 needs: 126 steps, 226 minimum and maximum operations.
    EXPECT_EQ((XSelectionNetwork<27, 13>::GetStepCount()), 126u);
}

TEST(Selection, TheSlidingHistogramFollowsItsValues)
{
    // Values at the edges of the coarse bins of 256, far apart, so that the position skips
    // whole bins both ways.
    const UInt16 picks[] = {0, 1, 255, 256, 257, 511, 512, 767, 768, 30000, 30207, 30208, 65279, 65280, 65535};
    std::mt19937 random(23);
    XSlidingHistogram<UInt16> histogram;
    std::vector<UInt16> held;
    for (int step = 0; step < 20000; ++step)
    {
        if (held.size() < 9 || (held.size() < 40 && random() % 2 == 0))
        {
            const UInt16 value = picks[random() % std::size(picks)];
            histogram.Add(value);
            held.push_back(value);
        }
        else
        {
            const std::size_t i = random() % held.size();
            histogram.Remove(held[i]);
            held.erase(held.begin() + std::ptrdiff_t(i));
        }
        std::vector<UInt16> sorted = held;
        std::sort(sorted.begin(), sorted.end());
        const UInt32 index = UInt32(random() % held.size());
        ASSERT_EQ(histogram.Select(index), sorted[index]) << step;
    }
    XSlidingHistogram<UInt8> bytes;
    for (UInt8 value : {200, 3, 3, 255, 0})
        bytes.Add(value);
    EXPECT_EQ(bytes.Select(4), 255);
    EXPECT_EQ(bytes.Select(0), 0);
    EXPECT_EQ(bytes.Select(2), 3);
    bytes.Remove(3);
    EXPECT_EQ(bytes.Select(2), 200);
}
