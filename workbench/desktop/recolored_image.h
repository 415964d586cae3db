#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace kestrel {

// Together they limit the time for an image to about fifty milliseconds.
inline constexpr std::size_t kMaxImageBytes = std::size_t{2} << 20;
inline constexpr int kMaxImageSide = 512;  // pixels

struct Color {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
};

struct RecoloredImage {
    std::string uri;    // "data:image/png;base64,…", or ""
    std::string error;  // "" on success
};

// Sets every pixel to the colour and keeps its opacity, as for a monochrome icon. An image without
// transparency becomes a filled rectangle.
//
// `uri` is a data URI or the file URI of a regular file on this machine; no network is used. All
// formats that GdkPixbuf reads are supported, SVG if librsvg's loader is installed.
RecoloredImage recolored_image(const std::string& uri, Color color);

}  // namespace kestrel
