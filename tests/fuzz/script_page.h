// A page without a frame, with `external`, and a host that drains what the page sends.
#pragma once

#include <JavaScriptCore/JavaScript.h>
#include <glib.h>

#include <string>

#include "ipc/frame_assembler.h"
#include "tests/fuzz/check.h"

// Exported by the library, and in no header of the package.
extern "C" void JSContextGroupSetExecutionTimeLimit(JSContextGroupRef group, double limit,
                                                    bool (*callback)(JSContextRef, void*),
                                                    void* context);

namespace kestrel::fuzz {

class ScriptPage {
  public:
    ScriptPage();
    ~ScriptPage();
    ScriptPage(const ScriptPage&) = delete;
    ScriptPage& operator=(const ScriptPage&) = delete;

    JSGlobalContextRef context() const { return context_; }
    void run(const std::string& script) const;

    // Checks that the page has sent whole frames only, and gives their number.
    int drain();

  private:
    JSGlobalContextRef context_;
    int host_ = -1;
    FrameAssembler assembler_{{0x7fff'0000, 1'000}};
};

}  // namespace kestrel::fuzz
