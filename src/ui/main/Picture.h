// The machine's picture as the main window shows it: the whole drawing area
// (border behind, the TVC picture placed where the CRTC puts it).
#pragma once

#include <QImage>
#include <QRect>

namespace tvc {
class Machine;
}

namespace tvc::ui {

// The main window's size as the machine's software knows it; the full-screen
// view keeps its proportions.
constexpr int kMainWindowWidth = 648;
constexpr int kMainWindowHeight = 640;

QImage ComposedPicture(const Machine& m);

// Where the picture box PicD stands inside the drawing area.
QRect PicDRect(const Machine& m);

} // namespace tvc::ui
