// The figures whose end the host sees.
#pragma once

#include "benchmarks/measurements.h"
#include "benchmarks/page/page_host.h"
#include "benchmarks/page/page_view.h"

namespace kestrel::bench {

// Many calls, and as many bare writes, until the host has read the last byte.
void measure_burst(const PageView& view, PageHost& host, int calls, int rounds, Measurements& to);

// Many answers, and as many scripts of WebKit's own, until the last has run.
void measure_answers(const PageView& view, PageHost& host, int answers, int rounds,
                     Measurements& to);

// How many calls fit while the host does not read, and whether all of them come, in order.
void measure_pause(const PageView& view, PageHost& host, Measurements& to);

}  // namespace kestrel::bench
