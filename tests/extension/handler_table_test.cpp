#include <gtest/gtest.h>

#include <map>
#include <memory>

#include "extension/KsJS_proxy.h"

namespace kestrel::testing {
namespace {

TEST(HandlerTable, HoldsThreeHandlersByType) {
    const std::map<std::size_t, webkit_client::InboundHandler> handlers{
        {0, KsJS_proxy::insertJS},
        {1, KsJS_proxy::zyns_cb_wrapper},
        {34, KsJS_proxy::sendResourcesAndURL},
    };
    const std::unique_ptr<webkit_client::InboundHandler[]> table(KsJS_proxy::getFunctionArray());
    for (std::size_t type = 0; type < 61; ++type) {
        EXPECT_EQ(table[type], handlers.contains(type) ? handlers.at(type) : nullptr) << type;
    }
}

}  // namespace
}  // namespace kestrel::testing
