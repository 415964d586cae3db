#include "tests/fuzz/fake_machine.h"

#include <chrono>
#include <utility>

#include "workbench/desktop/image_source.h"
#include "workbench/desktop/installed_apps.h"
#include "workbench/desktop/recolored_image.h"
#include "workbench/desktop/web_requests.h"
#include "workbench/wire/event_source.h"

namespace kestrel {
namespace {

constexpr std::chrono::milliseconds kSoon{0};

std::string problem() { return fuzz::fake_machine().succeeds ? "" : fuzz::fake_machine().text; }

}  // namespace

fuzz::FakeMachine& fuzz::fake_machine() {
    static FakeMachine machine;
    return machine;
}

WebRequests::WebRequests(WebLimits limits) : limits_(limits) {}
WebRequests::~WebRequests() = default;

void WebRequests::send(const WebRequest& request, Done done) {
    const std::string fault = check(request).fault;
    const std::string text = text_of_body(fuzz::fake_machine().text, "");
    WebResponse response{.status_text = fault.empty() ? text : fault};
    if (fault.empty() && fuzz::fake_machine().succeeds) {
        response = {.status = 200, .status_text = "OK", .headers = "X: " + text, .body = text};
    }
    EventSource::call_after(kSoon, [response, done = std::move(done)] { done(response); });
}

InstalledApps::InstalledApps(std::string home) : home_(std::move(home)) {}
InstalledApps::~InstalledApps() = default;

std::vector<InstalledApp> InstalledApps::list() const {
    const std::string& text = fuzz::fake_machine().text;
    return {{text, text, text, text}, {"editor", "Editor", "", ""}};
}

std::optional<InstalledApp> InstalledApps::find(const std::string& id) const {
    for (InstalledApp& app : list()) {
        if (app.id == id) return std::move(app);
    }
    return std::nullopt;
}

void InstalledApps::launch(const std::string& /*id*/, Done done) {
    EventSource::call_after(kSoon, [done = std::move(done)] { done(problem()); });
}

void InstalledApps::open(const std::string& /*uri*/, Done done) {
    EventSource::call_after(kSoon, [done = std::move(done)] { done(problem()); });
}

// GdkPixbuf decodes images; only the search for their bytes is ours.
RecoloredImage recolored_image(const std::string& uri, Color /*color*/) {
    const ImageSource source = read_image_source(uri, kMaxImageBytes);
    if (!source.error.empty()) return {.uri = {}, .error = source.error};
    return {.uri = "data:image/png;base64,", .error = problem()};
}

}  // namespace kestrel
