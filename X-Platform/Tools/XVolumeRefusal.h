#pragma once
// How a tool refuses a volume of a type that it does not handle: XException 2500 naming the
// type.

class XVolume;

[[noreturn]] void XRefuseVolume(const XVolume & aVolume);
