#include "headless/PngWriter.h"

#include <png.h>

namespace tvc::headless {

bool WritePng(const std::string& file, const RgbImage& image, std::string& error) {
    if (image.width <= 0 || image.height <= 0 ||
        image.rgb.size() != static_cast<size_t>(image.width) * image.height * 3) {
        error = "empty picture";
        return false;
    }
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = static_cast<png_uint_32>(image.width);
    png.height = static_cast<png_uint_32>(image.height);
    png.format = PNG_FORMAT_RGB;
    const bool ok = png_image_write_to_file(&png, file.c_str(), 0, image.rgb.data(),
                                            image.width * 3, nullptr) != 0;
    if (!ok) error = png.message;
    png_image_free(&png);
    return ok;
}

} // namespace tvc::headless
