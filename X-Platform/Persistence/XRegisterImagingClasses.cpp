#include "XRegisterImagingClasses.h"

#include "X3DRect.h"
#include "X3DRegion.h"
#include "XARGB32ImageRenderer.h"
#include "XARGB32Volume.h"
#include "XBGRA32ImageRenderer.h"
#include "XBGRA32Volume.h"
#include "XClassRegistry.h"
#include "XFPImageRenderer.h"
#include "XFPVolume.h"
#include "XFloatToColourLUT.h"
#include "XGrey16ImageRenderer.h"
#include "XGrey16Volume.h"
#include "XGrey8ImageRenderer.h"
#include "XGrey8Volume.h"
#include "XIntToColourLUT.h"
#include "XIntToIntLUT.h"
#include "XMaskImageRenderer.h"
#include "XMaskVolume.h"
#include "XMemoryHandle.h"
#include "XRGB48ImageRenderer.h"
#include "XRGB48Volume.h"
#include "XRect.h"
#include "XRectF.h"

namespace
{
using R = XClassRegistry;

// One row of the class table: the class word, the level below it in the stream chain, what is
// shown for such objects (the class's name where it has no description of its own), and the
// stream and read creators. A row without creators is a class that this version does not build
// yet: its word and its chain still answer IsA, and its creators join the row when the class
// comes.
struct XClassRow
{
    XVersion itsClass;
    XVersion itsSuper;
    const char * itsDescription;
    R::XStreamCreator itsStreamCreator;
    R::XReadCreator itsReadCreator;
};

// Stream and read creators of class T under its own word.
template <class T>
XClassRow Built(const char * aDescription)
{
    return {T::GetClassVersion(), T::GetSuperClassVersion(), aDescription, &R::StreamCreator<T>, &R::ReadCreator<T>};
}

template <class T>
XClassRow ReadOnly(const char * aDescription)
{
    return {T::GetClassVersion(), T::GetSuperClassVersion(), aDescription, nullptr, &R::ReadCreator<T>};
}

// A form of class T under another word, read by T's creators.
template <class T>
XClassRow Form(XVersion aWord, XVersion aSuper, const char * aDescription)
{
    return {aWord, aSuper, aDescription, &R::StreamCreator<T>, &R::ReadCreator<T>};
}

XClassRow NotBuilt(UInt32 aClass, UInt32 aVersion, UInt32 aSuper, const char * aName)
{
    return {XVersion(aClass, aVersion), XVersion(aSuper), aName, nullptr, nullptr};
}

void Register(const XClassRow & aRow)
{
    R::RegisterClassA(aRow.itsClass, aRow.itsSuper, aRow.itsStreamCreator, aRow.itsReadCreator, nullptr,
                      XString(aRow.itsDescription));
}

template <class T>
void RegisterDefault(const char * aDescription)
{
    R::RegisterClassA(T::GetClassVersion(), T::GetSuperClassVersion(), nullptr, nullptr, &R::DefaultCreator<T>,
                      XString(aDescription));
}

void RegisterCreators()
{
    const XClassRow rows[] = {
        Built<XIntToColourLUT>("XIntToColourLUT"),
        Built<XFloatToColourLUT>("XFloatToColourLUT"),
        Built<XIntToIntLUT>("XIntToIntLUT"),
        Built<XRect>("XRect"),
        Built<XFPVolume>("Floating-point Image"),
        Built<XMaskVolume>("1-bit Mask Image"),
        Built<XGrey8Volume>("256 Grays Image"),
        Built<XGrey16Volume>("16-bit Grayscale Image"),
        Built<XARGB32Volume>("Millions of Colors Image"),
        Built<XBGRA32Volume>("Millions of Colors Image"),
        Built<XRGB48Volume>("48-bit Color Image"),
        Built<X3DRect>("X3DRect"),
        Built<X3DRegion>("X3DRegion"),
        Built<XMaskImageRenderer>("XMaskImageRenderer"),
        Built<XGrey8ImageRenderer>("XGrey8ImageRenderer"),
        Built<XGrey16ImageRenderer>("XGrey16ImageRenderer"),
        Built<XARGB32ImageRenderer>("XARGB32ImageRenderer"),
        Built<XBGRA32ImageRenderer>("XBGRA32ImageRenderer"),
        Built<XRGB48ImageRenderer>("XRGB48ImageRenderer"),
        Built<XFPImageRenderer>("XFPImageRenderer"),
        ReadOnly<XRectF>("XRectF"),
        NotBuilt(110, 2, 48, "X3DPolyLine"),
        NotBuilt(118, 0, 48, "X3DSelectedPoint"),
        NotBuilt(1205, 0, 1203, "XNetJobVolumeSharedData"),
        NotBuilt(1206, 0, 1202, "XNetJobVolumeResult"),
        NotBuilt(119, 0, 48, "X3DPolyLineF"),
        NotBuilt(120, 0, 119, "X4DTrack"),
        NotBuilt(121, 0, 48, "X3DHierarchicalPolyLine"),
        NotBuilt(127, 0, 48, "XROICollection"),
        NotBuilt(128, 0, 126, "XIrregularROI"),
        NotBuilt(129, 0, 126, "XPolygonROI"),
        NotBuilt(130, 0, 126, "XEllipseROI"),
        NotBuilt(131, 0, 126, "XCuboidROI"),
        Form<XGrey8Volume>(XVersion(XVolume::kLossyGrey8ClassID, 1), XVersion(XGrey8Volume::kClassID),
                           "256 Grays JPEG Image"),
        Form<XARGB32Volume>(XVersion(XVolume::kLossyARGB32ClassID, 1), XVersion(XARGB32Volume::kClassID),
                            "Millions of Colors JPEG Image"),
    };
    for (const XClassRow & row : rows)
        Register(row);
}

void RegisterDefaultCreators()
{
    RegisterDefault<XRect>("XRect");
    RegisterDefault<XFPVolume>("Floating-point Image");
    RegisterDefault<XMaskVolume>("1-bit Mask Image");
    RegisterDefault<XGrey8Volume>("256 Grays Image");
    RegisterDefault<XGrey16Volume>("16-bit Grayscale Image");
    RegisterDefault<XARGB32Volume>("Millions of Colors Image");
    RegisterDefault<XBGRA32Volume>("Millions of Colors Image");
    RegisterDefault<XRGB48Volume>("48-bit Color Image");
    RegisterDefault<X3DRect>("X3DRect");
    RegisterDefault<X3DRegion>("X3DRegion");
    RegisterDefault<X3DRegion>("X3DRegion");
}

void RegisterOldIdentifiers()
{
    const UInt32 aliases[][2] = {{20, 23}, {101, 520}, {5, 115}, {4, 105}, {3, 106},
                                 {1, 108},  {514, 108}, {6, 112}, {2, 107}};
    for (const auto & alias : aliases)
        R::RegisterAlias(XVersion(alias[0]), XVersion(alias[1]));
}

void RegisterInheritance()
{
    const UInt32 parents[][2] = {{101, 48},    {114, 101},   {102, 114},  {103, 102},  {104, 103},
                                 {12001, 48},  {12002, 12001}, {12003, 12002}, {802, 48}, {804, 802},
                                 {805, 804},   {20, 48},     {1204, 1200}, {1453, 48}, {1462, 48},
                                 {126, 48},    {47, 48},     {5, 47},     {4, 47},     {3, 47},
                                 {1, 47},      {6, 47},      {2, 47},     {514, 1},    {515, 4}};
    for (const auto & parent : parents)
        R::RegisterInheritance(XVersion(parent[0]), XVersion(parent[1]));
}

// The classes of the movie bridge and of distributed registration, which take default and read
// creators when they are built.
void RegisterJobAndBridgeClasses()
{
    const XClassRow rows[] = {
        NotBuilt(1351, 0, 1350, "WQuickTimeShim::WQTShimControlLPCBridge"),
        NotBuilt(1352, 0, 1350, "WQTCompressorLPCBridge"),
        NotBuilt(2002, 0, 1203, "XImageRegistrationJobSharedData"),
        NotBuilt(2001, 0, 1202, "XImageRegistrationJobResult"),
        NotBuilt(2000, 0, 1200, "XImageRegistrationJob"),
    };
    for (const XClassRow & row : rows)
        Register(row);
}
} // namespace

void XRegisterImagingClasses()
{
    XMemoryHandle::RegisterClass();
    RegisterCreators();
    RegisterDefaultCreators();
    RegisterOldIdentifiers();
    RegisterInheritance();
    RegisterJobAndBridgeClasses();
}
