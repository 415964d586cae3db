// How long the host's scripts take to reach a page whose main thread is always busy.
#pragma once

#include "benchmarks/measurements.h"
#include "benchmarks/page/page_host.h"
#include "benchmarks/page/page_view.h"

namespace kestrel::bench {

// A script from sent to effect: on a quiet page the median, on busy pages the highest median of any
// load and the longest time of all.
void measure_busy_pages(const PageView& view, PageHost& host, int scripts, Measurements& to);

}  // namespace kestrel::bench
