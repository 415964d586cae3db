// The page's side of the library: the functions behind `external`, and what the host's messages do
// in the page. Everything here except the inbound handlers runs on the thread of the page.
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
    // waits, throws or touches the exception slot. What each sends is a row of
    // jsapi/method_table.h.
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

    // Looks at a script exception, null or not: an error line if it cannot even become text,
    // otherwise nothing.
    static void traceExceptionJS(JSContextRef context, JSValueRef exception);

    // --- Handlers of the host's messages ---
    // A new table of 61 handlers, indexed by message type, null where there is none. It lives as
    // long as the process.
    static webkit_client::InboundHandler* getFunctionArray();

    // Type 0: runs strings[0] in the current page. On the thread that owns the default main
    // context, or can acquire it, at once; on the link's reader thread by way of the main loop.
    static void insertJS(int* ints, std::string* strings);

    // Type 1: has the main loop deliver an answer to the function that strings[0] names, with the
    // arguments strings[1] to [5] if it is an ajax answer. Needs six strings.
    static void zyns_cb_wrapper(int* ints, std::string* strings);

    // Delivers one answer: callback text, then arguments, all malloc copies. Takes the list, made
    // with new, and its elements. Returns false. Main thread.
    static int szyns_cb_wrapper(std::list<char*>* answer);

    // Type 34: keeps the URL strings[0] and the resources strings[1] for the next page, and tells
    // the host.
    static void sendResourcesAndURL(int* ints, std::string* strings);

    // Tells the host that it may load `url` now. Any thread.
    static void readyToLoadURL(std::string url);

    // The resources text while it is handed to the page; empty otherwise. Main thread.
    static std::string resources;

    // The URL of the last type-34 message. Reader thread.
    static std::string preloadURL;
};

#pragma GCC visibility pop
