#include "tests/log/fake_daemon.h"

#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

#include "tests/log/bytes.h"
#include "tests/log/machine.h"

namespace kestrel::testing {

std::string DaemonConnection::read_message() const {
    const std::string length = read(2);
    if (length.size() < 2) return length;
    return length + read(2 + u16_at(length, 0));
}

bool DaemonConnection::is_closed() const {
    char byte = 0;
    return is_readable(fd()) && recv(fd(), &byte, 1, MSG_PEEK) == 0;
}

FakeDaemon::FakeDaemon() : FakeDaemon(client_directory() + "/.zynlogsocket") {}

FakeDaemon::FakeDaemon(const std::string& path) : path_(path), host_(path) {}

FakeDaemon::~FakeDaemon() { unlink(path_.c_str()); }

DaemonConnection FakeDaemon::accept() const {
    DaemonConnection connection(host_.accept());
    if (connection.fd() == -1) throw std::runtime_error("no process has connected");
    return connection;
}

bool FakeDaemon::is_quiet() const { return !is_readable(host_.fd(), 0); }

}  // namespace kestrel::testing
