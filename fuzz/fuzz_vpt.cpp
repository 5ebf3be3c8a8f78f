// The point list file (.vpt): any bytes are decoded; a list that decodes is
// named point by point, encoded again, and must decode to the same list and
// encode to the same bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"
#include "research/points.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  auto& fuzz = vintar::fuzz::FuzzSession::Get();
  vintar::Session& session = fuzz.Reset(false);

  const std::string bytes = vintar::fuzz::AsString(data, size);
  vintar::PointListHeader header;
  std::vector<vintar::PointRef> refs;
  std::string error;
  if (!vintar::DecodePointList(bytes, header, refs, error)) return 0;

  vintar::ResearchState state;
  for (const vintar::PointRef& ref : refs) (void)vintar::PointName(session, state, ref);

  const std::string encoded = vintar::EncodePointList(header, refs);
  vintar::PointListHeader again;
  std::vector<vintar::PointRef> refsAgain;
  if (!vintar::DecodePointList(encoded, again, refsAgain, error) || refsAgain != refs ||
      vintar::EncodePointList(again, refsAgain) != encoded)
    std::abort();
  return 0;
}
