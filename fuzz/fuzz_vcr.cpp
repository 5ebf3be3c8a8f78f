// The criteria file (.vcr): any bytes are decoded; a list that decodes is
// shown line by line, encoded again, and must decode to the same list and
// encode to the same bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"
#include "research/criteria.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  auto& fuzz = vintar::fuzz::FuzzSession::Get();
  vintar::Session& session = fuzz.Reset(false);

  const std::string bytes = vintar::fuzz::AsString(data, size);
  vintar::CriteriaList list;
  std::string error;
  if (!vintar::DecodeCriteriaFile(bytes, list, error)) return 0;

  vintar::ResearchState state;
  (void)vintar::CriteriaLines(session, state, list);

  const std::string encoded = vintar::EncodeCriteriaFile(list);
  vintar::CriteriaList again;
  if (!vintar::DecodeCriteriaFile(encoded, again, error) || again.Criteria != list.Criteria ||
      again.Points != list.Points || vintar::EncodeCriteriaFile(again) != encoded)
    std::abort();
  return 0;
}
