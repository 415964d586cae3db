// The library's one entry point: WebKit calls it once, on the main thread, before any page loads.
#include <libintl.h>
#include <webkit2/webkit-web-extension.h>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "base/error_line.h"
#include "common/LinuxCommonUtils.h"
#include "extension/KsJS_proxy.h"
#include "extension/page_attachment.h"
#include "extension/page_globals.h"
#include "extension/resources.h"
#include "ipc/webkit_client.h"
#include "log/zynlog.h"
#include "trace/frame_trace.h"

namespace {

constexpr const char* kTextDomain = "kestrel";

// The host passes the install root, then the resources. Missing strings stay empty.
void read_user_data(GVariant* user_data) {
    if (user_data == nullptr || !g_variant_is_of_type(user_data, G_VARIANT_TYPE("as"))) return;
    const std::size_t count = g_variant_n_children(user_data);
    if (count > 0) g_variant_get_child(user_data, 0, "s", &g_quoroot);
    if (count > 1) {
        const char* resources = nullptr;
        g_variant_get_child(user_data, 1, "&s", &resources);
        kestrel::set_resources(resources);
    }
}

void bind_catalogue() {
    const std::string install_root = g_quoroot;
    if (install_root.empty()) {
        kestrel::error_line("quoroot path not found, some of the strings will not be translated\n");
    }
    std::setlocale(LC_ALL, "");
    bindtextdomain(kTextDomain, (install_root + "/nls/").c_str());
    bind_textdomain_codeset(kTextDomain, "UTF-8");
    textdomain(kTextDomain);
}

// Keeps errno, for perror.
bool exists(std::string& path) {
    const int saved_errno = errno;
    const bool result = LinuxCommonUtils::ifFileExists(path);
    errno = saved_errno;
    return result;
}

}  // namespace

extern "C" [[gnu::visibility("default")]] void webkit_web_extension_initialize_with_user_data(
    WebKitWebExtension* extension, const GVariant* user_data) {
    // No GVariant function accepts the const of WebKit's signature.
    read_user_data(const_cast<GVariant*>(user_data));
    bind_catalogue();
    std::string client_directory = LinuxCommonUtils::getHomeDir() + "/.QUOClient";
    const bool has_client_directory = exists(client_directory);
    // Logging would create the directory, which the host must create; without it start-up ends.
    if (has_client_directory) ZynLogInit();
    if (extension == nullptr) {
        std::perror("Extension is null\n");
        std::exit(0);
    }
    g_signal_connect(webkit_script_world_get_default(), "window-object-cleared",
                     G_CALLBACK(kestrel::on_window_object_cleared), nullptr);

    if (!has_client_directory) {
        kestrel::error_line(".QUOClient not created, anomoly use case, exiting\n");
        std::exit(0);
    }
    kestrel::start_frame_trace();
    const std::string socket_path = client_directory + "/webkit_socket2";
    webkit_client::initComm(KsJS_proxy::getFunctionArray(), strdup(socket_path.c_str()));
}
