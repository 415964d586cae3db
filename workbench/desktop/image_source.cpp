#include "workbench/desktop/image_source.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

#include "base/file_descriptor.h"
#include "workbench/desktop/glib_handles.h"

namespace kestrel {
namespace {

constexpr std::string_view kBase64 = ";base64";

ImageSource no_image(std::string why) { return {.bytes = {}, .error = std::move(why)}; }

ImageSource too_long_image(std::size_t limit) {
    return no_image("the image is longer than " + std::to_string(limit) + " bytes");
}

ImageSource read_data(const std::string& uri, std::size_t limit) {
    const std::size_t comma = uri.find(',');
    if (comma == std::string::npos) return no_image("the data URI has no comma");
    // A byte takes at most three characters.
    if (uri.size() - comma > 3 * limit) return too_long_image(limit);

    const GlibBytes unescaped(g_uri_unescape_bytes(
        uri.c_str() + comma + 1, static_cast<gssize>(uri.size() - comma - 1), nullptr, nullptr));
    if (!unescaped) return no_image("the data URI is not escaped as it should be");
    gsize size = 0;
    const auto* const data = static_cast<const char*>(g_bytes_get_data(unescaped.get(), &size));
    std::string bytes(data == nullptr ? "" : data, size);

    if (std::string_view(uri).substr(0, comma).ends_with(kBase64)) {
        const GlibBinary decoded(g_base64_decode(bytes.c_str(), &size));
        bytes.assign(reinterpret_cast<const char*>(decoded.get()), size);
    }
    if (bytes.size() > limit) return too_long_image(limit);
    return {.bytes = std::move(bytes), .error = {}};
}

ImageSource read_file(const std::string& uri, std::size_t limit) {
    char* host = nullptr;
    const GlibText path(g_filename_from_uri(uri.c_str(), &host, nullptr));
    const GlibText host_owner(host);
    if (!path || (host != nullptr && std::strcmp(host, "localhost") != 0)) {
        return no_image("this is not the URI of a file on this machine: " + uri);
    }
    // O_NONBLOCK: opening or reading a pipe or a device could block.
    const FileDescriptor file(open(path.get(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file.is_open() || fstat(file.get(), &status) == -1) {
        return no_image(std::string(path.get()) + ": " + g_strerror(errno));
    }
    if (!S_ISREG(status.st_mode)) return no_image(std::string(path.get()) + " is not a file");
    if (std::cmp_greater(status.st_size, limit)) return too_long_image(limit);

    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    const ssize_t got = read(file.get(), bytes.data(), bytes.size());
    if (got == -1) return no_image(std::string(path.get()) + ": " + g_strerror(errno));
    bytes.resize(static_cast<std::size_t>(got));
    return {.bytes = std::move(bytes), .error = {}};
}

}  // namespace

ImageSource read_image_source(const std::string& uri, std::size_t limit) {
    const GlibText scheme(g_uri_parse_scheme(uri.c_str()));
    if (scheme && g_ascii_strcasecmp(scheme.get(), "data") == 0) return read_data(uri, limit);
    if (scheme && g_ascii_strcasecmp(scheme.get(), "file") == 0) return read_file(uri, limit);
    return no_image("an image must be a file or a data URI");
}

}  // namespace kestrel
