// The answers to the page's questions. What the arguments mean, and what is answered, is agreed
// between this host and the sample page; the extension passes everything through.
#pragma once

#include <optional>

#include "host/answer.h"
#include "host/request.h"
#include "host/store_state.h"

namespace kestrel {

using Answerer = std::optional<Answer>(StoreState& state, const Request& request);

// getCapabilities(page, callback): callback({host, version, ajax, recolorImage}).
Answerer answer_capabilities;

// getAccountsAsync(callback): callback([{id, name, user}]).
Answerer answer_accounts;

// getStoreDetails(callback): callback({name, url}).
Answerer answer_store_details;

// getInstalledApps(unused, callback): callback(ids), in the user's order.
Answerer answer_installed_apps;

// ajax(url, method, headers, body, id, completion): completion(id, status, statusText, headers,
// body). No request goes out yet: the body is the request as the host understood it, as JSON.
Answerer answer_ajax;

// subscribe(id, callback), unsubscribe(id, callback): callback(ids), in the user's order.
Answerer answer_subscribe;
Answerer answer_unsubscribe;

// updateSubPosition(id, position): no answer. Moves a subscription to this place, counted from 0.
Answerer answer_move;

// launchApp(id, callback), launchResource(id, callback): callback(whether it was started). Nothing
// is started yet: true for any id.
Answerer answer_launch;

// getFileUri(name, callback): callback(URI of that file beside the page, or "").
Answerer answer_file_uri;

// getItem(key, callback): callback(value, or null).
Answerer answer_item;

// setItem(key, value, callback): callback(true).
Answerer answer_set_item;

// recolorImage(image, red, green, blue, unused, callback): callback(data URI of an image in that
// colour). A plain square stands in for the image yet.
Answerer answer_recolored_image;

// errorDialog(title, details, text, button, callback): callback(button), as if it had been pressed.
Answerer answer_error_dialog;

// getUserDisplayName(callback): callback(name).
Answerer answer_user_display_name;

}  // namespace kestrel
