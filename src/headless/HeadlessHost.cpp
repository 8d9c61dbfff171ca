#include "headless/HeadlessHost.h"

#include <iostream>

namespace tvc::headless {

void HeadlessHost::MessageBox(std::string_view text, std::string_view title, MsgKind) {
    std::cerr << "tvc-headless: [" << title << "] " << text << '\n';
}

void HeadlessHost::Fatal(std::string_view text, std::string_view title) {
    std::cerr << "tvc-headless: fatal: [" << title << "] " << text << '\n';
}

} // namespace tvc::headless
