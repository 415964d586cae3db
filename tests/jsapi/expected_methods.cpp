#include "tests/jsapi/expected_methods.h"

#include "tests/support/link_peer.h"

namespace kestrel::testing {
namespace {

constexpr std::optional<std::size_t> kAnyCount = std::nullopt;

}  // namespace

const std::vector<ExpectedMethod>& expected_methods() {
    using Page = KsJS_proxy;
    static const std::vector<ExpectedMethod> methods{
        {"getCapabilities", Page::getCapabilities, "'a', 'bc'", frame_bytes(2, {}, {"bc", "a"}), 2,
         "               KsJS_proxy::getCapabilities  Err got # arguments, expected 2\n"},
        {"ready", Page::ready, "", frame_bytes(28, {}, {}), kAnyCount, ""},
        {"getStoreDetails", Page::getStoreDetails, "'store'", frame_bytes(8, {}, {"store"}), 1,
         "               Error:: KsJS_proxy::getStoreDetails Err got # arguments, expected 1\n"},
        {"openDefaultStore", Page::openDefaultStore, "", frame_bytes(32, {}, {}), 0,
         "               Error KsJS_proxy::getOpenDefaultStore  # arguments, expected 0\n"},
        {"noteRefreshStart", Page::refresh, "", frame_bytes(7, {}, {}), kAnyCount, ""},
        {"getInstalledApps", Page::getInstalledApps, "'a', 'bc'", frame_bytes(9, {}, {"bc"}), 2,
         "               Error KsJS_proxy::getInstalledApps  # arguments, expected 2\n"},
        {"settingsMenu", Page::settingsMenu, "10, 20, 110, 70",
         frame_bytes(10, {"10", "20", "100", "50"}, {}), 4,
         "               Error:: KsJS_proxy::settingsMenu Err got # arguments, expected 4\n"},
        {"getAccountsAsync", Page::getAccountsAsync, "'onAccounts'",
         frame_bytes(3, {}, {"onAccounts"}), 1,
         "               KsJS_proxy::getAccountsAsync  Err got # arguments, expected 1\n"},
        {"sendAction", Page::sendAction, "'act'", frame_bytes(5, {}, {"act"}), 1,
         "               KsJS_proxy::sendAction  Err got # arguments, expected 1\n"},
        {"refresh", Page::refresh, "", frame_bytes(7, {}, {}), kAnyCount, ""},
        {"showAccounts", Page::showAccounts, "", frame_bytes(4, {}, {}), kAnyCount, ""},
        {"logOff", Page::logoff, "", frame_bytes(6, {}, {}), kAnyCount, ""},
        {"ajax", Page::ajax, "'a', 'b', 'c', 'd', 'e', 'f'",
         frame_bytes(11, {}, {"a", "b", "c", "d", "e", "f"}), 6,
         "               KsJS_proxy::ajax Err got # arguments, expected 6\n"},
        {"subscribe", Page::subscribe, "'app', 'where'", frame_bytes(12, {}, {"app", "where"}), 2,
         "               From JKsJS_proxy::subscribe Err got # arguments, expected 2\n"},
        {"unsubscribe", Page::unsubscribe, "'app', 'where'", frame_bytes(13, {}, {"app", "where"}),
         2, "               From JKsJS_proxy::unsubscribe Err got # arguments, expected 2\n"},
        {"launchApp", Page::launchApp, "'app', 'how'", frame_bytes(14, {}, {"app", "how"}), 2,
         "               From JKsJS_proxy::launchApp Err got # arguments, expected 2\n"},
        {"writeTraceMessage", Page::writeTraceMessage, "'line', 'x', 'y', 'z'",
         frame_bytes(15, {}, {"line"}), 4,
         "               From JKsJS_proxy::writeTraceMessage Err got # arguments, expected 4\n"},
        {"getFileUri", Page::getFileUri, "'file', 'onUri'", frame_bytes(16, {}, {"file", "onUri"}),
         2, "               From JKsJS_proxy::getFileUri Err got # arguments, expected 2\n"},
        {"goOnline", Page::goOnline, "'a', 'bc'", frame_bytes(17, {}, {"bc"}), 2,
         "               From JKsJS_proxy::goOnline Err got # arguments, expected 2\n"},
        {"getItem", Page::getItem, "'key', 'onItem'", frame_bytes(18, {}, {"key", "onItem"}), 2,
         "               KsJS_proxy::getItem Error got # arguments, expected 2\n"},
        {"setItem", Page::setItem, "'key', 'value', 'onSet'",
         frame_bytes(19, {}, {"key", "value", "onSet"}), 3,
         "               KsJS_proxy::setItem Err got # arguments, expected 3\n"},
        {"openUrl", Page::openURL, "'http://example.org/'",
         frame_bytes(20, {}, {"http://example.org/"}), 1,
         "               KsJS_proxy::openURL Err got # arguments, expected 1\n"},
        {"recolorImage", Page::recolorImage, "'img', 1, 2, 3, 4, 'onImage'",
         frame_bytes(21, {"1", "2", "3"}, {"img", "onImage"}), 6,
         "               From JKsJS_proxy::recolorImage Err got # arguments, expected 6\n"},
        {"errorDialog", Page::errorDialog, "'a', 'b', 'c', 'd', 'e'",
         frame_bytes(22, {}, {"a", "b", "c", "d", "e"}), 5,
         "               From JKsJS_proxy::errorDialog Err got # arguments, expected 5\n"},
        {"getUserDisplayName", Page::getUserDisplayName, "'onName'",
         frame_bytes(23, {}, {"onName"}), 1,
         "               From JKsJS_proxy::getUserDisplayName Err got # arguments, expected 1\n"},
        {"updateSubPosition", Page::updateSubPosition, "'app', '3'",
         frame_bytes(24, {}, {"app", "3"}), 2,
         "               From JKsJS_proxy::updateSubPosition Err got # arguments, expected 2\n"},
        {"siteLoaded", Page::siteLoaded, "", frame_bytes(25, {}, {}), 0,
         "               From JKsJS_proxy::siteLoaded Err got # arguments, expected 0\n"},
        {"sharedUserModeLogon", Page::sharedUserModeLogon, "", frame_bytes(26, {}, {}), 0,
         "               KsJS_proxy::sharedUserModeLogon Err got # arguments, expected 0 \n"},
        {"offlineErrorTryAgain", Page::offlineErrorTryAgain, "", frame_bytes(27, {}, {}), 0,
         "               KsJS_proxy::offlineErrorTryAgain Err got # arguments, expected 0\n"},
        {"launchResource", Page::launchResource, "'resource', 'how'",
         frame_bytes(43, {}, {"resource", "how"}), 2,
         "               Error KsJS_proxy::launchResource # arguments, expected 2\n"},
    };
    return methods;
}

}  // namespace kestrel::testing
