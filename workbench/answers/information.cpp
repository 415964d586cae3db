// The actions that only tell something about the workbench, its user and the page.

#include "workbench/answers/actions.h"
#include "workbench/desktop/local_files.h"

namespace kestrel {

void tell_capabilities(Services& /*services*/, const Request& /*request*/, const Reply& reply) {
    reply(ScriptValue{{"host", "kestrel-workbench"},
                      {"version", WORKBENCH_VERSION},
                      {"ajax", "http"},
                      {"recolorImage", "png"}});
}

void tell_store_details(Services& services, const Request& /*request*/, const Reply& reply) {
    reply(ScriptValue{{"name", "Sample store"}, {"url", services.page_uri}});
}

void tell_user_display_name(Services& /*services*/, const Request& /*request*/,
                            const Reply& reply) {
    reply(local_account().name);
}

void tell_accounts(Services& /*services*/, const Request& /*request*/, const Reply& reply) {
    const Account account = local_account();
    reply(
        ScriptValue::array({{{"id", account.id}, {"name", account.name}, {"user", account.user}}}));
}

void tell_file_uri(Services& services, const Request& request, const Reply& reply) {
    reply(uri_beside(services.page_uri, request.text(0)));
}

}  // namespace kestrel
