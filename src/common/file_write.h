// Writing a file the player cannot afford to lose: the text goes to a temporary file beside the
// target, is flushed to the disk, then renamed over the target. A crash or a full disk leaves
// either the old file or the new one, never half of one.
#pragma once

#include <string>

// Replaces the file at `path` with `text`. Returns false, with the old file untouched and no
// temporary file left behind, when any step fails.
bool WriteFileSafely(const std::string& path, const std::string& text);
