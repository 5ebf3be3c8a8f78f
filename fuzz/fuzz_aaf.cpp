// Charts in the exchange format: any text is read to its end, each chart
// becomes a record, and the records written out as AAF read back to as many
// charts.
#include <cstddef>
#include <cstdint>
#include <string>

#include "exchange/aaf.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  auto& fuzz = vintar::fuzz::FuzzSession::Get();
  vintar::Session& session = fuzz.Reset(false);
  const vintar::AafReadResult r = vintar::ReadAaf(session, vintar::fuzz::AsString(data, size));
  std::vector<vintar::EventRecord> records(1);
  for (const vintar::AafChart& c : r.Charts) records.push_back(vintar::AafChartToRecord(c));
  vintar::ProjectHeader header;
  const vintar::AafReadResult back = vintar::ReadAaf(session, vintar::WriteAaf(session, header, records));
  if (back.Charts.size() != r.Charts.size()) __builtin_trap();
  return 0;
}
