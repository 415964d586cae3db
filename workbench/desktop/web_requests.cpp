#include "workbench/desktop/web_requests.h"

#include <utility>

#include "workbench/desktop/soup_versions.h"

namespace kestrel {
namespace {

constexpr const char* kUserAgent = "kestrel-workbench/" WORKBENCH_VERSION;
constexpr gsize kBodyPiece = 65'536;

// As in browsers.
constexpr int kConnectionsToOneHost = 6;

std::string valid_text(const char* text) { return text_of_body(text_or_empty(text), ""); }

WebResponse failed_request(std::string why) { return {.status_text = std::move(why)}; }

// The message of a checked request; null if its URL cannot be parsed.
ObjectHandle<SoupMessage> message_of(const WebRequest& request, const CheckedRequest& checked) {
    ObjectHandle<SoupMessage> message(
        soup_message_new(checked.method.c_str(), request.url.c_str()));
    if (!message) return nullptr;
    SoupMessageHeaders* const headers = soup::request_headers(message.get());
    if (!request.body.empty()) {
        soup::set_body(message.get(), request.body);
    } else if (checked.method.starts_with('P')) {  // POST, PUT, PATCH: servers may require it
        soup_message_headers_set_content_length(headers, 0);
    }
    const auto add_unless_given = [&](const char* name, const char* value) {
        if (soup_message_headers_get_list(headers, name) == nullptr) {
            soup_message_headers_append(headers, name, value);
        }
    };
    for (const auto& [name, value] : checked.headers) {
        soup_message_headers_append(headers, name.c_str(), value.c_str());
    }
    add_unless_given("User-Agent", kUserAgent);
    if (!request.body.empty()) add_unless_given("Content-Type", "text/plain;charset=UTF-8");
    return message;
}

std::string header_lines(SoupMessageHeaders* headers) {
    std::string lines;
    SoupMessageHeadersIter each;
    soup_message_headers_iter_init(&each, headers);
    const char* name = nullptr;
    const char* value = nullptr;
    while (soup_message_headers_iter_next(&each, &name, &value) != FALSE) {
        if (!lines.empty()) lines += '\n';
        lines += valid_text(name) + ": " + valid_text(value);
    }
    return lines;
}

std::string charset_of(SoupMessageHeaders* headers) {
    GHashTable* parameters = nullptr;
    if (soup_message_headers_get_content_type(headers, &parameters) == nullptr) return "";
    const std::unique_ptr<GHashTable, decltype(&g_hash_table_unref)> owner(parameters,
                                                                           g_hash_table_unref);
    return text_or_empty(static_cast<const char*>(g_hash_table_lookup(parameters, "charset")));
}

}  // namespace

// A pending request. Each asynchronous operation keeps it alive; it is finished by the response, an
// error or its timer, whichever comes first.
class WebRequests::Exchange : public std::enable_shared_from_this<Exchange> {
  public:
    Exchange(WebRequests& owner, Done done) : owner_(owner), done_(std::move(done)) {}
    ~Exchange() { stop_timer(); }
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;

    void fail_after(std::chrono::milliseconds time, std::string why) {
        timeout_error_ = std::move(why);
        timer_ = g_timeout_add(
            static_cast<guint>(time.count()),
            [](gpointer self) -> gboolean {
                static_cast<Exchange*>(self)->on_timer();
                return G_SOURCE_REMOVE;
            },
            this);
    }

    void start(SoupSession* session, ObjectHandle<SoupMessage> message) {
        message_ = std::move(message);
        soup::send(session, message_.get(), cancellable_.get(), on_response, keep_alive());
    }

    void abandon() {
        done_ = nullptr;
        finish({});
    }

  private:
    void* keep_alive() { return new std::shared_ptr<Exchange>(shared_from_this()); }

    static std::shared_ptr<Exchange> release(void* kept) {
        const std::unique_ptr<std::shared_ptr<Exchange>> owner(
            static_cast<std::shared_ptr<Exchange>*>(kept));
        return *owner;
    }

    static void on_response(GObject* session, GAsyncResult* result, gpointer kept) {
        const std::shared_ptr<Exchange> self = release(kept);
        GError* error = nullptr;
        self->stream_.reset(
            soup_session_send_finish(reinterpret_cast<SoupSession*>(session), result, &error));
        if (self->is_pending_after(error)) self->read();
    }

    static void on_piece(GObject* stream, GAsyncResult* result, gpointer kept) {
        const std::shared_ptr<Exchange> self = release(kept);
        GError* error = nullptr;
        const GlibBytes piece(g_input_stream_read_bytes_finish(
            reinterpret_cast<GInputStream*>(stream), result, &error));
        if (self->is_pending_after(error)) self->take(piece.get());
    }

    void on_timer() {
        const std::shared_ptr<Exchange> self = shared_from_this();
        timer_ = 0;
        finish(failed_request(timeout_error_));
    }

    // Takes ownership of the error, which finishes the exchange.
    bool is_pending_after(GError* error) {
        const GlibError owner(error);
        if (owner) finish(failed_request(valid_text(owner->message)));
        return !owner && !is_finished();
    }

    void read() {
        g_input_stream_read_bytes_async(stream_.get(), kBodyPiece, G_PRIORITY_DEFAULT,
                                        cancellable_.get(), on_piece, keep_alive());
    }

    void take(GBytes* piece) {
        gsize size = 0;
        const auto* const data = static_cast<const char*>(g_bytes_get_data(piece, &size));
        if (size == 0) {
            finish(response());
        } else if (size > owner_.limits_.body - body_.size()) {
            finish(failed_request("the answer is longer than " +
                                  std::to_string(owner_.limits_.body) + " bytes"));
        } else {
            body_.append(data, size);
            read();
        }
    }

    WebResponse response() {
        SoupMessageHeaders* const headers = soup::response_headers(message_.get());
        return {.status = static_cast<int>(soup::status(message_.get())),
                .status_text = valid_text(soup::reason(message_.get())),
                .headers = header_lines(headers),
                .body = text_of_body(std::move(body_), charset_of(headers))};
    }

    bool is_finished() const { return g_cancellable_is_cancelled(cancellable_.get()) != FALSE; }

    void finish(WebResponse outcome) {
        stop_timer();
        g_cancellable_cancel(cancellable_.get());
        const Done done = std::exchange(done_, nullptr);
        if (!done) return;
        owner_.exchanges_.erase(shared_from_this());
        done(std::move(outcome));
    }

    void stop_timer() {
        if (timer_ != 0) g_source_remove(std::exchange(timer_, 0));
    }

    WebRequests& owner_;  // valid while done_ is set
    Done done_;
    ObjectHandle<GCancellable> cancellable_{g_cancellable_new()};
    ObjectHandle<SoupMessage> message_;
    ObjectHandle<GInputStream> stream_;
    std::string body_;
    std::string timeout_error_;
    guint timer_ = 0;
};

WebRequests::WebRequests(WebLimits limits)
    : limits_(limits),
      session_(
          soup_session_new_with_options("max-conns-per-host", kConnectionsToOneHost, nullptr)) {
    soup_session_add_feature_by_type(session_.get(), SOUP_TYPE_COOKIE_JAR);
}

WebRequests::~WebRequests() {
    for (const std::shared_ptr<Exchange>& exchange : exchanges_) exchange->abandon();
    soup_session_abort(session_.get());
}

void WebRequests::send(const WebRequest& request, Done done) {
    CheckedRequest checked = check(request);
    ObjectHandle<SoupMessage> message;
    if (checked.fault.empty()) {
        message = message_of(request, checked);
        if (!message) checked.fault = "this is not a URL: " + request.url;
    }

    const auto exchange = std::make_shared<Exchange>(*this, std::move(done));
    exchanges_.insert(exchange);
    if (message) {
        exchange->fail_after(limits_.time, "there was no whole answer within " +
                                               std::to_string(limits_.time.count()) + " ms");
        exchange->start(session_.get(), std::move(message));
    } else {
        exchange->fail_after({}, checked.fault);
    }
}

}  // namespace kestrel
