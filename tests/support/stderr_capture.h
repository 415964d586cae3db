#pragma once

#include <string>

namespace kestrel::testing {

// Captures what this process and its new children write to descriptor 2 during its lifetime.
class StderrCapture {
  public:
    StderrCapture();
    ~StderrCapture();
    StderrCapture(const StderrCapture&) = delete;
    StderrCapture& operator=(const StderrCapture&) = delete;

    // All text so far.
    std::string text() const;

  private:
    int saved_;
    int file_;
};

}  // namespace kestrel::testing
