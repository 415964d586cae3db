// Figures that end when the host receives the last bytes.
#pragma once

#include "benchmarks/measurements.h"
#include "benchmarks/page/page_host.h"
#include "benchmarks/page/page_view.h"

namespace kestrel::bench {

// Many calls, and as many of the floor, until the host has read the last byte.
void measure_burst(const PageView& view, PageHost& host, int calls, int rounds, Measurements& to);

// Many answers, and as many scripts through WebKit, until the last has run; and their floor.
void measure_answers(const PageView& view, PageHost& host, int answers, int rounds,
                     Measurements& to);

// The number of calls until the page blocks because the host does not read, and how many of all
// calls are lost or out of order later.
void measure_pause(const PageView& view, PageHost& host, Measurements& to);

}  // namespace kestrel::bench
