// The host's implementation of the page functions. The meaning of arguments and answers is agreed
// between the workbench and the sample page; the extension passes them through.
//
// Actions run in the main loop and never block; slow ones answer later. The answer of an action
// that can fail has the member `problem`: "" or a sentence.
#pragma once

#include "workbench/answers/reply.h"
#include "workbench/answers/request.h"
#include "workbench/answers/services.h"

namespace kestrel {

using Action = void(Services& services, const Request& request, const Reply& reply);

// getCapabilities(page, callback): callback({host, version, ajax, recolorImage}).
Action get_capabilities;

// getStoreDetails(callback): callback({name, url}).
Action get_store_details;

// getUserDisplayName(callback): callback(name).
Action get_user_display_name;

// getAccountsAsync(callback): callback([{id, name, user}]).
Action get_accounts;

// getFileUri(name, callback): callback(URI of that file in the page's directory, or "").
Action get_file_uri;

// getItem(key, callback): callback(value, or null).
Action get_item;

// setItem(key, value, callback): callback(whether it was stored). Values too long to be sent back
// are not stored.
Action set_item;

// getInstalledApps(not sent, callback): callback({applications: [{id, name, summary, icon}],
// subscriptions: ids}): the applications of this computer, and the ids in the user's order.
Action get_installed_apps;

// subscribe(id, callback), unsubscribe(id, callback): callback(ids), in the user's order.
Action subscribe;
Action unsubscribe;

// updateSubPosition(id, position): moves a subscription to this index.
Action move_subscription;

// launchApp(id, callback): asks the user; callback({started, problem}).
Action launch_app;

// launchResource(name, callback): asks the user, then opens a file in the page's directory with its
// default application; callback({started, problem}).
Action launch_resource;

// openUrl(address): asks the user, then opens the address with its default application.
Action open_url;

// errorDialog(title, details, text, button, callback): callback(the button, or "" if the dialog was
// closed without pressing it).
Action report_error;

// settingsMenu(left, top, width, height): shows the menu at that area of the page.
Action show_settings_menu;

// showAccounts(): shows them in a dialog.
Action show_accounts;

// openDefaultStore(): loads the page that the workbench was started with, unless it is shown.
Action open_default_store;

// writeTraceMessage(text): writes a log line of the class "KS".
Action write_trace_message;

// ajax(url, method, headers, body, id, completion): completion(id, status, statusText, headers,
// body); without a response, status is "0" and statusText says why. Headers are lines of
// "Name: value".
Action relay_request;

// recolorImage(image, red, green, blue, not sent, callback): callback({image, problem}), a data URI
// of the image in that colour. The image is a data URI or a file in the page's directory.
Action recolor_image;

}  // namespace kestrel
