// The files of src/data, compiled into the program at build time, so that
// the tables travel inside the program and need no file beside it.
#pragma once

#include <optional>
#include <string_view>

namespace tvc {

// The bytes of the data file with this name (without its extension; case
// does not matter), or nothing when there is no such file.
std::optional<std::string_view> EmbeddedResource(std::string_view name);

} // namespace tvc
