#include "host/transcript.h"

#include <glib.h>

#include <memory>
#include <ostream>
#include <utility>

namespace kestrel {
namespace {

std::string time_of_day() {
    const std::unique_ptr<GDateTime, decltype(&g_date_time_unref)> now(g_date_time_new_now_local(),
                                                                       g_date_time_unref);
    const std::unique_ptr<char, decltype(&g_free)> text(
        g_date_time_format(now.get(), "%H:%M:%S.%f"), g_free);
    return std::string(text.get()).substr(0, std::string_view("hh:mm:ss.mmm").size());
}

}  // namespace

bool Transcript::copy_to(const std::string& path) {
    copy_ = std::ofstream(path);
    return copy_.is_open();
}

void Transcript::message(Direction direction, int pid, const webkit_message& message) {
    write(message_text(direction, pid, message));
}

void Transcript::note(std::string_view text) { write("-- " + std::string(text)); }

void Transcript::set_listener(std::function<void(const std::string&)> listener) {
    listener_ = std::move(listener);
}

void Transcript::write(const std::string& line) {
    const std::string timed = time_of_day() + " " + line;
    out_ << timed << std::endl;
    if (copy_.is_open()) copy_ << timed << std::endl;
    if (listener_) listener_(line);
}

}  // namespace kestrel
