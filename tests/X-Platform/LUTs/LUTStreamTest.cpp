// Tables on streams: the stored form of each class byte for byte in both byte orders, round
// trips through both creators, the older forms still read, and damaged streams, which end in
// XException and nothing else.

#include <gtest/gtest.h>

#include <memory>

#include "XClassRegistry.h"
#include "XFloatToColourLUT.h"
#include "XIntToIntLUT.h"
#include "XLUTTestSupport.h"
#include "XStreamBytes.h"
#include "XTestSupport.h"
#include "XVolumeTestSupport.h"

namespace
{
const XByteOrder kOrders[] = {kLittleEndian, kBigEndian};
const std::vector<UInt8> kTwoColours = {1, 2, 3, 4, 5, 6, 7, 8};

XIntToColourLUT TwoColours()
{
    XIntToColourLUT table = XMakeTable<XIntToColourLUT>({XARGB32Colour(1, 2, 3, 4), XARGB32Colour(5, 6, 7, 8)});
    table.SetTrueDepth(3);
    table.SetLastTrueValue(5);
    return table;
}

// Reads one object; with anOldFormat the stream is of the older format, read by the classes'
// stream constructors.
template <class T>
std::unique_ptr<T> ReadBack(std::vector<UInt8> aBytes, XByteOrder anOrder = kLittleEndian, bool anOldFormat = false)
{
    XTestMemoryStream stream(std::move(aBytes), anOrder);
    if (anOldFormat)
        stream.SetFormatVersion(1, 0);
    return std::unique_ptr<T>(stream.ReadObjectAs<T>());
}

// The XException number that reading raises; an internal error fails the test.
UInt32 ErrorReading(std::vector<UInt8> aBytes)
{
    UInt32 error = 0;
    EXPECT_EQ(AssertionOf([&] { error = ErrorOf([&] { ReadBack<XStorable>(aBytes); }); }), "");
    return error;
}
} // namespace

TEST(LUTStream, EachClassStoresItsFormInEitherByteOrder)
{
    XFloatToColourLUT real(TwoColours());
    real.SetMin(-1.5);
    real.SetMax(2.0);
    for (XByteOrder order : kOrders)
    {
        EXPECT_EQ(XStoredBytes(TwoColours(), order),
                  XStreamBytes(order).Words({65559, 65559, 2}).Handle(kTwoColours).Words({3, 5}).Get());
        EXPECT_EQ(XStoredBytes(real, order), XStreamBytes(order)
                                                 .Words({22, 65559, 2})
                                                 .Handle(kTwoColours)
                                                 .Words({3, 5, 22})
                                                 .Doubles({-1.5, 2.0})
                                                 .Get());
        EXPECT_EQ(XStoredBytes(XMakeTable<XIntToIntLUT>({9, 8, 7}), order),
                  XStreamBytes(order).Words({21, 21, 3}).Handle({9, 8, 7}).Get());
        EXPECT_EQ(XStoredBytes(XIntToIntLUT(), order), XStreamBytes(order).Words({21, 21, 0}).Handle({}).Get());
    }
}

TEST(LUTStream, RoundTripsThroughEitherCreator)
{
    XFloatToColourLUT real(XIntToColourLUT::GetStandardLUT(4));
    real.SetMin(-3.0);
    real.SetMax(7.0);
    const XIntToIntLUT bytes = XMakeTable<XIntToIntLUT>({0, 1, 254, 255});
    for (XByteOrder order : kOrders)
        for (bool oldFormat : {false, true})
        {
            const auto colours = ReadBack<XIntToColourLUT>(XStoredBytes(TwoColours(), order), order, oldFormat);
            EXPECT_EQ(typeid(*colours), typeid(XIntToColourLUT));
            EXPECT_EQ(XGetEntries(*colours), XGetEntries(TwoColours()));
            EXPECT_EQ(colours->GetTrueDepth(), 3u);
            EXPECT_EQ(colours->GetLastTrueValue(), 5u);

            const auto realBack = ReadBack<XFloatToColourLUT>(XStoredBytes(real, order), order, oldFormat);
            EXPECT_EQ(XGetEntries(*realBack), XGetEntries(real));
            EXPECT_EQ(realBack->GetTrueDepth(), 4u);
            EXPECT_EQ(realBack->GetLastTrueValue(), 15u);
            XLock lock(*realBack, kLockRead);
            EXPECT_EQ(realBack->GetMin(), -3.0);
            EXPECT_EQ(realBack->ValueToIndex(2.0), 127u); // scale read back with the range

            EXPECT_EQ(XGetEntries(*ReadBack<XIntToIntLUT>(XStoredBytes(bytes, order), order, oldFormat)),
                      XGetEntries(bytes));
        }
    const std::unique_ptr<XStorable> clone(real.Clone());
    EXPECT_EQ(XStoredBytes(*clone), XStoredBytes(real));
}

TEST(LUTStream, ReadingIntoATableKeepsItsSeed)
{
    XIntToColourLUT table(7);
    const UInt32 seed = table.GetSeed();
    XTestMemoryStream stream;
    TwoColours().WriteStream2(stream, XStorable::kNormal);
    stream.SeekTo(0);
    table.ReadStream2(stream, XStorable::kNormal);
    EXPECT_EQ(table.GetSeed(), seed);
    EXPECT_EQ(XGetEntries(table), XGetEntries(TwoColours()));
    EXPECT_EQ(table.GetTrueDepth(), 3u);
}

TEST(LUTStream, OlderFormsOfTheColourTable)
{
    for (XByteOrder order : kOrders)
    {
        // Under the old class word there is no level word, no true depth and no last true value.
        const auto old = ReadBack<XIntToColourLUT>(
            XStreamBytes(order).Words({20, 18}).Handle(std::vector<UInt8>(72, 9)).Get(), order);
        EXPECT_EQ(old->GetSize(), 18u);
        EXPECT_EQ(old->GetTrueDepth(), 4u);
        EXPECT_EQ(old->GetLastTrueValue(), 15u);
        EXPECT_EQ(XGetEntries(*old)[17], XARGB32Colour(9, 9, 9, 9));
        // Version 0 has the true depth but not the last true value.
        const auto first = ReadBack<XIntToColourLUT>(
            XStreamBytes(order).Words({23, 23, 3}).Handle(std::vector<UInt8>(12, 1)).Words({5}).Get(), order);
        EXPECT_EQ(first->GetTrueDepth(), 5u);
        EXPECT_EQ(first->GetLastTrueValue(), 31u);
        // A float table over a colour level of the old class.
        const auto real = ReadBack<XFloatToColourLUT>(
            XStreamBytes(order).Words({22, 20, 2}).Handle(kTwoColours).Words({22}).Doubles({0.0, 4.0}).Get(), order);
        EXPECT_EQ(real->GetTrueDepth(), 1u);
        EXPECT_EQ(real->GetMax(), 4.0);
    }
}

TEST(LUTStream, DamagedStreamsAreRefused)
{
    // Newer versions, and a level of another class.
    EXPECT_EQ(ErrorReading(XStreamBytes().Words({23, 131095, 2}).Handle(kTwoColours).Words({3, 5}).Get()),
              UInt32(kErrStreamTooNew));
    EXPECT_EQ(ErrorReading(XStreamBytes().Words({21, 65557, 0}).Handle({}).Get()), UInt32(kErrStreamTooNew));
    EXPECT_EQ(ErrorReading(
                  XStreamBytes().Words({22, 65559, 2}).Handle(kTwoColours).Words({3, 5, 65558}).Doubles({0, 1}).Get()),
              UInt32(kErrStreamTooNew));
    EXPECT_EQ(ErrorReading(XStreamBytes().Words({23, 21, 0}).Handle({}).Get()), UInt32(kErrWrongClass));
    EXPECT_EQ(ErrorReading(XStreamBytes().Words({22, 65559, 2}).Handle(kTwoColours).Words({3, 5, 21}).Get()),
              UInt32(kErrWrongClass));
    // Entries stored as another kind of object.
    EXPECT_EQ(ErrorReading(XStreamBytes().Words({21, 21, 4, 34, 34, 0, 0, 1, 1}).Get()), UInt32(kErrWrongClass));

    // Counts that do not match the bytes, also absurd ones: nothing is allocated from them.
    try
    {
        ReadBack<XStorable>(XStreamBytes().Words({23, 65559, 3}).Handle(kTwoColours).Words({3, 5}).Get());
        ADD_FAILURE();
    }
    catch (const XException & anError)
    {
        EXPECT_EQ(anError.GetErrorNumber(), UInt32(kErrDamagedStream));
        EXPECT_NE(anError.GetDetail().find("3 entries"), std::string::npos) << anError.GetDetail();
    }
    EXPECT_EQ(ErrorReading(XStreamBytes().Words({21, 21, 0xFFFFFFFF}).Handle({1, 2}).Get()), UInt32(kErrDamagedStream));
    EXPECT_EQ(ErrorReading(XStreamBytes().Words({21, 21, 1, 0}).Get()), UInt32(kErrDamagedStream));
    EXPECT_EQ(ReadBack<XIntToIntLUT>(XStreamBytes().Words({21, 21, 0, 0}).Get())->GetSize(), 0u);

    // Every truncation of a good stream.
    std::vector<UInt8> good = XStoredBytes(XFloatToColourLUT(TwoColours()));
    for (std::size_t length = 1; length < good.size(); ++length)
        EXPECT_NE(ErrorReading(std::vector<UInt8>(good.begin(), good.begin() + std::ptrdiff_t(length))), 0u) << length;
}

TEST(LUTStream, TablesAreMadeFromStreamsOnly)
{
    EXPECT_EQ(ErrorOf([] { delete XClassRegistry::CreateObject(XVersion(23)); }), UInt32(kErrUnknownClass));
    EXPECT_EQ(ErrorOf([] { delete XClassRegistry::CreateObject(XVersion(21)); }), UInt32(kErrUnknownClass));
}
