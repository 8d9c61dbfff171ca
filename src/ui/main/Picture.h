// The machine's picture as the main window shows it: the whole window
// content (border behind, the TVC picture placed where the CRTC puts it).
#pragma once

#include <QImage>
#include <QRect>

namespace tvc {
class Machine;
}

namespace tvc::ui {

// Size of the window content in the machine's own pixels.
constexpr int kWindowWidth = 648;
constexpr int kWindowHeight = 640;

QImage ComposedPicture(Machine& m);

// Where the picture box PicD stands inside the window content.
QRect PicDRect(const Machine& m);

} // namespace tvc::ui
