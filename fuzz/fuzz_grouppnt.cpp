// The group search points file (grouppnt.fil): any bytes are read; every
// pair kept names points 1 to 24, at most 300 of them, none twice; the list
// written back reads back the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <utility>

#include "core/file_io.h"
#include "fuzz/fuzz_support.h"
#include "groups/group_search.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  auto& fuzz = vintar::fuzz::FuzzSession::Get();
  vintar::Session& session = fuzz.Reset();
  const std::string path = fuzz.Work("grouppnt.fil");
  std::string error;
  if (!vintar::WriteFileAtomically(path, vintar::fuzz::AsString(data, size), error)) std::abort();

  vintar::GroupSearchState state;
  if (!vintar::ReadGroupPointFile(session, state, path)) return 0;
  if (state.SearchPoints.size() > static_cast<size_t>(vintar::kMaxSearchPairs) ||
      state.SearchList.size() != state.SearchPoints.size())
    std::abort();
  std::set<std::pair<int, int>> seen;
  for (const vintar::SearchPair& pair : state.SearchPoints) {
    if (pair.First < 1 || pair.First > vintar::kPoints || pair.Second < 1 || pair.Second > vintar::kPoints)
      std::abort();
    if (!seen.insert({pair.First, pair.Second}).second) std::abort();
  }

  if (!vintar::WriteGroupPointFile(state, path)) std::abort();
  vintar::GroupSearchState again;
  if (!vintar::ReadGroupPointFile(session, again, path) || again.SearchPoints != state.SearchPoints) std::abort();
  return 0;
}
