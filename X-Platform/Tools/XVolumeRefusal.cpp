#include "XVolumeRefusal.h"

#include "XException.h"
#include "XImagingErrors.h"
#include "XVolume.h"

void XRefuseVolume(const XVolume & aVolume)
{
    throw XException(kErrVolumeTypeRefused,
                     "this tool does not handle volumes of the type " + aVolume.GetDescription().GetStdString());
}
