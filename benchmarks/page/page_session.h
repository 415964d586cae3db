// What the benchmarks with a web process share.
#pragma once

#include <string>

#include "benchmarks/page/page_host.h"
#include "benchmarks/page/page_view.h"
#include "tests/support/temporary_directory.h"

namespace kestrel::bench {

// Temporary home, client directory and GTK. Create it first: web processes inherit the environment,
// which must not change once there are threads.
class PageEnvironment {
  public:
    PageEnvironment();

    const std::string& client_directory() const { return client_directory_; }

  private:
    testing::TemporaryDirectory home_;
    std::string client_directory_;
};

// A host and a web process that shows the page; bench.load() loads `library` into the process.
struct PageSession {
    PageSession(const PageEnvironment& environment, const char* library)
        : host(environment.client_directory()), view(library) {}

    PageHost host;
    PageView view;
};

}  // namespace kestrel::bench
