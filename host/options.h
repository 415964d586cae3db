#pragma once

#include <chrono>
#include <stdexcept>
#include <string>

namespace kestrel {

// A command line that makes no sense; the text says why.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The command line, checked: paths are absolute, and what must exist does.
struct Options {
    std::string page_uri;
    std::string resources;  // the file's text
    std::string extension_directory;
    std::string install_root;  // "" if not given
    std::string home;          // "" for a temporary one
    std::string transcript;    // "" for none
    std::string screenshot;    // "" for none
    bool call_everything = false;
    std::chrono::seconds timeout{60};
    bool show_version = false;  // everything else is unchecked then
};

// Throws UsageError. Prints help and ends the process if asked to.
Options parse_options(int argc, char** argv);

}  // namespace kestrel
