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

// Stream and read creators of class T under its own word.
template <class T>
void RegisterStreamAndRead(const char * aDescription)
{
    R::RegisterClassA(T::GetClassVersion(), T::GetSuperClassVersion(), &R::StreamCreator<T>, &R::ReadCreator<T>,
                      nullptr, XString(aDescription));
}

template <class T>
void RegisterReadOnly(const char * aDescription)
{
    R::RegisterClassA(T::GetClassVersion(), T::GetSuperClassVersion(), nullptr, &R::ReadCreator<T>, nullptr,
                      XString(aDescription));
}

template <class T>
void RegisterDefault(const char * aDescription)
{
    R::RegisterClassA(T::GetClassVersion(), T::GetSuperClassVersion(), nullptr, nullptr, &R::DefaultCreator<T>,
                      XString(aDescription));
}

// A form of class T under another word, read by T's creators.
template <class T>
void RegisterForm(XVersion aWord, XVersion aSuper, const char * aDescription)
{
    R::RegisterClassA(aWord, aSuper, &R::StreamCreator<T>, &R::ReadCreator<T>, nullptr, XString(aDescription));
}

void RegisterCreators()
{
    RegisterStreamAndRead<XIntToColourLUT>("XIntToColourLUT");
    RegisterStreamAndRead<XFloatToColourLUT>("XFloatToColourLUT");
    RegisterStreamAndRead<XIntToIntLUT>("XIntToIntLUT");
    RegisterStreamAndRead<XRect>("XRect");
    RegisterStreamAndRead<XFPVolume>("Floating-point Image");
    RegisterStreamAndRead<XMaskVolume>("1-bit Mask Image");
    RegisterStreamAndRead<XGrey8Volume>("256 Grays Image");
    RegisterStreamAndRead<XGrey16Volume>("16-bit Grayscale Image");
    RegisterStreamAndRead<XARGB32Volume>("Millions of Colors Image");
    RegisterStreamAndRead<XBGRA32Volume>("Millions of Colors Image");
    RegisterStreamAndRead<XRGB48Volume>("48-bit Color Image");
    RegisterStreamAndRead<X3DRect>("X3DRect");
    RegisterStreamAndRead<X3DRegion>("X3DRegion");
    RegisterStreamAndRead<XMaskImageRenderer>("XMaskImageRenderer");
    RegisterStreamAndRead<XGrey8ImageRenderer>("XGrey8ImageRenderer");
    RegisterStreamAndRead<XGrey16ImageRenderer>("XGrey16ImageRenderer");
    RegisterStreamAndRead<XARGB32ImageRenderer>("XARGB32ImageRenderer");
    RegisterStreamAndRead<XBGRA32ImageRenderer>("XBGRA32ImageRenderer");
    RegisterStreamAndRead<XRGB48ImageRenderer>("XRGB48ImageRenderer");
    RegisterStreamAndRead<XFPImageRenderer>("XFPImageRenderer");
    RegisterReadOnly<XRectF>("XRectF");
    RegisterForm<XGrey8Volume>(XVersion(XVolume::kLossyGrey8ClassID, 1), XVersion(XGrey8Volume::kClassID),
                               "256 Grays JPEG Image");
    RegisterForm<XARGB32Volume>(XVersion(XVolume::kLossyARGB32ClassID, 1), XVersion(XARGB32Volume::kClassID),
                                "Millions of Colors JPEG Image");
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
} // namespace

void XRegisterImagingClasses()
{
    XMemoryHandle::RegisterClass();
    RegisterCreators();
    RegisterDefaultCreators();
    RegisterOldIdentifiers();
    RegisterInheritance();
}
