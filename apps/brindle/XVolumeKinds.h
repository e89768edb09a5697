#pragma once
// The volume classes that the tool knows, as one table: the name that the command line uses,
// the class, the voxel type, whether --type may name it, and how to make one. Keep the table in
// XVolumeKinds.cpp in step with the kinds that the files (TIFF, PNG) handle.
//
// Conversions go through the library's own CopyIn. 32-bit grey volumes take part in no
// conversion of the library, so they are refused here with a clear message before the library
// is asked.

#include <memory>
#include <string>
#include <vector>

#include "XTypes.h"

class XVolume;
class X3DRect;

enum XVolumeKindID : UInt32
{
    kMaskKind,
    kGrey8Kind,
    kGrey16Kind,
    kGrey32Kind,
    kFloatKind,
    kARGB32Kind,
    kBGRA32Kind,
    kRGB48Kind
};

struct XVolumeKind
{
    XVolumeKindID itsID;
    const char * itsName;       // as --type names it
    const char * itsClassName;
    const char * itsVoxelText;  // what one voxel holds
    bool itsIsTarget;           // a target of convert --type
    XVolume * (*itsMake)(const X3DRect & aBounds);
};

class XVolumeKinds
{
public:
    static const std::vector<XVolumeKind> & GetAll();
    // The kind of aVolume's exact class; XCommandError for a class that the tool does not know.
    static const XVolumeKind & Of(const XVolume & aVolume);
    // The target kind named aName; XCommandError of usage for any other name.
    static const XVolumeKind & FindTarget(const std::string & aName);
    // "grey8|grey16|..." of the targets.
    static std::string GetTargetNames();

    // A new volume of kind aTarget holding aSource converted by CopyIn, with aSource's
    // calibrations. The display carries over: into float, black and white are the source's when
    // the source is grey (the values stay as they were) and the data's range otherwise; into any
    // other type the renderer takes the source's adjustment (CopyProperties).
    static std::unique_ptr<XVolume> Convert(const XVolume & aSource, const XVolumeKind & aTarget);

    // Sets a float volume's black and white to its smallest and largest value, when they differ.
    static void FitFloatRange(XVolume & aFloatVolume);
};
