// Hostile pages: the web process survives, the host receives only complete messages, and the next
// page works.
#include <gtest/gtest.h>

#include "tests/webkit/store_fixture.h"

namespace kestrel::testing {
namespace {

struct Trick {
    const char* name;
    const char* script;  // ends with external.sendAction('done')

    friend std::ostream& operator<<(std::ostream& stream, const Trick& trick) {
        return stream << trick.name;
    }
};

class HostilePage : public ConnectedStoreTest, public ::testing::WithParamInterface<Trick> {};

TEST_P(HostilePage, DoesNotBreakTheLink) {
    store.evaluate("setTimeout(() => { " + std::string(GetParam().script) + " }, 0)");
    ASSERT_TRUE(host.wait_for_text(5, "done"));
    EXPECT_FALSE(store.process_has_gone());

    store.load("<title>next</title>");
    store.evaluate("external.sendAction('next page')");
    ASSERT_TRUE(host.wait_for_text(5, "next page"));
    host.send(0, {"document.title = 'reached'"});
    EXPECT_TRUE(store.wait_for("document.title === 'reached'"));
}

// Most of these run the page's script in the middle of a call, when an argument is converted.
constexpr const char* kThrowing =
    "external.setItem({toString() { throw 1 }}, {toString() { throw {toString() { throw 2 }} }},"
    "                 Symbol()); external.sendAction('done')";
constexpr const char* kRecursing =
    "const deep = {toString() { external.getItem(deep, 1); return 'x' }};"
    "external.getItem(deep, 1); external.sendAction('done')";
constexpr const char* kReloading =
    "external.setItem({toString() { location.reload(); return 'a' }}, 'b', 'c');"
    "external.sendAction('done')";
constexpr const char* kRewriting =
    "const api = external; api.setItem({toString() { document.open(); document.write('<p>new');"
    "document.close(); return 'a' }}, 'b', 'c'); api.sendAction('done')";
constexpr const char* kLeaving =
    "external.setItem({toString() { location = 'about:blank'; stop(); return 'a' }}, 'b', 'c');"
    "external.sendAction('done')";
constexpr const char* kProxies =
    "const {proxy, revoke} = Proxy.revocable(() => {}, {}); revoke();"
    "for (const value of [proxy, new Proxy({}, {get() { throw 1 }}), Object.create(null), 1n,"
    "                     Symbol.iterator, {get toString() { throw 3 }}, document.all, window])"
    "  { external.setItem(value, value, value); external.settingsMenu(value, value, value, value);"
    "    external.ajax(value, value, value, value, value, value); }"
    "external.sendAction('done')";
constexpr const char* kSurrogates =
    "external.setItem('\\ud800', 'a\\udfffb', '\\ud83d'); external.sendAction('done')";
constexpr const char* kHuge =
    "external.setItem('k', 'x'.repeat(20e6), 'y'.repeat(20e6)); external.sendAction('done')";
constexpr const char* kStorm =
    "for (let i = 0; i < 100000; ++i) external.refresh(i); external.sendAction('done')";
constexpr const char* kTampering =
    "const api = external;"
    "for (const type of [Object, Function, String, Array, Number, Symbol, Error])"
    "  for (const name of Object.getOwnPropertyNames(type.prototype))"
    "    try { type.prototype[name] = () => { throw 'tampered' } } catch {}"
    "api.getItem('a', 'b'); api.sendAction('done')";
constexpr const char* kDeleting =
    "const api = external; delete window.external; window.external = {sendAction() { throw 1 }};"
    "Object.defineProperty(window, 'external', {get() { throw 2 }});"
    "api.sendAction('done')";
constexpr const char* kBorrowing =
    "const send = external.sendAction; new Proxy(external, {}).refresh();"
    "send.call(null, 'x'.slice(1)); Reflect.apply(send, Symbol(), []);"
    "try { new send('x') } catch {} Object.create(external).showAccounts();"
    "external.sendAction('done')";
constexpr const char* kFrames =
    "const frame = document.createElement('iframe'); document.body.append(frame);"
    "const inner = frame.contentWindow; inner.api = external;"
    "const call = inner.eval('(() => api.getItem({toString() { throw 1 }}, () => {}))'); call();"
    "frame.remove(); try { call() } catch {} external.sendAction('done')";
constexpr const char* kWorkers =
    "const code = 'postMessage(typeof external)';"
    "new Worker(URL.createObjectURL(new Blob([code]))).onmessage = message => "
    "external.sendAction(message.data === 'undefined' ? 'done' : 'a worker has it')";

INSTANTIATE_TEST_SUITE_P(
    Tricks, HostilePage,
    ::testing::Values(Trick{"Throwing", kThrowing}, Trick{"Recursing", kRecursing},
                      Trick{"Reloading", kReloading}, Trick{"Rewriting", kRewriting},
                      Trick{"Leaving", kLeaving}, Trick{"Proxies", kProxies},
                      Trick{"Surrogates", kSurrogates}, Trick{"Huge", kHuge},
                      Trick{"Storm", kStorm}, Trick{"Tampering", kTampering},
                      Trick{"Deleting", kDeleting}, Trick{"Borrowing", kBorrowing},
                      Trick{"Frames", kFrames}, Trick{"Workers", kWorkers}),
    [](const auto& trick) { return trick.param.name; });

using HostileAnswer = ConnectedStoreTest;

TEST_F(HostileAnswer, MayReloadItsPage) {
    for (int i = 0; i < 5; ++i) {
        host.send(1, {"(() => location.reload())"});
        host.send(0, {"document.open(); document.write('<title>new</title>'); document.close()"});
    }
    ASSERT_TRUE(host.wait_for(33, 5));
    store.load("<title>next</title>");
    host.send(1, {"(() => { document.title = 'reached' })"});
    EXPECT_TRUE(store.wait_for("document.title === 'reached'"));
}

}  // namespace
}  // namespace kestrel::testing
