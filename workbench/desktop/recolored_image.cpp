#include "workbench/desktop/recolored_image.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <span>
#include <string_view>
#include <utility>

#include "workbench/desktop/glib_handles.h"
#include "workbench/desktop/image_source.h"

namespace kestrel {
namespace {

using Pixbuf = ObjectHandle<GdkPixbuf>;

constexpr int kChannels = 4;  // red, green, blue, alpha

// Small, so that little is decoded before a large image is refused.
constexpr std::size_t kLoaderPiece = 4'096;

constexpr std::string_view kPngStart = "\x89PNG\r\n";
constexpr std::string_view kPngEnd = "IEND\xae\x42\x60\x82";

// The loader would treat the missing rest as transparent.
bool is_cut_off(std::string_view bytes) {
    return bytes.starts_with(kPngStart) && bytes.find(kPngEnd) == std::string_view::npos;
}

RecoloredImage not_recolored(std::string why) { return {.uri = {}, .error = std::move(why)}; }

// Size 0 makes the loaders stop before they allocate an image.
void refuse_large(GdkPixbufLoader* loader, int width, int height, gpointer is_too_large) {
    if (width <= kMaxImageSide && height <= kMaxImageSide) return;
    *static_cast<bool*>(is_too_large) = true;
    gdk_pixbuf_loader_set_size(loader, 0, 0);
}

// The image, or null with the reason in `error`.
Pixbuf decoded(std::string_view bytes, std::string& error) {
    bool is_too_large = false;
    const ObjectHandle<GdkPixbufLoader> loader(gdk_pixbuf_loader_new());
    g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(refuse_large), &is_too_large);

    GError* failed = nullptr;
    for (std::string_view rest = bytes; !rest.empty() && failed == nullptr && !is_too_large;) {
        const std::string_view piece = rest.substr(0, kLoaderPiece);
        rest.remove_prefix(piece.size());
        gdk_pixbuf_loader_write(loader.get(), reinterpret_cast<const guchar*>(piece.data()),
                                piece.size(), &failed);
    }
    // A loader must be closed even if it has failed.
    gdk_pixbuf_loader_close(loader.get(), failed == nullptr ? &failed : nullptr);
    const GlibError owner(failed);
    if (is_too_large) {
        const std::string side = std::to_string(kMaxImageSide);
        error = "the image is larger than " + side + " by " + side + " pixels";
        return nullptr;
    }
    GdkPixbuf* const pixbuf = gdk_pixbuf_loader_get_pixbuf(loader.get());
    if (owner || pixbuf == nullptr) {
        error = owner ? owner->message : "this is not an image";
        return nullptr;
    }
    return Pixbuf(gdk_pixbuf_get_has_alpha(pixbuf) != FALSE
                      ? gdk_pixbuf_copy(pixbuf)
                      : gdk_pixbuf_add_alpha(pixbuf, FALSE, 0, 0, 0));
}

void recolor(GdkPixbuf* pixbuf, Color color) {
    guint size = 0;
    const std::span<guchar> pixels(gdk_pixbuf_get_pixels_with_length(pixbuf, &size), size);
    const auto stride = static_cast<std::size_t>(gdk_pixbuf_get_rowstride(pixbuf));
    const auto width = static_cast<std::size_t>(gdk_pixbuf_get_width(pixbuf)) * kChannels;
    const auto height = static_cast<std::size_t>(gdk_pixbuf_get_height(pixbuf));
    for (std::size_t row = 0; row < height; ++row) {
        const std::span<guchar> line = pixels.subspan(row * stride, width);
        for (std::size_t pixel = 0; pixel < width; pixel += kChannels) {
            line[pixel] = color.red;
            line[pixel + 1] = color.green;
            line[pixel + 2] = color.blue;
        }
    }
}

RecoloredImage encoded(GdkPixbuf* pixbuf) {
    char* png = nullptr;
    gsize size = 0;
    GError* failed = nullptr;
    // The fastest level compresses a single colour as well, in a sixth of the time.
    gdk_pixbuf_save_to_buffer(pixbuf, &png, &size, "png", &failed, "compression", "1", nullptr);
    const GlibText png_owner(png);
    const GlibError error_owner(failed);
    if (failed != nullptr) return not_recolored(failed->message);
    const GlibText base64(g_base64_encode(reinterpret_cast<const guchar*>(png), size));
    return {.uri = std::string("data:image/png;base64,") + base64.get(), .error = {}};
}

}  // namespace

RecoloredImage recolored_image(const std::string& uri, Color color) {
    const ImageSource source = read_image_source(uri, kMaxImageBytes);
    if (!source.error.empty()) return not_recolored(source.error);
    if (is_cut_off(source.bytes)) return not_recolored("the image ends too early");
    std::string error;
    const Pixbuf pixbuf = decoded(source.bytes, error);
    if (!pixbuf) return not_recolored(error);
    recolor(pixbuf.get(), color);
    return encoded(pixbuf.get());
}

}  // namespace kestrel
