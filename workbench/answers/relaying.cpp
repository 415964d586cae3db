// Actions that do what a page cannot do itself.
#include <algorithm>
#include <cstdint>

#include "workbench/answers/actions.h"
#include "workbench/desktop/local_files.h"
#include "workbench/desktop/recolored_image.h"

namespace kestrel {
namespace {

std::uint8_t component(int value) { return static_cast<std::uint8_t>(std::clamp(value, 0, 255)); }

bool is_data_uri(const std::string& text) { return text.starts_with("data:"); }

}  // namespace

void relay_request(Services& services, const Request& request, const Reply& reply) {
    services.requests.send({.url = request.text(0),
                            .method = request.text(1),
                            .headers = request.text(2),
                            .body = request.text(3)},
                           [reply, id = request.text(4)](const WebResponse& response) {
                               reply(AjaxResult{.id = id,
                                                .status = std::to_string(response.status),
                                                .status_text = response.status_text,
                                                .headers = response.headers,
                                                .body = response.body});
                           });
}

void recolor_image(Services& services, const Request& request, const Reply& reply) {
    const std::string& name = request.text(0);
    const std::string uri = is_data_uri(name) ? name : uri_beside(services.page_uri, name);
    const RecoloredImage image =
        uri.empty()
            ? RecoloredImage{"", "there is no file " + name + " beside the page"}
            : recolored_image(uri, {component(request.number(0)), component(request.number(1)),
                                    component(request.number(2))});
    reply(ScriptValue{{"image", image.uri}, {"problem", image.error}});
}

}  // namespace kestrel
