#include "XBGRA32Volume.h"

#include <typeinfo>

#include "XBGRA32ImageRenderer.h"

XBGRA32Volume::XBGRA32Volume() : XColourVolume<XBGRA32Colour>(X3DRect())
{
    AttachPlaneRenderer(new XBGRA32ImageRenderer());
}

XBGRA32Volume::XBGRA32Volume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth)
    : XColourVolume<XBGRA32Colour>(aWidth, aHeight, aDepth)
{
    AttachPlaneRenderer(new XBGRA32ImageRenderer());
}

XBGRA32Volume::XBGRA32Volume(const X3DRect & aBounds) : XColourVolume<XBGRA32Colour>(aBounds)
{
    AttachPlaneRenderer(new XBGRA32ImageRenderer());
}

XBGRA32Volume::XBGRA32Volume(XStream & aStream) : XColourVolume<XBGRA32Colour>(aStream)
{
    AttachPlaneRenderer(new XBGRA32ImageRenderer());
}

bool XBGRA32Volume::IsPlaneRendererSupported(const XImageRenderer & aRenderer) const
{
    return typeid(aRenderer) == typeid(XBGRA32ImageRenderer);
}
