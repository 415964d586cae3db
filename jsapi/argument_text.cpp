#include "jsapi/argument_text.h"

#include <cstdint>
#include <cstring>
#include <utility>

#include "jsapi/utf16_to_utf8.h"

namespace kestrel {
namespace {

// A script string never changes: the value that is protected here has this text whenever it comes,
// as no other can take its place in memory.
struct Place {
    JSValueRef last = nullptr;  // that came here; only compared, it may have gone since
    unsigned times = 0;         // in a row
    JSValueRef kept = nullptr;
    ShortText text;
};

constexpr unsigned kPlacesLog2 = 6;
constinit std::array<Place, 1U << kPlacesLog2> places{};

// The virtual machine of the values that are kept, held while there are any. There is one in a web
// process; another one's values are not kept.
constinit JSContextGroupRef machine = nullptr;

Place* place_of(JSContextRef context, JSValueRef value) {
    const bool is_of_another = machine != nullptr && machine != JSContextGetGroup(context);
    if (value == nullptr || is_of_another) return nullptr;
    constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15;  // 2^64 by the golden ratio
    return &places[reinterpret_cast<std::uintptr_t>(value) * kSpread >> (64U - kPlacesLog2)];
}

// A text that is only passed on a few times is not worth holding on to.
bool comes_often(Place& place, JSValueRef value) {
    constexpr unsigned kOften = 8;
    place.times = place.last == value ? place.times + 1 : 1;
    place.last = value;
    return place.times >= kOften;
}

void keep(Place& place, JSContextRef context, JSValueRef value, JSStringRef string) {
    if (JSStringGetLength(string) > ShortText::kLongest || !JSValueIsString(context, value)) return;
    std::array<char, ShortText::kLongest * kMaxBytesOfUnit + 1> bytes;
    const char* const end = write_utf8(string, bytes.data());
    const auto size = static_cast<std::size_t>(end - bytes.data());
    if (size > ShortText::kLongest) return;
    if (machine == nullptr) machine = JSContextGroupRetain(JSContextGetGroup(context));
    if (place.kept != nullptr) JSValueUnprotect(context, place.kept);
    JSValueProtect(context, value);
    place.kept = value;
    place.text.size = static_cast<std::uint8_t>(size);
    std::memcpy(place.text.bytes.data(), bytes.data(), size);
}

}  // namespace

ArgumentText::ArgumentText(JSContextRef context, JSValueRef value) {
    Place* const place = place_of(context, value);
    const bool is_worth_keeping = place != nullptr && comes_often(*place, value);
    if (place != nullptr && place->kept == value) {
        short_text_ = place->text;
        return;
    }
    string_ = text_of(context, value);
    if (is_worth_keeping && string_) keep(*place, context, value, string_.get());
}

char* ArgumentText::write(char* to) const {
    if (string_) return write_utf8(string_.get(), to);
    std::memcpy(to, short_text_.bytes.data(), short_text_.size);
    return to + short_text_.size;
}

void forget_kept_texts(JSContextRef context) {
    if (machine == nullptr || machine != JSContextGetGroup(context)) return;
    for (Place& place : places) {
        if (place.kept != nullptr) JSValueUnprotect(context, place.kept);
        place = {};
    }
    JSContextGroupRelease(std::exchange(machine, nullptr));
}

}  // namespace kestrel
