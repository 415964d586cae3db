// Where the logging client's files are, and where the client family is installed.
//
// Each answer is computed by the first call and kept for the life of the process; the texts are
// never null and never freed. Only a missing home directory is not remembered: the next call looks
// for it again. Any thread, as long as none changes the environment during a call that computes an
// answer. errno stays as it was, and no signal's disposition is left changed.
#pragma once

extern "C" {

#pragma GCC visibility push(default)

// The files of the shared settings, of the log and of the daemon's socket. They are all in
// /var/log/veltrane if the calling user owns that directory or a daemon answers there, and
// otherwise below HOME, or else the password entry's home directory, in ".QUOClient"; the first
// call then creates ".QUOClient/logs" with its parents. "" while there is no home; always ""
// if that directory could not be created.
const char* GetConfigFilePath();
const char* GetLogFilePath();
const char* GetSocketFilePath();

// The client's install root: the first directory that holds libproxy.so and gtk/glade/main.glade of
// QUOROOT, the executable's directory, that directory's parent if it is called "util",
// /opt/Veltrane/QUOClient and /usr/lib/QUOClient. "" when there is none.
const char* GetQUORoot();

// The version of the installed package, cut to 31 characters: what follows "ID_VERSION=" in the
// first file with "Ver.core." in its name in the install root's pkginf. "unknown" when there is
// none.
const char* GetTarnPackageversion();

// Whether the file was last modified less than a day ago, or in the future. False for a file that
// is not there.
bool check_heartbeat_file_age(const char* path);

#pragma GCC visibility pop
}
