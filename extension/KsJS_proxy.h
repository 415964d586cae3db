// The page's side of the library: the functions behind `external` and the handlers of the host's
// messages. Everything except the handlers runs on the main thread.
#pragma once

#include <JavaScriptCore/JavaScript.h>

#include <list>
#include <string>

#include "ipc/webkit_client.h"

#pragma GCC visibility push(default)

class KsJS_proxy {
  public:
    // A JavaScriptCore object-call callback: context, function, this, count, arguments, exception.
    using PageMethod = JSValueRef(JSContextRef, JSObjectRef, JSObjectRef, size_t,
                                  const JSValueRef[], JSValueRef*);

    // --- Functions of `external` ---
    // Each checks its argument count, sends one message to the host and returns undefined; none
    // waits for an answer, throws or sets the exception. jsapi/method_table.h has a row for each.
    static PageMethod getCapabilities;
    static PageMethod ready;
    static PageMethod getStoreDetails;
    static PageMethod openDefaultStore;
    static PageMethod refresh;
    static PageMethod getInstalledApps;
    static PageMethod settingsMenu;
    static PageMethod getAccountsAsync;
    static PageMethod sendAction;
    static PageMethod showAccounts;
    static PageMethod logoff;
    static PageMethod ajax;
    static PageMethod subscribe;
    static PageMethod unsubscribe;
    static PageMethod launchApp;
    static PageMethod writeTraceMessage;
    static PageMethod getFileUri;
    static PageMethod goOnline;
    static PageMethod getItem;
    static PageMethod setItem;
    static PageMethod openURL;
    static PageMethod recolorImage;
    static PageMethod errorDialog;
    static PageMethod getUserDisplayName;
    static PageMethod updateSubPosition;
    static PageMethod siteLoaded;
    static PageMethod sharedUserModeLogon;
    static PageMethod offlineErrorTryAgain;
    static PageMethod launchResource;

    // Puts the object `external` on `global`, the global object of `context`.
    static void loadJSAPI(JSGlobalContextRef context, JSObjectRef global);

    // Converts `value` to text as script would, cut at its first U+0000 or unpaired surrogate. A
    // conversion that throws leaves `text` as it was, after an error line.
    static void getStringFromJavascriptRef(JSContextRef context, JSValueRef value,
                                           std::string& text);

    // Writes an error line if `exception`, null for none, cannot be converted to text; otherwise
    // does nothing.
    static void traceExceptionJS(JSContextRef context, JSValueRef exception);

    // --- Handlers of the host's messages ---
    // A new table of 61 handlers, indexed by message type, null where there is none. Never freed.
    static webkit_client::InboundHandler* getFunctionArray();

    // Type 0: runs strings[0] in the current page: at once on the thread that owns the default main
    // context or can acquire it; on the reader thread it is queued for the main loop.
    static void insertJS(int* ints, std::string* strings);

    // Type 1: queues an answer for the main loop: callback strings[0], arguments strings[1] to [5]
    // if it is an ajax answer. Needs six strings.
    static void zyns_cb_wrapper(int* ints, std::string* strings);

    // Delivers one answer: callback text, then arguments, all malloc copies. Takes ownership of the
    // list, created with new, and of its elements. Returns false. Main thread.
    static int szyns_cb_wrapper(std::list<char*>* answer);

    // Type 34: keeps the URL strings[0] and the resources strings[1] for the next page and tells
    // the host, after the scripts that came before have run.
    static void sendResourcesAndURL(int* ints, std::string* strings);

    // Sends type 35: the host may load `url`. Any thread.
    static void readyToLoadURL(std::string url);

    // The resources text while it is passed to the page; empty otherwise. Main thread.
    static std::string resources;

    // The URL of the last type-34 message.
    static std::string preloadURL;
};

#pragma GCC visibility pop
