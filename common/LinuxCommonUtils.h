#pragma once

#include <string>

// The client family's Linux utilities: static members only, no state, nothing thrown for missing
// files or unreadable links. Texts are bytes as the system gives them, UTF-8 in practice. Any
// thread, as long as no thread changes the environment at the same time.
class [[gnu::visibility("default")]] LinuxCommonUtils {
  public:
    // The value of HOME; if unset, the home directory of the password entry of the calling user;
    // "" when there is none.
    static std::string getHomeDir();

    // The full path of the running executable, cut to 4095 bytes; "<unknown>" when it cannot be
    // read.
    static std::string GetModulePath();

    // Whether `path` names anything that stat can see, of any kind.
    static bool ifFileExists(std::string & path);

    // Whether `root` is a complete install root: it holds every marker file of the client. False
    // for "", without touching the file system.
    static bool ifValidQUOROOT(std::string root);

    // The client's install root: the first valid one of QUOROOT, the executable's directory, that
    // directory's parent if it is called "util", /opt/Veltrane/QUOClient,
    // <home>/QUOClient/<platform directory> and /usr/lib/QUOClient. Searched afresh on every call.
    // "" when none is valid, after "No valid QUOROOT directory found\n" on standard error.
    static std::string getQUOROOT();
};
