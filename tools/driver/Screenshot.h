#pragma once
#include <string>

namespace uidriver {

// The whole screen (under Wine: the virtual desktop) as a 24-bit .bmp file.
bool saveScreen(const std::string& path);

}  // namespace uidriver
