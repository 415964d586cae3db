#include "tests/support/stderr_capture.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>

namespace kestrel::testing {

StderrCapture::StderrCapture()
    : saved_(dup(STDERR_FILENO)), file_(memfd_create("stderr", MFD_CLOEXEC)) {
    std::fflush(stderr);
    dup2(file_, STDERR_FILENO);
}

StderrCapture::~StderrCapture() {
    std::fflush(stderr);
    dup2(saved_, STDERR_FILENO);
    close(saved_);
    close(file_);
}

std::string StderrCapture::text() const {
    std::fflush(stderr);
    std::string text(static_cast<std::size_t>(lseek(file_, 0, SEEK_END)), '\0');
    [[maybe_unused]] const ssize_t read = pread(file_, text.data(), text.size(), 0);
    return text;
}

}  // namespace kestrel::testing
