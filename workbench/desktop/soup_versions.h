// One interface for libsoup 2.4, which WebKit's 4.0 API links, and libsoup 3, which its 4.1 API
// links. A process cannot load both.
#pragma once

#include <libsoup/soup.h>

#include <string_view>

namespace kestrel::soup {

#if SOUP_MAJOR_VERSION >= 3

inline void send(SoupSession* session, SoupMessage* message, GCancellable* cancellable,
                 GAsyncReadyCallback callback, gpointer data) {
    soup_session_send_async(session, message, G_PRIORITY_DEFAULT, cancellable, callback, data);
}

inline void set_body(SoupMessage* message, std::string_view body) {
    GBytes* const bytes = g_bytes_new(body.data(), body.size());
    soup_message_set_request_body_from_bytes(message, nullptr, bytes);
    g_bytes_unref(bytes);
}

inline SoupMessageHeaders* request_headers(SoupMessage* message) {
    return soup_message_get_request_headers(message);
}
inline SoupMessageHeaders* response_headers(SoupMessage* message) {
    return soup_message_get_response_headers(message);
}
inline guint status(SoupMessage* message) { return soup_message_get_status(message); }
inline const char* reason(SoupMessage* message) { return soup_message_get_reason_phrase(message); }

#else

inline void send(SoupSession* session, SoupMessage* message, GCancellable* cancellable,
                 GAsyncReadyCallback callback, gpointer data) {
    soup_session_send_async(session, message, cancellable, callback, data);
}

inline void set_body(SoupMessage* message, std::string_view body) {
    soup_message_body_append(message->request_body, SOUP_MEMORY_COPY, body.data(), body.size());
}

inline SoupMessageHeaders* request_headers(SoupMessage* message) {
    return message->request_headers;
}
inline SoupMessageHeaders* response_headers(SoupMessage* message) {
    return message->response_headers;
}
inline guint status(SoupMessage* message) { return message->status_code; }
inline const char* reason(SoupMessage* message) { return message->reason_phrase; }

#endif

}  // namespace kestrel::soup
