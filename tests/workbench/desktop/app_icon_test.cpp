#include "workbench/desktop/app_icon.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "tests/support/temporary_directory.h"
#include "workbench/desktop/glib_handles.h"

namespace kestrel::testing {
namespace {

namespace fs = std::filesystem;

// Neither the theme nor icon_data_uri decodes the file.
class AppIconTest : public ::testing::Test {
  protected:
    AppIconTest() {
        write("hicolor/index.theme",
              "[Icon Theme]\nName=Test\nDirectories=48,scalable\n"
              "[48]\nSize=48\n[scalable]\nSize=128\nMinSize=64\nMaxSize=512\nType=Scalable\n");
        write("hicolor/48/editor.png", "small");
        write("hicolor/scalable/editor.svg", "large");
        write("hicolor/48/old.xpm", "old");
        write("hicolor/48/fits.png", std::string(kMaxIconBytes, 'x'));
        write("hicolor/48/heavy.png", std::string(kMaxIconBytes + 1, 'x'));
        write("own icon.jpg", "photo");
        write("notes.txt", "text");
        const std::string path = directory.path();
        const char* paths[] = {path.c_str()};
        gtk_icon_theme_set_search_path(theme.get(), paths, 1);
        gtk_icon_theme_set_custom_theme(theme.get(), "hicolor");
    }

    void write(const std::string& name, const std::string& content) const {
        const fs::path path = fs::path(directory.path()) / name;
        fs::create_directories(path.parent_path());
        std::ofstream(path) << content;
    }

    std::string data_uri(const std::string& icon, int size = 48) const {
        return icon_data_uri(theme.get(), icon, size);
    }

    TemporaryDirectory directory;
    ObjectHandle<GtkIconTheme> theme{gtk_icon_theme_new()};
};

TEST_F(AppIconTest, UsesTheThemesFileForTheSize) {
    EXPECT_EQ(data_uri("editor"), "data:image/png;base64,c21hbGw=");
    EXPECT_EQ(data_uri("editor", 256), "data:image/svg+xml;base64,bGFyZ2U=");
    EXPECT_EQ(data_uri(". GThemedIcon missing editor"), "data:image/png;base64,c21hbGw=");
}

TEST_F(AppIconTest, AcceptsTheNameOfAFile) {
    EXPECT_EQ(data_uri(directory.path() + "/own icon.jpg"), "data:image/jpeg;base64,cGhvdG8=");
}

TEST_F(AppIconTest, IsEmptyWithoutAnIconThatBrowsersCanShow) {
    for (const std::string icon : {"", "missing", ". nonsense", "old", "http://127.0.0.1/a.png"}) {
        EXPECT_EQ(data_uri(icon), "") << icon;
    }
    EXPECT_EQ(data_uri(directory.path() + "/missing.png"), "");
    EXPECT_EQ(data_uri(directory.path() + "/notes.txt"), "");
}

TEST_F(AppIconTest, IsEmptyForAFileOverTheLimit) {
    EXPECT_NE(data_uri("fits"), "");
    EXPECT_EQ(data_uri("heavy"), "");
}

}  // namespace
}  // namespace kestrel::testing
