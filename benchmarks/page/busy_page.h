// The latency of the host's scripts in a page whose main thread is always busy.
#pragma once

#include "benchmarks/measurements.h"
#include "benchmarks/page/page_host.h"
#include "benchmarks/page/page_view.h"

namespace kestrel::bench {

// From sending a script to its effect: on a quiet page the median; on busy pages the highest median
// of all loads, and the longest time.
void measure_busy_pages(const PageView& view, PageHost& host, int scripts, Measurements& to);

}  // namespace kestrel::bench
