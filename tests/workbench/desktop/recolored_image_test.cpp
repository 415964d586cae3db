#include "workbench/desktop/recolored_image.h"

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstring>
#include <fstream>
#include <ostream>
#include <vector>

#include "tests/support/temporary_directory.h"
#include "workbench/desktop/glib_handles.h"
#include "workbench/desktop/image_source.h"

namespace kestrel::testing {
namespace {

using namespace std::string_literals;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;
using ::testing::StartsWith;

using Image = ObjectHandle<GdkPixbuf>;

constexpr Color kColor{.red = 63, .green = 94, .blue = 251};

struct Pixel {
    int red, green, blue, alpha;
    bool operator==(const Pixel&) const = default;
};

void PrintTo(const Pixel& pixel, std::ostream* out) {
    *out << pixel.red << ',' << pixel.green << ',' << pixel.blue << ',' << pixel.alpha;
}

// A PNG of these pixels, with or without an alpha channel.
std::string png_of(const std::vector<Pixel>& pixels, int width, bool has_alpha = true) {
    const int height = static_cast<int>(pixels.size()) / width;
    const Image image(
        gdk_pixbuf_new(GDK_COLORSPACE_RGB, has_alpha ? TRUE : FALSE, 8, width, height));
    const int padding = gdk_pixbuf_get_rowstride(image.get()) - width * (has_alpha ? 4 : 3);
    guchar* next = gdk_pixbuf_get_pixels(image.get());
    int column = 0;
    for (const Pixel& pixel : pixels) {
        *next++ = static_cast<guchar>(pixel.red);
        *next++ = static_cast<guchar>(pixel.green);
        *next++ = static_cast<guchar>(pixel.blue);
        if (has_alpha) *next++ = static_cast<guchar>(pixel.alpha);
        if (++column % width == 0) next += padding;
    }
    char* png = nullptr;
    gsize size = 0;
    EXPECT_TRUE(gdk_pixbuf_save_to_buffer(image.get(), &png, &size, "png", nullptr, nullptr));
    const GlibText owner(png);
    return {png, size};
}

std::string base64_uri(const std::string& bytes, const std::string& type = "image/png") {
    const GlibText text(
        g_base64_encode(reinterpret_cast<const guchar*>(bytes.data()), bytes.size()));
    return "data:" + type + ";base64," + text.get();
}

// The pixels of a PNG data URI, row by row.
std::vector<Pixel> pixels_of(const std::string& uri) {
    const std::string start = "data:image/png;base64,";
    EXPECT_THAT(uri, StartsWith(start));
    gsize size = 0;
    const GlibBinary bytes(g_base64_decode(uri.c_str() + start.size(), &size));
    const ObjectHandle<GdkPixbufLoader> loader(gdk_pixbuf_loader_new_with_type("png", nullptr));
    EXPECT_TRUE(gdk_pixbuf_loader_write(loader.get(), bytes.get(), size, nullptr));
    EXPECT_TRUE(gdk_pixbuf_loader_close(loader.get(), nullptr));
    GdkPixbuf* const image = gdk_pixbuf_loader_get_pixbuf(loader.get());
    EXPECT_TRUE(gdk_pixbuf_get_has_alpha(image));
    std::vector<Pixel> pixels;
    for (int row = 0; row < gdk_pixbuf_get_height(image); ++row) {
        const guchar* next =
            gdk_pixbuf_get_pixels(image) + std::ptrdiff_t{row} * gdk_pixbuf_get_rowstride(image);
        for (int column = 0; column < gdk_pixbuf_get_width(image); ++column, next += 4) {
            pixels.push_back({next[0], next[1], next[2], next[3]});
        }
    }
    return pixels;
}

std::vector<Pixel> recolored(const std::string& uri) {
    const RecoloredImage image = recolored_image(uri, kColor);
    EXPECT_EQ(image.error, "");
    return pixels_of(image.uri);
}

std::string error_of(const std::string& uri) {
    const RecoloredImage image = recolored_image(uri, kColor);
    EXPECT_EQ(image.uri, "");
    return image.error;
}

class RecoloredImageTest : public ::testing::Test {
  protected:
    // Returns its URI. The blank in the name is escaped.
    std::string write_file(const std::string& bytes) const {
        std::ofstream(directory.path() + "/an image", std::ios::binary) << bytes;
        return "file://" + directory.path() + "/an%20image";
    }

    TemporaryDirectory directory;
};

TEST_F(RecoloredImageTest, SetsTheColorAndKeepsOpacity) {
    const std::string png = png_of({{0, 0, 0, 255}, {255, 255, 255, 128}, {9, 8, 7, 1}, {}}, 4);
    const auto expected = ElementsAre(Pixel{63, 94, 251, 255}, Pixel{63, 94, 251, 128},
                                      Pixel{63, 94, 251, 1}, Pixel{63, 94, 251, 0});
    EXPECT_THAT(recolored(write_file(png)), expected);
    EXPECT_THAT(recolored(base64_uri(png)), expected);
}

TEST_F(RecoloredImageTest, FillsAnImageWithoutTransparency) {
    const std::string png = png_of({{1, 2, 3, 255}, {250, 251, 252, 255}}, 2, false);
    EXPECT_THAT(recolored(base64_uri(png)),
                ElementsAre(Pixel{63, 94, 251, 255}, Pixel{63, 94, 251, 255}));
}

TEST_F(RecoloredImageTest, ReadsSvg) {
    const std::string svg =
        "<svg xmlns='http://www.w3.org/2000/svg' width='2' height='2'>"
        "<rect width='2' height='1' fill='red'/></svg>";
    const auto expected = ElementsAre(Pixel{63, 94, 251, 255}, Pixel{63, 94, 251, 255},
                                      Pixel{63, 94, 251, 0}, Pixel{63, 94, 251, 0});
    EXPECT_THAT(recolored("data:image/svg+xml,"s + svg), expected);
    const GlibText escaped(g_uri_escape_string(svg.c_str(), nullptr, FALSE));
    EXPECT_THAT(recolored("DATA:image/svg+xml;charset=utf-8,"s + escaped.get()), expected);
    EXPECT_THAT(recolored(base64_uri(svg, "image/svg+xml")), expected);
    EXPECT_THAT(recolored(write_file(svg)), expected);
}

TEST_F(RecoloredImageTest, LimitsTheSize) {
    const auto svg = [](const std::string& width, const std::string& height) {
        return "data:image/svg+xml,<svg xmlns='http://www.w3.org/2000/svg' width='" + width +
               "' height='" + height + "'/>";
    };
    const std::string error = "the image is larger than 512 by 512 pixels";
    EXPECT_THAT(recolored(svg("512", "512")), SizeIs(512 * 512));
    EXPECT_EQ(error_of(svg("513", "1")), error);
    EXPECT_EQ(error_of(svg("1", "30000")), error);
}

// The headers of these images announce gigabytes.
TEST_F(RecoloredImageTest, RefusesALargeImageBeforeAllocatingIt) {
    std::string png = png_of({{0, 0, 0, 255}}, 1);
    std::memcpy(png.data() + 16, "\0\0\x75\x30\0\0\x75\x30", 8);  // width and height in IHDR
    std::memcpy(png.data() + 29, "\x66\x27\xf8\xba", 4);          // its CRC
    const std::string gif =
        "GIF89a\x30\x75\x30\x75\x80\0\0\0\0\0\xff\xff\xff"
        ",\0\0\0\0\x30\x75\x30\x75\0\x02\x02\x44\x01\0;"s;
    const std::string bmp =
        "BM\x36\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\x30\x75\0\0\x30\x75\0\0"
        "\x01\0\x20\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"s;
    for (const std::string& image : {png, gif, bmp}) {
        EXPECT_EQ(error_of(base64_uri(image)), "the image is larger than 512 by 512 pixels");
    }
}

TEST_F(RecoloredImageTest, RefusesOtherData) {
    EXPECT_NE(error_of(write_file("This is a text, and quite a long one.")), "");
    EXPECT_NE(error_of(write_file("")), "");
    EXPECT_NE(error_of("data:,"), "");
    EXPECT_NE(error_of("data:text/plain,text"), "");
    EXPECT_NE(error_of("data:image/svg+xml,<svg"), "");
}

TEST_F(RecoloredImageTest, RefusesATruncatedImage) {
    std::vector<Pixel> pixels;
    for (int index = 0; index < 100 * 100; ++index) {
        pixels.push_back({index % 251, index % 241, index % 239, index * index % 256});
    }
    const std::string png = png_of(pixels, 100);
    for (std::size_t size : {std::size_t{8}, std::size_t{40}, png.size() / 2, png.size() - 30}) {
        EXPECT_EQ(error_of(write_file(png.substr(0, size))), "the image ends too early") << size;
    }
}

TEST_F(RecoloredImageTest, ReadsLocalFilesOnly) {
    const std::string error = "an image must be a file or a data URI";
    for (const char* uri : {"http://127.0.0.1/a.png", "https://host/a.png", "ftp://host/a.png",
                            "sftp://host/a.png", "resource:///a.png", "square", "/a.png", ""}) {
        EXPECT_EQ(error_of(uri), error) << uri;
    }
    EXPECT_THAT(error_of("file://elsewhere/a.png"),
                HasSubstr("this is not the URI of a file on this machine"));
    EXPECT_THAT(error_of("file:a.png"), HasSubstr("this is not the URI of a file on this machine"));
}

TEST_F(RecoloredImageTest, ReadsRegularFilesOnly) {
    EXPECT_EQ(error_of("file://" + directory.path() + "/missing"),
              directory.path() + "/missing: No such file or directory");
    EXPECT_EQ(error_of("file://" + directory.path()), directory.path() + " is not a file");
    EXPECT_EQ(error_of("file:///dev/zero"), "/dev/zero is not a file");
    const std::string pipe = directory.path() + "/pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(error_of("file://" + pipe), pipe + " is not a file");
}

TEST(ImageSource, RefusesMoreBytesThanTheLimit) {
    const std::string error = "the image is longer than 4 bytes";
    EXPECT_EQ(read_image_source("data:,%61bcd", 4).bytes, "abcd");
    EXPECT_EQ(read_image_source("data:,abcde", 4).error, error);
    EXPECT_EQ(read_image_source("data:,"s + std::string(100, 'x'), 4).error, error);
    EXPECT_EQ(read_image_source(base64_uri("abcd"), 4).bytes, "abcd");
    EXPECT_EQ(read_image_source(base64_uri("abcde"), 4).error, error);

    const TemporaryDirectory directory;
    const std::string path = directory.path() + "/file";
    std::ofstream(path) << "abcd";
    EXPECT_EQ(read_image_source("file://localhost" + path, 4).bytes, "abcd");
    std::ofstream(path) << "abcde";
    EXPECT_EQ(read_image_source("file://" + path, 4).error, error);
}

TEST(ImageSource, DecodesEveryByteOfADataUri) {
    EXPECT_EQ(read_image_source("data:,a%00b,c", 100).bytes, "a\0b,c"s);
    EXPECT_EQ(read_image_source("data:;base64,YQBi%59w%3D%3D", 100).bytes, "a\0bc"s);
    EXPECT_EQ(read_image_source("data:image/png", 100).error, "the data URI has no comma");
    EXPECT_EQ(read_image_source("data:,%zz", 100).error,
              "the data URI is not escaped as it should be");
}

}  // namespace
}  // namespace kestrel::testing
