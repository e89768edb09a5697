// Texts, exceptions and assertions, and the containers with their stream helpers.

#include <gtest/gtest.h>

#include <memory>

#include "XAssert.h"
#include "XPtrVector.h"
#include "XSet.h"
#include "XStopThreadException.h"
#include "XTestMemoryStream.h"
#include "XTestSupport.h"
#include "XVector.h"

TEST(StringTest, CharactersAreCountedInUTF8)
{
    XString text("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"); // a, e-acute, euro, emoji
    EXPECT_EQ(text.GetLength(), 10u);
    EXPECT_EQ(text.GetCharCount(), 4u);
    EXPECT_EQ(text.GetNthChar(1), char32_t(0xE9));
    EXPECT_EQ(text.GetNthChar(3), char32_t(0x1F600));
    EXPECT_EQ(text.GetNthChar(4), char32_t(0));
    std::wstring wide = text.GetWideString();
    ASSERT_EQ(wide.size(), 4u);
    EXPECT_EQ(wide[2], wchar_t(0x20AC));
    EXPECT_EQ(XString(wide), text);
    text.StripLast(2);
    EXPECT_EQ(text, "a\xC3\xA9");
    EXPECT_EQ(XString("x\xC3").GetWideString(), std::wstring(L"x\xFFFD"));
}

TEST(StringTest, ReplaceConcatenateNumbersTableAndStream)
{
    XString text("one two one");
    EXPECT_EQ(text.Replace("one", "three"), 2u);
    EXPECT_EQ(text, "three two three");
    EXPECT_EQ(text.Replace("", "x"), 0u);
    EXPECT_EQ(XString("a") + "b" + XString("c"), "abc");
    EXPECT_EQ(XString(" 4294967295 ").GetUInt32(), 4294967295u);
    for (const char * bad : {"4294967296", "-1", "12x"})
        EXPECT_THROW(XString(bad).GetUInt32(), XException) << bad;
    EXPECT_DOUBLE_EQ(XString("-2.5e3").GetSFloat64(), -2500.0);
    EXPECT_THROW(XString("").GetSFloat64(), XException);

    XString::AddStringToTable(901, "Volume");
    XString loaded;
    EXPECT_TRUE(loaded.LoadStringA(901));
    EXPECT_EQ(loaded, "Volume");
    EXPECT_FALSE(loaded.LoadStringA(902));

    XTestMemoryStream stream(kBigEndian);
    text.WriteStream2(stream, 0);
    EXPECT_EQ(stream.GetBytes().size(), text.GetStreamUsage());
    stream.SeekTo(0);
    XString back;
    back.ReadStream2(stream, 0);
    EXPECT_EQ(back, text);
}

TEST(ExceptionTest, NumbersMessagesLastErrorAndSilence)
{
    XException::ResetLastError();
    EXPECT_EQ(XException::GetLastError(), 0u);
    XException error(1005, "in a test");
    EXPECT_EQ(XException::GetLastError(), 1005u);
    EXPECT_EQ(error.GetErrorMessage(), "wrong class on a stream: in a test (1005)");
    EXPECT_STREQ(error.what(), "wrong class on a stream: in a test (1005)");
    EXPECT_TRUE(error.ShouldLogError());
    EXPECT_TRUE(error.ShouldReportError());
    XException::AddErrorStringToMap(8000, "not enough beads could be detected for calibration");
    EXPECT_EQ(XException(8000).GetErrorMessage(), "not enough beads could be detected for calibration (8000)");
    EXPECT_EQ(XException(54321).GetErrorMessage(), "Error 54321 (54321)");

    // A stop is no failure: neither logged nor reported.
    XStopThreadException stop("worker");
    const XException & asException = stop;
    EXPECT_EQ(asException.GetErrorNumber(), UInt32(kErrThreadStopped));
    EXPECT_FALSE(asException.ShouldLogError());
    EXPECT_FALSE(asException.ShouldReportError());
    EXPECT_NE(std::string(asException.what()).find("worker"), std::string::npos);
    EXPECT_FALSE(XException(kErrThreadStopped).ShouldLogError());
}

TEST(ExceptionTest, AssertionsQuoteTheirText)
{
    try
    {
        SInt32 plane = 3;
        XAssert(plane < 2);
        FAIL();
    }
    catch (const XInternalError & anError)
    {
        EXPECT_EQ(anError.GetExpression(), "plane < 2");
        EXPECT_NE(anError.GetFile().find("StringTest.cpp"), std::string::npos);
    }
    EXPECT_EQ(AssertionOf([] { XAssertText(false, "channel == 1"); }), "channel == 1");
}

TEST(ContainerTest, PtrVectorOwnsItsElements)
{
    struct XCounted
    {
        explicit XCounted(int & aCount) : itsCount(aCount) { ++itsCount; }
        ~XCounted() { --itsCount; }
        int & itsCount;
    };
    int alive = 0;
    {
        XPtrVector<XCounted> items;
        for (int i = 0; i < 4; ++i)
            items.push_back(new XCounted(alive));
        items.Erase(0);
        EXPECT_EQ(alive, 3);
        items.Replace(0, new XCounted(alive));
        EXPECT_EQ(alive, 3);
        std::unique_ptr<XCounted> released(items.Release(1));
        EXPECT_EQ(items.size(), 2u);
        XPtrVector<XCounted> moved(std::move(items));
        EXPECT_EQ(alive, 3);
        moved.Clear();
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST(ContainerTest, VectorsRoundTripAndRefuseAbsurdCounts)
{
    XVector<SInt16> values{-1, 2, 300};
    XVector<XString> names{"a", "bc"};
    XTestMemoryStream stream(kBigEndian);
    XWriteVector(stream, values);
    XWriteVector(stream, names);
    EXPECT_EQ(XGetValueVectorStreamUsage(values), 10u);
    std::vector<UInt8> bytes = stream.GetBytes();
    EXPECT_EQ(bytes[4], 0xFF);
    EXPECT_EQ(bytes[5], 0xFF);
    stream.SeekTo(0);
    XVector<SInt16> valuesBack;
    XVector<XString> namesBack;
    XReadVector(stream, valuesBack);
    XReadVector(stream, namesBack);
    EXPECT_EQ(valuesBack, values);
    EXPECT_EQ(namesBack, names);
    EXPECT_TRUE(valuesBack.Contains(300));

    XTestMemoryStream absurd(std::vector<UInt8>{0xFF, 0xFF, 0xFF, 0x7F, 1, 2}, kLittleEndian);
    XVector<double> doubles;
    EXPECT_THROW(XReadVector(absurd, doubles), XException);

    XSet<SInt32> set;
    EXPECT_TRUE(set.Add(4));
    EXPECT_FALSE(set.Add(4));
    EXPECT_TRUE(set.Contains(4));
    EXPECT_TRUE(set.Remove(4));
}
