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
    std::chrono::milliseconds time{30'000};    // from sending to the last byte, with redirects
    std::size_t body = std::size_t{16} << 20;  // bytes of a response's body, decompressed
};

// Sends the page's web requests, in the default main context. Follows at most twenty redirects,
// with GET instead of POST where browsers do so. A redirect that would send the body again (307,
// 308) is not followed but returned to the page. Cookies are kept for the lifetime of this object.
class WebRequests {
  public:
    using Done = std::function<void(WebResponse)>;

    explicit WebRequests(WebLimits limits = {});

    // Cancels the pending requests; their callbacks are not called.
    ~WebRequests();
    WebRequests(const WebRequests&) = delete;
    WebRequests& operator=(const WebRequests&) = delete;

    // Sends a request. `done` is called once, from the main context, after this call has returned;
    // it may destroy this object. Errors have status 0.
    void send(const WebRequest& request, Done done);

  private:
    class Exchange;

    WebLimits limits_;
    ObjectHandle<SoupSession> session_;
    std::set<std::shared_ptr<Exchange>> exchanges_;
};

}  // namespace kestrel
