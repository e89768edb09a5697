// The stream forms of XRect (34), XRectF (50) and X3DRect (100): their bytes, round trips in
// both byte orders through the object reader, and the failures of a wrong class, a newer
// version and a short stream.

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "X3DRect.h"
#include "XClassRegistry.h"
#include "XException.h"
#include "XRect.h"
#include "XRectF.h"
#include "XTestMemoryStream.h"
#include "XTestSupport.h"

namespace
{
template <class T>
void Register()
{
    using R = XClassRegistry;
    R::RegisterClassA(T::GetClassVersion(), T::GetSuperClassVersion(), &R::StreamCreator<T>,
                      &R::ReadCreator<T>, &R::DefaultCreator<T>, XString());
}

std::vector<UInt8> Words(std::initializer_list<UInt32> aWords)
{
    std::vector<UInt8> bytes;
    for (UInt32 word : aWords)
        for (int shift = 0; shift < 32; shift += 8)
            bytes.push_back(UInt8(word >> shift));
    return bytes;
}

template <class T>
std::vector<UInt8> BytesOf(const T & anObject)
{
    XTestMemoryStream stream(kLittleEndian);
    anObject.WriteStream2(stream, XStorable::kNormal);
    return stream.GetBytes();
}

template <class T>
std::unique_ptr<T> RoundTrip(const T & anObject, XByteOrder anOrder)
{
    XTestMemoryStream stream(anOrder);
    stream.WriteObject(anObject);
    stream.SeekTo(0);
    return std::unique_ptr<T>(stream.ReadObjectAs<T>());
}
} // namespace

class GeometryStreamTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        Register<XRect>();
        Register<XRectF>();
        Register<X3DRect>();
    }
};

TEST_F(GeometryStreamTest, EachFormHasItsFieldOrder)
{
    EXPECT_EQ(BytesOf(XRect(1, 2, 3, 4)), Words({34, 1, 2, 4, 3}));
    EXPECT_EQ(BytesOf(XRect(-1, 0, 0, 0)), Words({34, 0xFFFFFFFF, 0, 0, 0}));
    EXPECT_EQ(BytesOf(X3DRect(1, 2, 3, 4, 5, 6)), Words({100, 1, 4, 2, 5, 3, 6}));
    EXPECT_EQ(BytesOf(XRectF(1.0f, 2.0f, 3.0f, 4.0f)),
              Words({50, 0x3F800000, 0x40000000, 0x40800000, 0x40400000}));
    EXPECT_EQ(XRect().GetStreamUsage(), 16u);
    EXPECT_EQ(XRectF().GetStreamUsage(), 16u);
    EXPECT_EQ(X3DRect().GetStreamUsage(), 24u);
}

TEST_F(GeometryStreamTest, ObjectsRoundTripInBothOrders)
{
    for (XByteOrder order : {kLittleEndian, kBigEndian})
    {
        EXPECT_EQ(*RoundTrip(XRect(-7, 2, 30, 40), order), XRect(-7, 2, 30, 40));
        EXPECT_EQ(*RoundTrip(XRectF(-0.5f, 2.25f, 3.0f, 1e9f), order), XRectF(-0.5f, 2.25f, 3.0f, 1e9f));
        EXPECT_EQ(*RoundTrip(X3DRect(-1, -2, -3, 4, 5, 6), order), X3DRect(-1, -2, -3, 4, 5, 6));
    }
}

TEST_F(GeometryStreamTest, StreamConstructorsReadTheWordAndKeepTheFieldsAsStored)
{
    XTestMemoryStream rect(Words({34, 1, 2, 4, 3}), kLittleEndian);
    EXPECT_EQ(XRect(rect), XRect(1, 2, 3, 4));
    // The box's stream form is not normalised: an inside-out box reads as it was written.
    XTestMemoryStream box(Words({100, 9, 1, 0, 0, 0, 0}), kLittleEndian);
    X3DRect read(box);
    EXPECT_EQ(read.GetLeft(), 9);
    EXPECT_EQ(read.GetRight(), 1);
    XTestMemoryStream big(std::vector<UInt8>{0, 0, 0, 100, 0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0, 4,
                                             0, 0, 0, 5, 0, 0, 0, 6},
                          kBigEndian);
    EXPECT_EQ(X3DRect(big), X3DRect(1, 3, 5, 2, 4, 6));
}

TEST_F(GeometryStreamTest, WrongClassNewerVersionAndShortStreamsFail)
{
    EXPECT_EQ(ErrorOf([] {
                  XTestMemoryStream s(Words({100, 1, 2, 3, 4}), kLittleEndian);
                  XRect r(s);
              }),
              1005u);
    EXPECT_EQ(ErrorOf([] {
                  XTestMemoryStream s(Words({(1u << 16) | 34, 1, 2, 3, 4}), kLittleEndian);
                  XRect r(s);
              }),
              1015u);
    EXPECT_EQ(ErrorOf([] {
                  XTestMemoryStream s(Words({(1u << 16) | 50, 0, 0, 0, 0}), kLittleEndian);
                  XRectF r(s);
              }),
              1015u);
    EXPECT_EQ(ErrorOf([] {
                  XTestMemoryStream s(Words({34, 1, 2, 3, 4}), kLittleEndian);
                  X3DRect r(s);
              }),
              1005u);
    EXPECT_EQ(ErrorOf([] {
                  XTestMemoryStream s(Words({100, 1, 2, 3}), kLittleEndian);
                  X3DRect r(s);
              }),
              UInt32(kErrEndOfStream));
    // Through the object reader: the level word of a rectangle where a box is expected.
    EXPECT_EQ(ErrorOf([] {
                  XTestMemoryStream s(Words({100, 34, 1, 2, 3, 4, 5, 6}), kLittleEndian);
                  std::unique_ptr<XStorable> object(s.ReadStorable());
              }),
              1005u);
}
