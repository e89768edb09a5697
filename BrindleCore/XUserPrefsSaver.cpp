#include "XUserPrefsSaver.h"

#include "XException.h"
#include "XSessionLogManager.h"
#include "XUserFolders.h"

XUserPrefsSaver::XUserPrefsSaver() : XPrefsSaver(GetUserPrefsFileSpec())
{
    if (GetFileSpec().GetPath().IsEmpty())
        return;
    try
    {
        Load();
    }
    catch (const XException & anException)
    {
        XSessionLogManager::AddEntry(XString("preferences not read: ") + anException.what());
    }
}

XUserPrefsSaver::~XUserPrefsSaver() = default;

XFileSpec XUserPrefsSaver::GetUserPrefsFileSpec()
{
    return XFileSpec(XString(
        XUserFolders::FindUserFile("BRINDLE_PREFS_FILE", "XDG_CONFIG_HOME", ".config", "preferences")));
}
