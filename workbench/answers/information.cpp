// Actions that return information about the workbench, its user and the page.

#include "workbench/answers/actions.h"
#include "workbench/desktop/local_files.h"

namespace kestrel {

void get_capabilities(Services& /*services*/, const Request& /*request*/, const Reply& reply) {
    reply(ScriptValue{{"host", "kestrel-workbench"},
                      {"version", WORKBENCH_VERSION},
                      {"ajax", "http"},
                      {"recolorImage", "png"}});
}

void get_store_details(Services& services, const Request& /*request*/, const Reply& reply) {
    reply(ScriptValue{{"name", "Sample store"}, {"url", services.page_uri}});
}

void get_user_display_name(Services& /*services*/, const Request& /*request*/, const Reply& reply) {
    reply(local_account().name);
}

void get_accounts(Services& /*services*/, const Request& /*request*/, const Reply& reply) {
    const Account account = local_account();
    reply(
        ScriptValue::array({{{"id", account.id}, {"name", account.name}, {"user", account.user}}}));
}

void get_file_uri(Services& services, const Request& request, const Reply& reply) {
    reply(uri_beside(services.page_uri, request.text(0)));
}

}  // namespace kestrel
