#pragma once

#include <cstddef>
#include <ctime>
#include <string>

#pragma GCC visibility push(default)

// The client family's Linux utilities: static members only, nothing is thrown for missing files,
// unreadable links or failing calls. Narrow texts are bytes as the system gives them, UTF-8 in
// practice; wide texts hold one 32-bit character an element. Pointers must not be null unless the
// member says otherwise.
//
// Any thread may call any member, but for drop_capability, as long as no thread changes the
// environment or the locale at the same time.
class LinuxCommonUtils {
  public:
    // ---- Places ----

    // The value of HOME; if unset, the home directory of the password entry of the calling user;
    // "" when there is none.
    static std::string getHomeDir();

    // The value of USER; if unset, the login name of the password entry of the calling user; ""
    // when there is none.
    static std::string getUserName();

    // The user's scratch directory, made if missing (mode 0700 less the umask): <home>/.QUOClient/
    // .tmp. If that cannot be made, /tmp/<user name>, after one line on standard error:
    // "Failed to create quoHome directory inside user home directory.<strerror>.Using /tmp
    // directory." or the same with "quoHome/.tmp directory". Without a home directory or a user
    // name, /tmp itself. Neither existence nor ownership of a directory below /tmp is checked.
    static std::string getUserTmpDir();

    // The full path of the running executable, cut to 4095 bytes; "<unknown>" when it cannot be
    // read.
    static std::string GetModulePath();

    // Whether `path` names anything that stat can see, of any kind.
    static bool ifFileExists(std::string& path);

    // Whether `root` is a complete install root: it holds every marker file of the client. False
    // for "", without touching the file system.
    static bool ifValidQUOROOT(std::string root);

    // The client's install root: the first valid one of QUOROOT, the executable's directory, that
    // directory's parent if it is called "util", /opt/Veltrane/QUOClient,
    // <home>/QUOClient/<platform directory> and /usr/lib/QUOClient. Searched afresh on every call.
    // "" when none is valid, after "No valid QUOROOT directory found\n" on standard error.
    static std::string getQUOROOT();

    // ---- Who this client is ----

    // "Linux".
    static std::wstring GetOsName();

    // The kernel release, as uname has it; "" when uname fails.
    static std::wstring GetOsVersion();

    // The installed product version: what follows the first "=" in the first line (its first 255
    // bytes, up to a NUL) of <install root>/pkginf/Ver.core.<platform directory>, converted as
    // CharToWChar does. "" when there is no such file or no "=" in that line. Read afresh on every
    // call; writes what getQUOROOT writes.
    static std::wstring GetPorticoVersionFromQuoroot();

    // "VeltranePortico/<product version> Linux/<kernel release> M4Class TarnCapable"; an empty
    // version or release goes with its slash. Writes what getQUOROOT writes.
    static std::wstring GetTarnUserAgent();

    // "<source>/<product version>", with "Tarn" for an empty source; an empty version goes with
    // its slash. The version's characters are cut as WCharToChar does. Writes what getQUOROOT
    // writes.
    static std::string GetTarnLaunchSourceUserAgentString(std::string source);

    // Splits `userAgent` at its last slash into `name` and `version`. Without a slash both are the
    // whole text.
    static void GetWebkitUserAgentParamters(std::string userAgent, std::string& name,
                                            std::string& version);

    // ---- One instance of a program per user ----

    // Whether this program must not start: another process with exactly this command line holds
    // the lock `name`, or the lock cannot be read or taken. False when this process has become its
    // owner, which it stays until it ends: nothing is to be released. Asked again, the owner
    // itself gets true.
    //
    // The lock is the file <getUserTmpDir()>/.<name>.lock, holding the owner's process id in 4
    // bytes, native order. A file that is shorter, or names no positive id, no process that this
    // user may signal, or one with another command line, is stale and is taken over. The file is
    // never removed. `name` ends at its first NUL; a slash in it leads into a directory, which must
    // exist, and ".." to the parent directory. The scratch directory may be a symbolic link of the
    // user's or of root's; any other link on the path from there, a link of another user in the
    // place of the scratch directory, and a lock file that is no plain file or has a second name
    // are failures.
    //
    // Waits while another process is reading or writing the file. Reading and taking are two
    // steps: of several starts at the same moment at least one gets false, but more than one may.
    // The file then names whichever wrote last, and later starts get true for as long as that one
    // lives.
    //
    // A failure is told on standard error: "locking error: ", "reading error for lock file: ",
    // "error opening write : " or "unable to write in file :" with the strerror text, each a line
    // (none when the file is there and could not be opened for reading, or is not to be touched),
    // and then always
    //   Failed to check if another Key Warden exist
    //   Please remove<path> file and kill any '<name>' which is running.
    // getUserTmpDir's lines may come first.
    static bool IsAnotherInstanceRunning(std::string name);

    // ---- Privileges ----

    // Reduces a root process to cap_dac_override (effective and permitted) and cap_dac_read_search
    // (permitted), through libcap, loaded for the call. 0 when that is done, or when the effective
    // user is not root and nothing was to be done; else -1, and the capabilities are as before,
    // after these lines on standard error:
    //   without libcap.so.2 and libcap.so.1:
    //     Unable to set the capability as libcap library is not found
    //     Unable to get the capability reduction lib
    //   with a libcap that lacks a function (cap_from_text, cap_set_proc or cap_free):
    //     <function> unresolved: <dlerror text>
    //     Unable to get the capability reduction lib
    //   when the kernel refuses:
    //     cap_set_proc : failed
    // Only the calling thread is reduced, and those it starts later: call it once, early in main,
    // before there are other threads.
    static int drop_capability();

    // ---- Time ----

    // The local time as in 2024-03-01_14_05_09_+0100, for names of log files. If strftime fails,
    // "time" after "Some issue with date conversion\n" on standard error when errno tells of an
    // error, else "".
    static std::string GetTimeStringForLogger();

    // The local time in the strftime format `format`. "" when that makes no text or more than 255
    // bytes, or for a null format.
    static std::string GetCurrentTimeString(const char* format);

    // The time, in seconds since 1970 UTC, that the first 255 bytes of `text` tell as local time in
    // the strptime format `format`. Parsing ends without a word where text and format differ;
    // fields not read by then are zero, the day of the month too. -1 when no such time exists, or
    // for null arguments.
    static std::time_t ConvertStringToTime(const char* text, const char* format);

    // ---- Texts and memory ----

    // `text` without the leading and trailing characters that occur in `chars`.
    static std::wstring trimString(const std::wstring& text, const std::wstring& chars);

    // `text` with every character cut to its low 8 bits; a character whose low 8 bits are zero
    // ends it for the reader. The result belongs to the calling thread: it is good until that
    // thread's next call, or its end. "" for null.
    static const char* WCharToChar(const wchar_t* text);

    // `text`, in the encoding of the current locale, as a new wide text that the caller releases
    // with free(). Text that the locale cannot read gives "", after "error" on standard output
    // without a newline; so does null, without it. Null, after the same, when memory is out.
    static wchar_t* CharToWChar(const char* text);

    // Sets `size` bytes to 0, also where the compiler can see that nobody reads them again. Nothing
    // for a null pointer.
    static void SecureZeroMemory(void* memory, std::size_t size);
};

#pragma GCC visibility pop
