#include "ui/main/Picture.h"
#include <cstring>

#include "core/Machine.h"
#include "video/Screen.h"

namespace tvc::ui {

QImage ComposedPicture(const Machine& m) {
    const RgbImage frame = ComposeFrame(m);
    QImage image(frame.width, frame.height, QImage::Format_RGB888);
    for (int y = 0; y < frame.height; ++y)
        std::memcpy(image.scanLine(y), frame.rgb.data() + size_t(y) * frame.width * 3,
                    size_t(frame.width) * 3);
    return image;
}

QRect PicDRect(const Machine& m) {
    const PictureBox& p = m.screen.PicD;
    return QRect(p.Left, p.Top, p.Width, p.Height);
}

} // namespace tvc::ui
