#include "core/ControlItems.h"

#include <charconv>

namespace tvc {

namespace {

constexpr ControlItem kItems[] = {
    CheckItem<&Controls::Fsaa, &FsaaControls::Check2>("Fsaa.Check2"),
    CheckItem<&Controls::Fsaa, &FsaaControls::Check11>("Fsaa.Check11"),
    CheckItem<&Controls::Fsaa, &FsaaControls::Check12>("Fsaa.Check12"),
    CheckItem<&Controls::FSN76489, &FSN76489Controls::Check3>("FSN76489.Check3"),
    // The hand controls that the "Manual" ticks write into the chips.
    ArrayItem<&Controls::Fsaa, &FsaaControls::HScroll4, 6>("Fsaa.HScroll4", 0, 255),
    ArrayItem<&Controls::Fsaa, &FsaaControls::HScroll3, 6>("Fsaa.HScroll3", 0, 7),
    ArrayItem<&Controls::Fsaa, &FsaaControls::HScroll1, 6>("Fsaa.HScroll1", 0, 15),
    ArrayItem<&Controls::Fsaa, &FsaaControls::HScroll2, 6>("Fsaa.HScroll2", 0, 15),
    ArrayItem<&Controls::Fsaa, &FsaaControls::Check1, 6>("Fsaa.Check1", 0, 1),
    ArrayItem<&Controls::Fsaa, &FsaaControls::Check3, 6>("Fsaa.Check3", 0, 1),
    ArrayItem<&Controls::Fsaa, &FsaaControls::HScroll5, 2>("Fsaa.HScroll5", 0, 3),
    ArrayItem<&Controls::Fsaa, &FsaaControls::HScroll6, 2>("Fsaa.HScroll6", 0, 7),
    ArrayItem<&Controls::Fsaa, &FsaaControls::Check7, 2>("Fsaa.Check7", 0, 1),
    ArrayItem<&Controls::Fsaa, &FsaaControls::Check4, 2>("Fsaa.Check4", 0, 1),
    ArrayItem<&Controls::Fsaa, &FsaaControls::Check5, 2>("Fsaa.Check5", 0, 1),
    ArrayItem<&Controls::Fsaa, &FsaaControls::Check6, 2>("Fsaa.Check6", 0, 1),
    CheckItem<&Controls::Fsaa, &FsaaControls::Check8>("Fsaa.Check8"),
    CheckItem<&Controls::Fsaa, &FsaaControls::Check9>("Fsaa.Check9"),
    // One range for the tones and the noise rate: the tick holds each to its own.
    ArrayItem<&Controls::FSN76489, &FSN76489Controls::HScroll3, 4>("FSN76489.HScroll3", 0, 1023),
    ArrayItem<&Controls::FSN76489, &FSN76489Controls::HScroll4, 4>("FSN76489.HScroll4", 0, 15),
    CheckItem<&Controls::FSN76489, &FSN76489Controls::Check2>("FSN76489.Check2"),
    ArrayItem<&Controls::FYM3812, &FYM3812Controls::Check1, 9>("FYM3812.Check1", 0, 1),
    CheckItem<&Controls::FYM3812, &FYM3812Controls::Check3>("FYM3812.Check3"),
    ArrayItem<&Controls::FYM2413, &FYM2413Controls::Check7, 9>("FYM2413.Check7", 0, 1),
    CheckItem<&Controls::FSID, &FSIDControls::Check1>("FSID.Check1"),
    CheckItem<&Controls::FSID, &FSIDControls::Check2>("FSID.Check2"),
    CheckItem<&Controls::FSID, &FSIDControls::Check3>("FSID.Check3"),
    CheckItem<&Controls::FSID, &FSIDControls::Check4>("FSID.Check4"),
    CheckItem<&Controls::FSID, &FSIDControls::Check5>("FSID.Check5"),
    CheckItem<&Controls::FSID, &FSIDControls::Check6>("FSID.Check6"),
    CheckItem<&Controls::FSID, &FSIDControls::Check7>("FSID.Check7"),
    CheckItem<&Controls::FSID, &FSIDControls::Check8>("FSID.Check8"),
    ArrayItem<&Controls::FSID, &FSIDControls::Check9, 3>("FSID.Check9", 0, 1),
    CheckItem<&Controls::FSID, &FSIDControls::Check10>("FSID.Check10"),
    ValueItem<&Controls::FSID, &FSIDControls::HScroll1>("FSID.HScroll1", 0, 100),
    ValueItem<&Controls::FSID, &FSIDControls::HScroll2>("FSID.HScroll2", 0, 100),
    ValueItem<&Controls::FSID, &FSIDControls::HScroll3>("FSID.HScroll3", 0, 100),
    ValueItem<&Controls::FSID, &FSIDControls::HScroll4>("FSID.HScroll4", 1, 1200),
    ValueItem<&Controls::FSID, &FSIDControls::HScroll5>("FSID.HScroll5", 1, 1200),
};

} // namespace

std::span<const ControlItem> ControlItems() {
    return kItems;
}

std::optional<ControlRef> FindControl(std::string_view text) {
    std::string_view name = text;
    int32_t index = 0;
    bool indexed = false;
    if (const size_t open = text.find('('); open != std::string_view::npos) {
        if (text.back() != ')') return std::nullopt;
        const std::string_view digits = text.substr(open + 1, text.size() - open - 2);
        const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), index);
        if (ec != std::errc() || end != digits.data() + digits.size() || digits.empty())
            return std::nullopt;
        name = text.substr(0, open);
        indexed = true;
    }
    for (const ControlItem& item : kItems) {
        if (name != item.name) continue;
        if (indexed != (item.count > 0)) return std::nullopt;
        if (indexed && (index < 0 || index >= item.count)) return std::nullopt;
        return ControlRef{&item, index};
    }
    return std::nullopt;
}

bool SetControl(Controls& c, std::string_view text, int64_t value, std::string& error) {
    const auto ref = FindControl(text);
    if (!ref) {
        error = "unknown control '" + std::string(text) + "'";
        return false;
    }
    if (value < ref->item->lo || value > ref->item->hi) {
        error = std::string(text) + " takes " + std::to_string(ref->item->lo) + " to " +
                std::to_string(ref->item->hi);
        return false;
    }
    ref->item->set(c, ref->index, static_cast<int32_t>(value));
    return true;
}

} // namespace tvc
