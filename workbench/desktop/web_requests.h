#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <set>

#include "workbench/desktop/glib_handles.h"
#include "workbench/desktop/web_request.h"

using SoupSession = struct _SoupSession;

namespace kestrel {

struct WebLimits {
    std::chrono::milliseconds time{30'000};    // from sending to the last byte, redirects included
    std::size_t body = std::size_t{16} << 20;  // bytes of an answer's body, decompressed
};

// The page's web requests, made in the default main context. Redirects are followed, twenty at
// most, with GET instead of POST where browsers do so; one that would send a body to another place
// (307, 308) is the page's own to follow, and its answer. Cookies are kept as long as this object
// lives.
class WebRequests {
  public:
    using Done = std::function<void(WebResponse)>;

    explicit WebRequests(WebLimits limits = {});

    // Ends the requests under way. Nothing is called for them any more.
    ~WebRequests();
    WebRequests(const WebRequests&) = delete;
    WebRequests& operator=(const WebRequests&) = delete;

    // Sends a request. Whatever becomes of it, `done` is called once, from the main context and
    // never inside this call. It may destroy this object. Errors have status 0.
    void send(const WebRequest& request, Done done);

  private:
    class Exchange;

    WebLimits limits_;
    ObjectHandle<SoupSession> session_;
    std::set<std::shared_ptr<Exchange>> exchanges_;
};

}  // namespace kestrel
