// The actions that only tell something about the workbench, its user and the page.

#include <array>

#include "workbench/answers/actions.h"
#include "workbench/answers/script_literal.h"
#include "workbench/desktop/local_files.h"

namespace kestrel {

void tell_capabilities(Services& /*services*/, const Request& /*request*/, const Reply& reply) {
    reply(script_object({{"host", script_string("kestrel-workbench")},
                         {"version", script_string(WORKBENCH_VERSION)},
                         {"ajax", script_string("http")},
                         {"recolorImage", script_string("png")}}));
}

void tell_store_details(Services& services, const Request& /*request*/, const Reply& reply) {
    reply(script_object(
        {{"name", script_string("Sample store")}, {"url", script_string(services.page_uri)}}));
}

void tell_user_display_name(Services& /*services*/, const Request& /*request*/,
                            const Reply& reply) {
    reply(script_string(local_account().name));
}

void tell_accounts(Services& /*services*/, const Request& /*request*/, const Reply& reply) {
    const Account account = local_account();
    reply(script_array(std::array{script_object({{"id", script_string(account.id)},
                                                 {"name", script_string(account.name)},
                                                 {"user", script_string(account.user)}})}));
}

void tell_file_uri(Services& services, const Request& request, const Reply& reply) {
    reply(script_string(uri_beside(services.page_uri, request.text(0))));
}

}  // namespace kestrel
