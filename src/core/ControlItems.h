// Form controls by name, as "FORM.NAME" or "FORM.NAME(i)" for an element of
// a control array: one table that the command line and the panels share.
// A chip whose renderer reads a control adds a row here.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/Controls.h"

namespace tvc {

struct ControlItem {
    const char* name; // "Fsaa.Check2"
    int32_t count;    // 0: a single control; otherwise elements 0 to count - 1
    int32_t lo, hi;   // the values it takes
    void (*set)(Controls& c, int32_t index, int32_t value);
    int32_t (*get)(const Controls& c, int32_t index);
};

// A check box: 0 or 1.
template <auto Form, auto Field> constexpr ControlItem CheckItem(const char* name) {
    return {name,
            0,
            0,
            1,
            [](Controls& c, int32_t, int32_t v) { (c.*Form).*Field = v != 0; },
            [](const Controls& c, int32_t) { return int32_t((c.*Form).*Field); }};
}

// A single integer control (a scroll bar).
template <auto Form, auto Field>
constexpr ControlItem ValueItem(const char* name, int32_t lo, int32_t hi) {
    return {name,
            0,
            lo,
            hi,
            [](Controls& c, int32_t, int32_t v) { (c.*Form).*Field = v; },
            [](const Controls& c, int32_t) { return int32_t((c.*Form).*Field); }};
}

// One element of a control array of integers (check boxes, scroll bars).
template <auto Form, auto Field, int32_t N>
constexpr ControlItem ArrayItem(const char* name, int32_t lo, int32_t hi) {
    return {name,
            N,
            lo,
            hi,
            [](Controls& c, int32_t i, int32_t v) { ((c.*Form).*Field)[i] = v; },
            [](const Controls& c, int32_t i) { return int32_t(((c.*Form).*Field)[i]); }};
}

std::span<const ControlItem> ControlItems();

// A control as named on the command line, with its element index (0 for a
// single control).
struct ControlRef {
    const ControlItem* item;
    int32_t index;
};

// Finds "FORM.NAME" or "FORM.NAME(i)"; no value for an unknown name or an
// index out of the array.
std::optional<ControlRef> FindControl(std::string_view text);

// Sets `text` = `value`; false with `error` set when the name or the value
// does not fit.
bool SetControl(Controls& c, std::string_view text, int64_t value, std::string& error);

} // namespace tvc
