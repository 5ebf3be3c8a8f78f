// The dignity data files. The same bytes go to every reader: the rulership
// sets, the triplicity and degree tables, the almuten definitions and the
// parts text. What is read must write out and read back the same. The
// bytes are then the four data files of the user data folder for
// LoadDignityData, and every almuten definition they hold is scored as a
// degree almuten and a chart almuten over a fixed chart.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/fuzz_support.h"
#include "research/dignity_files.h"

namespace {

// A chart of fixed longitudes in slot 7, one body left uncomputed.
void FillChart(vintar::Session& session) {
  constexpr double kLongitudes[25] = {0,     12.5,  192.5, 357.1, 340.0, 20.0,  88.0,  150.5, 299.9,
                                      45.0,  210.0, 270.0, -1.0,  10.0,  20.0,  30.0,  40.0,  50.0,
                                      60.0,  62.0,  100.0, 30.0,  5.0,   230.0, 95.0};
  auto& slot = session.charts.Longitude[vintar::kGeocentric][7];
  for (int p = 1; p <= vintar::kPoints; ++p) slot[p] = kLongitudes[p];
  vintar::ChartSlot& facts = session.charts.Slots[7];
  facts.ChartJD = 2451545.25;
  facts.Ramc = 140.0;
  facts.Obliquity = 23.44;
  facts.Latitude = 51.5;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  auto& fuzz = vintar::fuzz::FuzzSession::Get();
  vintar::Session& session = fuzz.Reset();
  const std::string bytes = vintar::fuzz::AsString(data, size);
  const int node = session.vocab.NodePoint;

  std::string error;
  const std::vector<vintar::RulerSet> sets = vintar::ParseRulerSets(bytes, node, error);
  for (size_t i = 0; i < sets.size(); ++i) {
    std::string again;
    const std::vector<vintar::RulerSet> back = vintar::ParseRulerSets(vintar::FormatRulerSet(sets[i]), node, again);
    if (!again.empty() || back.size() != 1) __builtin_trap();
  }
  (void)vintar::ParseTriplicities(bytes, node, error);
  (void)vintar::ParseDegreeDignities(bytes, node, error);
  const std::vector<vintar::AlmutenDef> defs = vintar::ParseAlmutens(bytes);
  const std::string written = vintar::FormatAlmutens(defs);
  if (vintar::FormatAlmutens(vintar::ParseAlmutens(written)) != written) __builtin_trap();
  const std::vector<vintar::PartDef> parts = vintar::ParseParts(bytes, node, error);
  (void)vintar::ParseParts(vintar::FormatPartsFile(parts), node, error);

  // The same bytes as the session's data files.
  session.paths.UserDataPath = fuzz.Work("");
  for (const char* name : {"house.alm", "rulers2.fil", "tripdig2.fil", "degdig2.fil"})
    vintar::fuzz::WriteBytes(fuzz.Work(name), bytes);
  vintar::DignityData tables;
  int16_t failed = 0;
  vintar::LoadDignityData(session, tables, failed);

  FillChart(session);
  auto item = [](int i) { return i == 201 ? 77.0 : i == 301 ? 359.99 : -1.0; };
  for (size_t i = 0; i < defs.size() && i < 8; ++i) {
    for (double longitude : {0.0, 29.999, 30.0, 210.5, 359.9}) {
      const vintar::AlmutenScores r = vintar::DegreeAlmuten(session, 7, tables, longitude, defs[i]);
      (void)vintar::AlmutenTies(r.Planets, r.Scores);
    }
    const vintar::AlmutenScores r = vintar::ChartAlmuten(session, 7, tables, defs[i], item);
    (void)vintar::AlmutenTies(r.Planets, r.Scores);
  }
  vintar::PlanetaryHour hour;
  (void)vintar::PlanetaryHours(session, 7, hour);
  return 0;
}
