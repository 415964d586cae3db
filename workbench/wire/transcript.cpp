#include "workbench/wire/transcript.h"

#include <nlohmann/json.hpp>

#include <ostream>
#include <utility>

#include "trace/frame_json.h"
#include "trace/time_text.h"
#include "workbench/wire/row_text.h"

namespace kestrel {
namespace {

using std::chrono::system_clock;

std::string note_json(system_clock::time_point time, std::string_view note) {
    const nlohmann::ordered_json object = {{"time", utc_time(time)}, {"note", note}};
    return object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace

bool Transcript::copy_to(const std::string& path) {
    copy_ = std::ofstream(path);
    copy_path_ = path;
    return copy_.is_open();
}

std::uint64_t Transcript::message(Direction direction, int pid, const webkit_message& message,
                                  std::uint64_t answer_to) {
    if (copy_.is_open()) copy(frame_json(system_clock::now(), direction, pid, message));
    write(frame_text(direction, pid, message));
    if (log_ == nullptr) return 0;
    MessageRecord record = record_of(direction, pid, message);
    record.answer_to = answer_to;
    return log_->add(std::move(record));
}

void Transcript::note(std::string_view text) {
    if (copy_.is_open()) copy(note_json(system_clock::now(), text));
    write("-- " + std::string(text));
    if (log_ != nullptr) log_->add(record_of(text));
    if (note_listener_) note_listener_(std::string(text));
}

void Transcript::set_note_listener(std::function<void(const std::string&)> listener) {
    note_listener_ = std::move(listener);
}

void Transcript::write(const std::string& line) {
    out_ << time_text(system_clock::now()) << ' ' << line << std::endl;
}

void Transcript::copy(const std::string& json) {
    copy_ << json << '\n';
    if (!flushing_.is_active()) {
        flushing_ = EventSource::when_idle([this] {
            flushing_.remove();
            flush_copy();
        });
    }
}

void Transcript::flush_copy() {
    if (copy_.flush()) return;
    copy_.close();
    note("cannot write " + copy_path_ + " any more");
}

}  // namespace kestrel
