// The exported members behind the functions of `external`, for programs that call them by name.
#include "extension/KsJS_proxy.h"
#include "jsapi/page_method.h"

// A member function cannot be defined by a template or through its type's alias.
#define DEFINE_PAGE_METHOD(member)                                                                 \
    JSValueRef KsJS_proxy::member(JSContextRef context, JSObjectRef function, JSObjectRef self,    \
                                  size_t count, const JSValueRef arguments[],                      \
                                  JSValueRef* exception) {                                         \
        return kestrel::call_page_method<kestrel::row_of(#member)>(context, function, self, count, \
                                                                   arguments, exception);          \
    }

DEFINE_PAGE_METHOD(getCapabilities)
DEFINE_PAGE_METHOD(ready)
DEFINE_PAGE_METHOD(getStoreDetails)
DEFINE_PAGE_METHOD(openDefaultStore)
DEFINE_PAGE_METHOD(refresh)
DEFINE_PAGE_METHOD(getInstalledApps)
DEFINE_PAGE_METHOD(settingsMenu)
DEFINE_PAGE_METHOD(getAccountsAsync)
DEFINE_PAGE_METHOD(sendAction)
DEFINE_PAGE_METHOD(showAccounts)
DEFINE_PAGE_METHOD(logoff)
DEFINE_PAGE_METHOD(ajax)
DEFINE_PAGE_METHOD(subscribe)
DEFINE_PAGE_METHOD(unsubscribe)
DEFINE_PAGE_METHOD(launchApp)
DEFINE_PAGE_METHOD(writeTraceMessage)
DEFINE_PAGE_METHOD(getFileUri)
DEFINE_PAGE_METHOD(goOnline)
DEFINE_PAGE_METHOD(getItem)
DEFINE_PAGE_METHOD(setItem)
DEFINE_PAGE_METHOD(openURL)
DEFINE_PAGE_METHOD(recolorImage)
DEFINE_PAGE_METHOD(errorDialog)
DEFINE_PAGE_METHOD(getUserDisplayName)
DEFINE_PAGE_METHOD(updateSubPosition)
DEFINE_PAGE_METHOD(siteLoaded)
DEFINE_PAGE_METHOD(sharedUserModeLogon)
DEFINE_PAGE_METHOD(offlineErrorTryAgain)
DEFINE_PAGE_METHOD(launchResource)

#undef DEFINE_PAGE_METHOD
