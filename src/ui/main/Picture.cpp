#include "ui/main/Picture.h"

#include "core/Machine.h"

namespace tvc::ui {

QImage ComposedPicture(Machine&) {
    QImage image(kWindowWidth, kWindowHeight, QImage::Format_RGB888);
    image.fill(Qt::black);
    return image;
}

QRect PicDRect(const Machine& m) {
    const int32_t* r = m.crtc.CrtcReg;
    return QRect((83 - r[2]) * 8, (r[5] - r[7] * 4) * 2 + 572, r[1] * 8, r[6] * 8);
}

} // namespace tvc::ui
