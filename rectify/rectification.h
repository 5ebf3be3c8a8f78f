// The rectification state of a session: the event graphs, their peaks and
// the candidate angles, and the dynamic search with its hits. It lives beside
// the Session and is passed explicitly, as the Session is.
#pragma once

#include "rectify/graphs.h"
#include "rectify/peaks.h"
#include "rectify/search.h"

namespace vintar {

struct Rectification {
  GraphState graphs;
  PeakState peaks;
  SearchState search;
};

}  // namespace vintar
