#include "app/keys.h"

#include <array>

namespace {

// Codes 0 to 100 in keyboard order. The digit row is named by its unshifted French characters
// (à & é " ' ( - è _ ç), the accents as Windows-1252 bytes.
const std::array<const char*, 101> kNames = {
    "A",         "B",         "C",       "D",      "E",         "F",         "G",         "H",
    "I",         "J",         "K",       "L",      "M",         "N",         "O",         "P",
    "Q",         "R",         "S",       "T",      "U",         "V",         "W",         "X",
    "Y",         "Z",         "\xE0",    "&",      "\xE9",      "\"",        "'",         "(",
    "-",         "\xE8",      "_",       "\xE7",   "Escape",    "L Control", "L Shift",   "L Alt",
    "L Windows", "R Control", "R Shift", "R Alt",  "R Windows", "Menu",      "[",         "]",
    ";",         ",",         ".",       "'",      "/",         "\\",        "~",         "=",
    "-",         "Space",     "Enter",   "Return", "Tab",       "Page Up",   "Page Down", "End",
    "Home",      "Insert",    "Delete",  "Add",    "-",         "*",         "/",         "Left",
    "Right",     "Up",        "Down",    "Num 0",  "Num 1",     "Num 2",     "Num 3",     "Num 4",
    "Num 5",     "Num 6",     "Num 7",   "Num 8",  "Num 9",     "F1",        "F2",        "F3",
    "F4",        "F5",        "F6",      "F7",     "F8",        "F9",        "F10",       "F11",
    "F12",       "F13",       "F14",     "F15",    "Pause"};

}  // namespace

std::string KeyName(int keyCode) {
    if (keyCode == -1) return "Unknown";
    if (keyCode < -1 || keyCode > 100) return " ";
    return kNames[keyCode];
}
