// Objects through the class registry: level-by-level chains, old identifiers whose word stands
// for the first level, direct constructors with a default word, the wrong-class and too-new
// failures, and damaged object streams.

#include <gtest/gtest.h>

#include <memory>

#include "XClassRegistry.h"
#include "XTestMemoryStream.h"

namespace
{
// Class numbers of this test, far from the library's own.
constexpr UInt32 kRoot = 40520;    // base level, version 0
constexpr UInt32 kLeaf = 40105;    // derived level, version 1
constexpr UInt32 kOldLeaf = 40004; // old identifier of kLeaf
constexpr UInt32 kLegacy = 40047;  // what old identifiers inherit from
constexpr UInt32 kFlat = 40034;    // a flat class: one word and its fields
constexpr UInt32 kReadOnly = 40050;
constexpr UInt32 kNest = 40200;    // holds one nested object

class XTestFlat : public XStorable
{
public:
    XTestFlat() = default;
    XTestFlat(SInt32 aValue) : itsValue(aValue) {}
    // Passes its class word: old forms store the value without one.
    explicit XTestFlat(XStream & aStream)
    {
        CheckClassVersion(ReadClassVersion(aStream, XVersion(kFlat, 0)), GetVersion());
        itsValue = SInt32(aStream.Read32());
    }
    XVersion GetVersion() const override { return XVersion(kFlat, 0); }
    XTestFlat * Clone() const override { return new XTestFlat(*this); }
    UInt64 GetStreamUsage() const override { return 8; }
    void ReadStream2(XStream & aStream, XOptions) override
    {
        ReadLevelVersion(aStream, GetVersion());
        itsValue = SInt32(aStream.Read32());
    }
    void WriteStream2(XStream & aStream, XOptions) const override
    {
        aStream.WriteVersion(GetVersion());
        aStream.Write32(UInt32(itsValue));
    }
    SInt32 itsValue = 0;
};

class XTestRoot : public XStorable
{
public:
    XTestRoot() = default;
    explicit XTestRoot(XStream & aStream)
    {
        itsCreatedAs = aStream.GetLastClassCreated();
        XVersion word = ReadClassVersion(aStream, XVersion());
        CheckClassVersion(word, XVersion(kRoot, 0));
        ReadRootSelf(aStream, word);
    }
    void ReadStream2_XTestRoot(XStream & aStream)
    {
        ReadRootSelf(aStream, ReadLevelVersion(aStream, XVersion(kRoot, 0)));
    }
    void WriteStream2_XTestRoot(XStream & aStream) const
    {
        aStream.WriteVersion(XVersion(kRoot, 0));
        aStream.Write32(UInt32(itsA));
    }
    // Old forms keep their value in a flat object, either stored as an object or bare.
    void ReadRootSelf(XStream & aStream, XVersion aWord)
    {
        itsLegacy = aWord.IsA(XVersion(kLegacy, 0));
        if (!itsLegacy)
        {
            itsA = SInt32(aStream.Read32());
            return;
        }
        SInt64 start = aStream.GetPosition();
        XVersion next = aStream.ReadVersion();
        aStream.SeekTo(start);
        if (next.GetClass() == kFlat)
        {
            std::unique_ptr<XTestFlat> flat(aStream.ReadObjectAs<XTestFlat>());
            itsA = flat->itsValue;
        }
        else
        {
            itsA = XTestFlat(aStream).itsValue;
        }
    }
    XVersion GetVersion() const override { return XVersion(kRoot, 0); }
    XTestRoot * Clone() const override { return new XTestRoot(*this); }
    UInt64 GetStreamUsage() const override { return 8; }
    void ReadStream2(XStream & aStream, XOptions) override { ReadStream2_XTestRoot(aStream); }
    void WriteStream2(XStream & aStream, XOptions) const override { WriteStream2_XTestRoot(aStream); }

    SInt32 itsA = 0;
    bool itsLegacy = false;
    XVersion itsCreatedAs;
};

class XTestLeaf : public XTestRoot
{
public:
    XTestLeaf() = default;
    explicit XTestLeaf(XStream & aStream) : XTestRoot(aStream)
    {
        if (!itsLegacy)
            CheckClassVersion(ReadClassVersion(aStream, XVersion()), GetVersion());
        itsB = SInt32(aStream.Read32());
    }
    XVersion GetVersion() const override { return XVersion(kLeaf, 1); }
    XTestLeaf * Clone() const override { return new XTestLeaf(*this); }
    UInt64 GetStreamUsage() const override { return 16; }
    void ReadStream2(XStream & aStream, XOptions) override
    {
        ReadStream2_XTestRoot(aStream);
        ReadLevelVersion(aStream, GetVersion());
        itsB = SInt32(aStream.Read32());
    }
    void WriteStream2(XStream & aStream, XOptions) const override
    {
        WriteStream2_XTestRoot(aStream);
        aStream.WriteVersion(GetVersion());
        aStream.Write32(UInt32(itsB));
    }
    SInt32 itsB = 0;
};

// Read creator only: made empty, then read level by level.
class XTestReadOnly : public XTestFlat
{
public:
    XVersion GetVersion() const override { return XVersion(kReadOnly, 0); }
    XTestReadOnly * Clone() const override { return new XTestReadOnly(*this); }
};

class XTestNest : public XStorable
{
public:
    XTestNest() = default;
    explicit XTestNest(XStream & aStream)
    {
        CheckClassVersion(ReadClassVersion(aStream, XVersion()), GetVersion());
        itsInner.reset(aStream.ReadStorable());
    }
    XVersion GetVersion() const override { return XVersion(kNest, 0); }
    XTestNest * Clone() const override { return new XTestNest(); }
    UInt64 GetStreamUsage() const override { return 8; }
    void ReadStream2(XStream &, XOptions) override {}
    void WriteStream2(XStream & aStream, XOptions) const override
    {
        aStream.WriteVersion(GetVersion());
        aStream.WriteObject(itsInner.get());
    }
    std::unique_ptr<XStorable> itsInner;
};

class RegistryTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        using R = XClassRegistry;
        R::RegisterClassA(XVersion(kFlat, 0), XVersion(48), &R::StreamCreator<XTestFlat>,
                          &R::ReadCreator<XTestFlat>, nullptr, XString());
        // The first registration leaves the default creator out; the second completes it.
        R::RegisterClassA(XVersion(kLeaf, 1), XVersion(kRoot), &R::StreamCreator<XTestLeaf>,
                          &R::ReadCreator<XTestLeaf>, nullptr, XString("Test leaf"));
        R::RegisterClassA(XVersion(kLeaf, 1), XVersion(kRoot), nullptr, nullptr,
                          &R::DefaultCreator<XTestLeaf>, XString());
        R::RegisterClassA(XVersion(kReadOnly, 0), XVersion(48), nullptr,
                          &R::ReadCreator<XTestReadOnly>, nullptr, XString());
        R::RegisterClassA(XVersion(kNest, 0), XVersion(48), &R::StreamCreator<XTestNest>, nullptr,
                          nullptr, XString());
        R::RegisterInheritance(XVersion(kRoot), XVersion(48));
        R::RegisterAlias(XVersion(kOldLeaf), XVersion(kLeaf));
        R::RegisterInheritance(XVersion(kOldLeaf), XVersion(kLegacy));
        R::RegisterInheritance(XVersion(kLegacy), XVersion(48));
    }

    static UInt32 ErrorOf(std::vector<UInt8> aBytes)
    {
        XTestMemoryStream stream(std::move(aBytes), kLittleEndian);
        try
        {
            std::unique_ptr<XStorable> object(stream.ReadStorable());
        }
        catch (const XException & anError)
        {
            return anError.GetErrorNumber();
        }
        return 0;
    }

    static std::vector<UInt8> Words(std::initializer_list<UInt32> aWords)
    {
        XTestMemoryStream stream(kLittleEndian);
        for (UInt32 word : aWords)
            stream.Write32(word);
        return stream.GetBytes();
    }
};
} // namespace

TEST_F(RegistryTest, IsAFollowsAliasesAndInheritance)
{
    EXPECT_TRUE(XVersion(kLeaf, 1).IsA(XVersion(kLeaf, 0)));
    EXPECT_TRUE(XVersion(kLeaf, 1).IsA(XVersion(kRoot)));
    EXPECT_TRUE(XVersion(kLeaf, 1).IsA(XVersion(48)));
    EXPECT_TRUE(XVersion(kOldLeaf).IsA(XVersion(kLeaf)));
    EXPECT_TRUE(XVersion(kOldLeaf).IsA(XVersion(kRoot)));
    EXPECT_TRUE(XVersion(kOldLeaf).IsA(XVersion(kLegacy)));
    EXPECT_FALSE(XVersion(kLeaf).IsA(XVersion(kLegacy)));
    EXPECT_FALSE(XVersion(kLeaf).IsA(XVersion(kOldLeaf)));
    EXPECT_FALSE(XVersion(kRoot).IsA(XVersion(kLeaf)));
    EXPECT_TRUE(XClassRegistry::IsOldIdentifier(XVersion(kOldLeaf)));
    EXPECT_EQ(XClassRegistry::GetCurrentClass(XVersion(kOldLeaf)), kLeaf);
    EXPECT_EQ(XClassRegistry::GetDescription(XVersion(kOldLeaf)), XString("Test leaf"));
}

TEST_F(RegistryTest, ObjectsRoundTripThroughTheObjectReader)
{
    XTestLeaf leaf;
    leaf.itsA = -7;
    leaf.itsB = 9;
    XTestReadOnly readOnly;
    readOnly.itsValue = 5;
    XTestMemoryStream stream(kBigEndian);
    stream.WriteObject(leaf);
    stream.WriteObject(nullptr);
    stream.WriteObject(readOnly);
    // The object's word, then the chain: root level first.
    EXPECT_EQ(stream.GetBytes().size(), 4u * 5 + 4 + 4 * 3);
    stream.SeekTo(0);
    EXPECT_EQ(stream.Read32(), XVersion(kLeaf, 1).GetWord());
    EXPECT_EQ(stream.Read32(), kRoot);

    stream.SeekTo(0);
    std::unique_ptr<XStorable> object(stream.ReadStorable());
    auto * leafBack = dynamic_cast<XTestLeaf *>(object.get());
    ASSERT_NE(leafBack, nullptr);
    EXPECT_EQ(leafBack->itsA, -7);
    EXPECT_EQ(leafBack->itsB, 9);
    EXPECT_FALSE(leafBack->itsLegacy);
    // A current form is read level by level, not by the stream constructor.
    EXPECT_EQ(leafBack->itsCreatedAs, XVersion());
    EXPECT_EQ(stream.ReadStorable(), nullptr);
    std::unique_ptr<XTestReadOnly> readBack(stream.ReadObjectAs<XTestReadOnly>());
    EXPECT_EQ(readBack->itsValue, 5);
    EXPECT_EQ(stream.GetLastClassCreated(), XVersion());

    std::unique_ptr<XStorable> made(XClassRegistry::CreateObject(XVersion(kOldLeaf)));
    EXPECT_NE(dynamic_cast<XTestLeaf *>(made.get()), nullptr);
}

TEST_F(RegistryTest, OldIdentifierStandsForTheFirstLevel)
{
    // Old form: the old word, the value as a flat object, then b. No level words.
    XTestMemoryStream asObject(Words({kOldLeaf, kFlat, kFlat, 11, 12}), kLittleEndian);
    std::unique_ptr<XTestLeaf> one(asObject.ReadObjectAs<XTestLeaf>());
    EXPECT_TRUE(one->itsLegacy);
    EXPECT_EQ(one->itsCreatedAs, XVersion(kOldLeaf));
    EXPECT_EQ(one->itsA, 11);
    EXPECT_EQ(one->itsB, 12);

    // Old form with the value bare: the flat constructor assumes its default word.
    XTestMemoryStream bare(Words({kOldLeaf, 21, 22}), kLittleEndian);
    std::unique_ptr<XTestLeaf> two(bare.ReadObjectAs<XTestLeaf>());
    EXPECT_EQ(two->itsA, 21);
    EXPECT_EQ(two->itsB, 22);
    EXPECT_EQ(bare.GetBytesLeft(), 0u);

    // Outside an old form, the direct constructor reads the word that is there.
    XTestMemoryStream direct(Words({kFlat, 31}), kLittleEndian);
    EXPECT_EQ(XTestFlat(direct).itsValue, 31);
}

TEST_F(RegistryTest, StreamConstructorsReadOlderStreams)
{
    // The same bytes in a stream of format 1 go through the stream constructor.
    XTestMemoryStream stream(Words({XVersion(kLeaf, 1).GetWord(), kRoot, 3, XVersion(kLeaf, 1).GetWord(), 4}),
                             kLittleEndian);
    stream.SetFormatVersion(1, 0);
    std::unique_ptr<XTestLeaf> leaf(stream.ReadObjectAs<XTestLeaf>());
    EXPECT_EQ(leaf->itsCreatedAs, XVersion(kLeaf, 1));
    EXPECT_EQ(leaf->itsA, 3);
    EXPECT_EQ(leaf->itsB, 4);
}

TEST_F(RegistryTest, WrongClassAndNewerVersionsAreRefused)
{
    // Leaf level word replaced by the flat class: wrong class.
    EXPECT_EQ(ErrorOf(Words({XVersion(kLeaf, 1).GetWord(), kRoot, 1, kFlat, 2})), 1005u);
    // Root at version 1 where the code knows version 0.
    EXPECT_EQ(ErrorOf(Words({XVersion(kLeaf, 1).GetWord(), XVersion(kRoot, 1).GetWord(), 1,
                             XVersion(kLeaf, 1).GetWord(), 2})),
              1015u);
    // Leaf at version 1 is read; version 2 is refused.
    EXPECT_EQ(ErrorOf(Words({XVersion(kLeaf, 1).GetWord(), kRoot, 1, XVersion(kLeaf, 1).GetWord(),
                             2})),
              0u);
    EXPECT_EQ(ErrorOf(Words({XVersion(kLeaf, 1).GetWord(), kRoot, 1, XVersion(kLeaf, 2).GetWord(),
                             2})),
              1015u);
    // A read-created object that fails is deleted (the sanitizer build checks for leaks).
    EXPECT_EQ(ErrorOf(Words({kReadOnly, kFlat, 3})), 1005u);
    // ReadObjectAs of another class.
    XTestMemoryStream stream(Words({kFlat, kFlat, 4}), kLittleEndian);
    try
    {
        std::unique_ptr<XTestLeaf> leaf(stream.ReadObjectAs<XTestLeaf>());
        FAIL();
    }
    catch (const XException & anError)
    {
        EXPECT_EQ(anError.GetErrorNumber(), 1005u);
    }
}

TEST_F(RegistryTest, DamagedObjectStreamsRaiseExceptions)
{
    EXPECT_EQ(ErrorOf(Words({39999, 1, 2})), UInt32(kErrUnknownClass));
    // Truncated in the middle of an object.
    EXPECT_EQ(ErrorOf(Words({XVersion(kLeaf, 1).GetWord(), kRoot})), UInt32(kErrEndOfStream));
    // Endless nesting is cut off instead of exhausting the stack.
    std::vector<UInt32> words(1000, kNest);
    XTestMemoryStream deep(kLittleEndian);
    for (UInt32 word : words)
        deep.Write32(word);
    std::vector<UInt8> bytes = deep.GetBytes();
    EXPECT_EQ(ErrorOf(bytes), UInt32(kErrDamagedStream));
    // After a failure the stream no longer claims an object in creation.
    XTestMemoryStream again(bytes, kLittleEndian);
    EXPECT_THROW(again.ReadStorable(), XException);
    EXPECT_EQ(again.GetLastClassCreated(), XVersion());
}
