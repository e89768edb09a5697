#pragma once
// Base of objects that write themselves to an XStream and read themselves back.
//
// Stream convention: WriteStream2 writes the chain of the class's levels, root first, each level
// a class word followed by its fields. XStream::WriteObject puts the object's own class word in
// front of that chain, so that a reader knows which class to create.

#include "XTypes.h"
#include "XVersioned.h"

class XStream;

class XStorable : public XVersioned
{
public:
    // Passed unchanged through a read or write. 0 reads normally; kSkipData asks readers of bulk
    // data (voxels, memory handles) to step over the data instead of loading it.
    using XOptions = UInt32;
    static constexpr XOptions kNormal = 0;
    static constexpr XOptions kSkipData = 2;

    XStorable() = default;
    XStorable(const XStorable &) = default;
    XStorable & operator=(const XStorable &) = default;
    ~XStorable() override;

    virtual XStorable * Clone() const = 0;
    // The bytes that WriteStream2 writes, for sizing.
    virtual UInt64 GetStreamUsage() const = 0;
    virtual void ReadStream2(XStream & aStream, XOptions anOptions) = 0;
    virtual void WriteStream2(XStream & aStream, XOptions anOptions) const = 0;
    // First look at a stream when the object is made by the registry's read creator: true means
    // that ReadStream2 is to follow, false that the object has read itself.
    virtual bool PreReadStream(XStream & aStream, const XVersion & aVersion, XOptions anOptions);
    // WriteStream2 with normal options.
    virtual void WriteStream(XStream & aStream) const;

protected:
    // The class word for the level being read.
    //
    // 1. When the object reader has just created this object from an old identifier (a class
    //    word registered as an alias), that word stands for the first level: old forms carry no
    //    word of their own there. The first level to ask takes it.
    // 2. Otherwise, when aDefault is not null and the object being read has an old identifier,
    //    the caller reads an old form, which may or may not carry a word at this place. The next
    //    word is taken when its class is aDefault's class or, when aDefault is an old
    //    identifier, its current class: the stream holds the word. Anything else (a field, a
    //    null object, the word of an object of another class, the end of the stream) is left
    //    where it is and aDefault is returned. Direct stream constructors pass their class word
    //    here.
    //    Old forms give no other sign of the word: an old form that stops without a word here and
    //    is followed at once by an object of the very class named would have that object's word
    //    taken for its own.
    // 3. Otherwise the next word of the stream is read.
    static XVersion ReadClassVersion(XStream & aStream, XVersion aDefault);

    // The checks of one level: XException 1005 when aWord is not IsA aClassVersion, 1015 when
    // aWord's version is above the version of aClassVersion.
    static void CheckClassVersion(const XVersion & aWord, const XVersion & aClassVersion);
    // ReadClassVersion(aStream, 0) followed by CheckClassVersion.
    static XVersion ReadLevelVersion(XStream & aStream, const XVersion & aClassVersion);
};
