// What the workbench does when the page calls it. What the arguments mean, and what is answered, is
// agreed between the workbench and the sample page; the extension passes everything through.
//
// Actions run in the main loop and never wait: what takes time is answered later. An answer whose
// success is in doubt has the member `problem`: "" or a sentence.
#pragma once

#include "workbench/answers/reply.h"
#include "workbench/answers/request.h"
#include "workbench/answers/services.h"

namespace kestrel {

using Action = void(Services& services, const Request& request, const Reply& reply);

// getCapabilities(page, callback): callback({host, version, ajax, recolorImage}).
Action tell_capabilities;

// getStoreDetails(callback): callback({name, url}).
Action tell_store_details;

// getUserDisplayName(callback): callback(name).
Action tell_user_display_name;

// getAccountsAsync(callback): callback([{id, name, user}]).
Action tell_accounts;

// getFileUri(name, callback): callback(URI of that file beside the page, or "").
Action tell_file_uri;

// getItem(key, callback): callback(value, or null).
Action tell_item;

// setItem(key, value, callback): callback(whether it is kept). A value that could not be sent back
// is not.
Action keep_item;

// getInstalledApps(not sent, callback): callback({applications: [{id, name, summary, icon}],
// subscriptions: ids}), the applications of this computer, and the ids in the user's order.
Action tell_installed_apps;

// subscribe(id, callback), unsubscribe(id, callback): callback(ids), in the user's order.
Action subscribe;
Action unsubscribe;

// updateSubPosition(id, position): moves a subscription to this place, counted from 0.
Action move_subscription;

// launchApp(id, callback): asks the user; callback({started, problem}).
Action launch_app;

// launchResource(name, callback): opens a file beside the page with the application for it, after
// asking; callback({started, problem}).
Action launch_resource;

// openUrl(address): opens it with the application for it, after asking.
Action open_url;

// errorDialog(title, details, text, button, callback): callback(the button, or "" if the dialog was
// closed without it).
Action report_error;

// settingsMenu(left, top, width, height): the menu stands at that area of the page.
Action show_settings_menu;

// showAccounts(): a dialog with them.
Action show_accounts;

// openDefaultStore(): loads the page with which the workbench started, unless it is shown.
Action open_default_store;

// writeTraceMessage(text): one line of the class "KS" in the log.
Action write_trace_message;

// ajax(url, method, headers, body, id, completion): completion(id, status, statusText, headers,
// body); status "0" and a sentence in statusText where no answer came. Headers are lines of
// "Name: value".
Action relay_request;

// recolorImage(image, red, green, blue, not sent, callback): callback({image, problem}), a data URI
// of the image in that colour. The image is a data URI, or a file beside the page.
Action recolor_image;

}  // namespace kestrel
