#include "extension/page_attachment.h"

#include <libintl.h>

#include <string>
#include <string_view>

#include "extension/KsJS_proxy.h"
#include "extension/current_page.h"
#include "extension/page_globals.h"
#include "extension/resources.h"
#include "log/zynlog.h"

namespace {

constexpr const char* kLocaleMessage = "TwigLang";  // its translation is the page's locale
constexpr std::string_view kDefaultLocale = "en-gb,en;q=0.5";

std::string page_locale() {
    std::string locale = gettext(kLocaleMessage);
    if (locale == kLocaleMessage) locale = kDefaultLocale;
    return locale;
}

// The host is trusted: the locale is put between quotes unescaped, the resources are an expression.
std::string zyns_script(const std::string& locale, const std::string& resources) {
    constexpr std::string_view kGap = "                  ";
    std::string script = "window.ZYNS = window.ZYNS || {};";
    script += kGap;
    script += "ZYNS.getLocale = function() {return '" + locale + "'};";
    script += kGap;
    script += "ZYNS.getResources = function() {return " + resources + "}";
    return script;
}

}  // namespace

void kestrel::on_window_object_cleared(WebKitScriptWorld* world, WebKitWebPage* page,
                                       WebKitFrame* frame, void* /*user_data*/) {
    if (webkit_frame_is_main_frame(frame) == FALSE) return;
    __ZynTrace(kLogKestrelExtension, kInfo, "", "", 0, "Major: %d, Minor: %d, Micro: %d",
               static_cast<int>(webkit_get_major_version()),
               static_cast<int>(webkit_get_minor_version()),
               static_cast<int>(webkit_get_micro_version()));
    attach_page(page, frame, world);
    KsJS_proxy::loadJSAPI(jsContext, globalObject);

    KsJS_proxy::resources = take_resources();
    if (KsJS_proxy::resources.empty()) return;
    std::string script = zyns_script(page_locale(), KsJS_proxy::resources);
    KsJS_proxy::resources.clear();
    KsJS_proxy::insertJS(nullptr, &script);
}
