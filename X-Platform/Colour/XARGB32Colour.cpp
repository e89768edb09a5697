#include "XARGB32Colour.h"

void XWriteARGB32(XStream & aStream, const XARGB32Colour & aColour)
{
    aStream.WriteARGB32(aColour.GetARGB());
}

XARGB32Colour XReadARGB32(XStream & aStream)
{
    return XARGB32Colour::FromARGB(aStream.ReadARGB32());
}
