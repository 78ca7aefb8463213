/// \file
/// The library's version, for code that must compile against more than one release.
///
///   #if ZR_VERSION >= 200  // 0.2.0 or later
///
/// ZR_VERSION is MAJOR * 10000 + MINOR * 100 + PATCH (0.1.0 is 100, 1.2.3 is 10203).
/// Under 0.x a new minor version may change the interface; from 1.0 on only a new major
/// version does. The build checks that these numbers are the project's version.
#pragma once

#define ZR_VERSION_MAJOR 0
#define ZR_VERSION_MINOR 1
#define ZR_VERSION_PATCH 0
#define ZR_VERSION (ZR_VERSION_MAJOR * 10000 + ZR_VERSION_MINOR * 100 + ZR_VERSION_PATCH)
/// The same version as text, "MAJOR.MINOR.PATCH".
#define ZR_VERSION_STRING "0.1.0"
