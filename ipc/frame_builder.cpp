#include "ipc/frame_builder.h"

#include <charconv>
#include <cstring>
#include <new>
#include <utility>

#include "base/error_line.h"

namespace kestrel {
namespace {

constexpr std::string_view kTooLong = "webkit_util::wrapMessage message is too long, not sent\n";
constexpr std::string_view kOutOfMemory =
    "webkit_util::wrapMessage could not malloc, message not sent\n";

class DecimalText {
  public:
    explicit DecimalText(int value)
        : end_(std::to_chars(text_.data(), text_.data() + text_.size(), value).ptr) {}
    DecimalText(const DecimalText&) = delete;
    DecimalText& operator=(const DecimalText&) = delete;

    std::string_view view() const { return {text_.data(), end_}; }

  private:
    std::array<char, kMaxIntItem> text_;
    const char* end_;
};

std::string_view carried_text(std::string_view text) { return text; }
std::string_view carried_text(const std::string& text) { return text.c_str(); }

template <typename Text>
Frame build_frame_of(std::int32_t type, std::span<const int> ints, std::span<const Text> strings) {
    PayloadLength length;
    for (const int value : ints) length.add(DecimalText(value).view().size());
    for (const Text& text : strings) length.add(carried_text(text).size());
    FrameBuilder frame(type, length.total());
    if (!frame.is_open()) return nullptr;
    for (const int value : ints) frame.add(value);
    for (const Text& text : strings) frame.add(carried_text(text));
    return frame.finish();
}

}  // namespace

void PayloadLength::add(std::size_t text_length) {
    const std::size_t room = kMaxFrame - sizeof(webkit_message) - total_;
    if (text_length >= room) fits_ = false;
    if (fits_) total_ += text_length + 1;
}

std::optional<std::size_t> PayloadLength::total() const {
    return fits_ ? std::optional(total_) : std::nullopt;
}

FrameBuilder::FrameBuilder(std::int32_t type, std::optional<std::size_t> payload) {
    if (!payload || *payload > kMaxFrame - sizeof(webkit_message)) {
        error_line(kTooLong);
        return;
    }
    frame_.reset(static_cast<webkit_message*>(std::malloc(sizeof(webkit_message) + *payload)));
    if (!frame_) {
        error_line(kOutOfMemory);
        return;
    }
    *frame_ = {type, 0, 0, 0};
    end_ = payload_begin(*frame_);
}

void FrameBuilder::add(int value) {
    append(DecimalText(value).view());
    ++frame_->num_of_ints;
}

void FrameBuilder::add(std::string_view text) {
    append(text);
    ++frame_->num_of_strings;
}

void FrameBuilder::append(std::string_view text) {
    if (!text.empty()) std::memcpy(end_, text.data(), text.size());  // "" may have no bytes at all
    end_ += text.size();
    *end_++ = '\0';
}

void FrameBuilder::end_string(char* end) {
    *end = '\0';
    end_ = end + 1;
    ++frame_->num_of_strings;
}

Frame FrameBuilder::finish() {
    if (frame_) {
        frame_->total_len_of_string = static_cast<std::int32_t>(end_ - payload_begin(*frame_));
    }
    return std::move(frame_);
}

Frame build_frame(std::int32_t type, std::span<const int> ints,
                  std::span<const std::string_view> strings) {
    return build_frame_of(type, ints, strings);
}

Frame build_frame_of_strings(std::int32_t type, std::span<const int> ints,
                             std::span<const std::string> strings) {
    return build_frame_of(type, ints, strings);
}

Frame copy_of(const webkit_message& frame) {
    const std::span<const char> bytes = bytes_of(frame);
    void* const block = std::malloc(bytes.size());
    if (block == nullptr) throw std::bad_alloc();
    std::memcpy(block, bytes.data(), bytes.size());
    return Frame(static_cast<webkit_message*>(block));
}

}  // namespace kestrel
