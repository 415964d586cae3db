#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace kestrel {

// Together they keep the recolouring of an image below some fifty milliseconds.
inline constexpr std::size_t kMaxImageBytes = std::size_t{2} << 20;
inline constexpr int kMaxImageSide = 512;  // pixels

struct Color {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
};

struct RecoloredImage {
    std::string uri;    // "data:image/png;base64,…", or ""
    std::string error;  // why there is none, or ""
};

// The image in one colour: every pixel takes it and keeps how opaque it is, as an icon of one
// colour is to be shown. An image without transparency so becomes a rectangle.
//
// `uri` is a data URI or the file URI of a regular file on this machine; nothing is fetched from a
// network. The format is whatever GdkPixbuf reads, SVG if librsvg's loader is installed.
RecoloredImage recolored_image(const std::string& uri, Color color);

}  // namespace kestrel
