#pragma once

#include <string>

namespace kestrel::testing {

// Takes over standard error, at the descriptor, for its lifetime.
class StderrCapture {
  public:
    StderrCapture();
    ~StderrCapture();
    StderrCapture(const StderrCapture&) = delete;
    StderrCapture& operator=(const StderrCapture&) = delete;

    // Everything written so far.
    std::string text() const;

  private:
    int saved_;
    int file_;
};

}  // namespace kestrel::testing
