// Storage for an exported object that must outlive static destruction.
//
// The web process calls exit() while the detached reader thread is running, so an object that the
// reader may access must never be destroyed. Exported class members must keep their plain type for
// other programs, so the storage is defined under the member's linker name instead:
//
//     class Link { static std::string name; };
//     [[gnu::visibility("default")]] kestrel::NeverDestroyed<std::string>
//         name_storage asm("_ZN4Link4nameB5cxx11E");
#pragma once

namespace kestrel {

template <typename T>
union NeverDestroyed {
    constexpr NeverDestroyed() noexcept : object() {}
    constexpr ~NeverDestroyed() {}
    NeverDestroyed(const NeverDestroyed&) = delete;
    NeverDestroyed& operator=(const NeverDestroyed&) = delete;

    T object;
};

}  // namespace kestrel
