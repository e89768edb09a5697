#pragma once
// Enters the library's storable classes into the class registry: their creators, descriptions,
// old identifiers and inheritance. An application calls it once at start-up, after the
// foundation is up and before it reads any stream; without it no stored object can be made.
// The library itself never calls it. Later calls register nothing new.

void XRegisterImagingClasses();
