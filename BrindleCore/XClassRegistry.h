#pragma once
// The process-wide table of storable classes: creators, inheritance, old identifiers.
//
// Classes are keyed by the class part of their word (the low 16 bits). Registration happens at
// start-up; look-ups may come from any thread.
//
// Choice of creator in CreateObject: the read creator (new object, PreReadStream, then ReadStream2
// level by level) for objects in the current form, that is under their current class word in a
// stream of format 2 or later; the stream creator (the class's stream constructor, which also
// reads the older forms) for old identifiers, for older streams, and for entries without a read
// creator. An entry with neither raises XException 1003.

#include "XStorable.h"
#include "XString.h"
#include "XVersion.h"

class XClassRegistry
{
public:
    // Streams from this format major version on hold objects in their current form.
    static constexpr UInt32 kCurrentFormMajorVersion = 2;

    using XStreamCreator = XStorable * (*)(XStream &, const XVersion &, XStorable::XOptions);
    using XReadCreator = XStorable * (*)(XStream &, const XVersion &, XStorable::XOptions);
    using XDefaultCreator = XStorable * (*)();

    // Any creator may be null; registering a class again fills in what was null before. An empty
    // description stays as it was (a class registered without one reads "Class <id>").
    static void RegisterClassA(XVersion aClass, XVersion aSuper, XStreamCreator aStreamCreator,
                               XReadCreator aReadCreator, XDefaultCreator aDefaultCreator,
                               const XString & aDescription);
    // aClass inherits from aParent: every word IsA its parents, transitively.
    static void RegisterInheritance(XVersion aClass, XVersion aParent);
    // anOld is an old identifier of aCurrent: it creates aCurrent's objects and IsA aCurrent.
    static void RegisterAlias(XVersion anOld, XVersion aCurrent);

    // True when aClass is aBase's class, reaches it through aliases and inheritance, or is equal.
    static bool IsA(XVersion aClass, XVersion aBase);
    // True when aClass is registered as an old identifier of another class.
    static bool IsOldIdentifier(XVersion aClass);
    // The class that aClass's objects are made as: aliases followed to their current word.
    static UInt32 GetCurrentClass(XVersion aClass);
    static bool IsRegistered(XVersion aClass);
    static XString GetDescription(XVersion aClass);

    // Makes and reads an object of aClass from aStream with the rule above. The version is the
    // word that was read; it is handed to the read creator.
    static XStorable * CreateObject(XVersion aClass, XStream & aStream, XVersion aVersion,
                                    XStorable::XOptions anOptions);
    // Makes an empty object with the default creator; XException 1003 without one.
    static XStorable * CreateObject(XVersion aClass);

    // Creators for a class T with the usual constructors.
    template <class T>
    static XStorable * StreamCreator(XStream & aStream, const XVersion &, XStorable::XOptions)
    {
        return new T(aStream);
    }
    template <class T>
    static XStorable * ReadCreator(XStream & aStream, const XVersion & aVersion,
                                   XStorable::XOptions anOptions)
    {
        T * object = new T();
        try
        {
            if (object->PreReadStream(aStream, aVersion, anOptions))
                object->ReadStream2(aStream, anOptions);
        }
        catch (...)
        {
            delete object;
            throw;
        }
        return object;
    }
    template <class T>
    static XStorable * DefaultCreator()
    {
        return new T();
    }
};
