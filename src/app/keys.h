// Names of key codes as the binding screen shows them (Windows-1252 text).
#pragma once

#include <string>

// Codes below -1 or above 100 show as one blank.
std::string KeyName(int keyCode);
