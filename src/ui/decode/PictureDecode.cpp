#include "ui/decode/PictureDecode.h"

#include <QImage>
#include <QImageReader>
#include <QString>

namespace tvc {

std::optional<PixelGrid> DecodePicture(const std::string& path, int32_t background) {
    QImageReader reader(QString::fromStdString(path));
    // The header's claim is checked before a pixel is decoded, and the
    // reader itself refuses to allocate more than the limit.
    reader.setAllocationLimit(256);
    const QSize size = reader.size();
    if (size.isValid() && (size.width() > kMaxPictureSide || size.height() > kMaxPictureSide))
        return std::nullopt;
    QImage image;
    if (!reader.read(&image) || image.isNull()) return std::nullopt;
    if (image.width() > kMaxPictureSide || image.height() > kMaxPictureSide) return std::nullopt;
    image = image.convertToFormat(QImage::Format_ARGB32);
    PixelGrid g;
    g.width = image.width();
    g.height = image.height();
    g.background = background;
    g.pixels.resize(static_cast<size_t>(g.width) * static_cast<size_t>(g.height));
    const int br = background & 0xFF, bg = (background >> 8) & 0xFF, bb = (background >> 16) & 0xFF;
    auto over = [](int c, int b, int a) { return (c * a + b * (255 - a) + 127) / 255; };
    for (int y = 0; y < g.height; ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < g.width; ++x) {
            const QRgb p = line[x];
            const int a = qAlpha(p);
            const int r = over(qRed(p), br, a), gr = over(qGreen(p), bg, a),
                      b = over(qBlue(p), bb, a);
            g.pixels[static_cast<size_t>(y) * static_cast<size_t>(g.width) +
                     static_cast<size_t>(x)] = r | gr << 8 | b << 16;
        }
    }
    return g;
}

} // namespace tvc
