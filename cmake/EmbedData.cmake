# Compiles data files into the program: writes a C++ source with one byte
# array per file and EmbeddedResource(), which finds a file by its name
# without extension, ignoring case (as resource names are matched).
#
#   cmake -DOUT=<file.cpp> -DFILES=<a;b;...> -P EmbedData.cmake
#
# The bytes go in unchanged, line ends and all.
set(arrays "")
set(entries "")
set(index 0)
string(REPEAT "0x..," 20 row)
foreach(path IN LISTS FILES)
    get_filename_component(name "${path}" NAME_WE)
    file(READ "${path}" hex HEX)
    string(LENGTH "${hex}" digits)
    math(EXPR size "${digits} / 2")
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
    string(REGEX REPLACE "(${row})" "\\1\n" bytes "${bytes}")
    string(APPEND arrays "const unsigned char kData${index}[] = {\n${bytes}0};\n\n")
    string(APPEND entries "    {\"${name}\", kData${index}, ${size}},\n")
    math(EXPR index "${index} + 1")
endforeach()

set(source "// Generated from src/data at build time; do not edit.
#include \"data/Embedded.h\"

#include <cctype>

namespace tvc {
namespace {

${arrays}struct Entry {
    std::string_view name;
    const unsigned char* data;
    size_t size;
};

const Entry kEntries[] = {
${entries}    {{}, nullptr, 0},
};

bool SameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) !=
            std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

} // namespace

std::optional<std::string_view> EmbeddedResource(std::string_view name) {
    for (const Entry& e : kEntries)
        if (e.data && SameName(e.name, name))
            return std::string_view(reinterpret_cast<const char*>(e.data), e.size);
    return std::nullopt;
}

} // namespace tvc
")

# Rewrite only on change, so that an unchanged table does not rebuild the core.
file(WRITE "${OUT}.new" "${source}")
execute_process(COMMAND "${CMAKE_COMMAND}" -E copy_if_different "${OUT}.new" "${OUT}")
file(REMOVE "${OUT}.new")
