#pragma once

// The maker's web site: a name under the reserved example domain, so that no real site is named.
// The About links, the version request and the Update window's download page all go there.
constexpr const char* makerHost = "www.fernbridge.example";

// This program's version, compared byte by byte with the text the web site offers.
constexpr const char* programVersion = "1.0";
