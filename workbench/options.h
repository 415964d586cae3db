#pragma once

#include <chrono>
#include <string>

#include "workbench/argument_checks.h"

namespace kestrel {

// The command line, checked: paths are absolute, and what must exist does.
struct Options {
    std::string page_uri;
    std::string resources;  // the file's text
    std::string extension_directory;
    std::string install_root;  // "" if not given
    std::string home;          // of the web processes; "" for a temporary one
    std::string user_home;     // of whoever runs the workbench
    std::string data;          // the directory of the database; "" for a temporary one
    std::string locale;        // "" for the user's
    std::string transcript;    // "" for none
    bool has_sandbox = true;
    bool show_version = false;  // everything else is unchecked then

    bool is_headless = false;
    // Used in headless runs only.
    std::string script;            // the file's text
    bool call_everything = false;  // instead of a script
    bool agrees = false;           // to everything the page asks
    std::string screenshot;        // "" for none
    std::chrono::seconds timeout{60};
};

// Throws UsageError. Prints help and ends the process if asked to.
Options parse_options(int argc, const char* const* argv);

// Throws UsageError when one message cannot carry both, each with its NUL.
void check_page_fits(const std::string& page_uri, const std::string& resources);

}  // namespace kestrel
