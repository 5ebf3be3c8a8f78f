// Writes the shipped dynamic search options: data/defopts.fil (what the
// search screen's "restore" brings back) and data/autopts.fil (what Auto
// Rectify searches with). Run from the build tree:
//   make_default_options [DATA_FOLDER]
// The folder defaults to the repository's data folder.
//
// Why these options. Without an options file every flag is off and a search
// finds nothing, so these files decide whether the search and Auto Rectify
// work out of the box.
//
// Moving points, by dynamic type:
// - Transits: Jupiter, Saturn, Uranus, Neptune and Pluto. The slow planets
//   are the classical timers of life events; Mars and the faster bodies
//   pass every target each year or two, flooding the list with hits that
//   no event can match and diluting the ratio that scores a birth time.
// - Secondary progressions: the Sun, Moon, Mercury, Venus and Mars, plus the
//   progressed Ascendant and Midheaven. These are the bodies that move far
//   enough in a lifetime of progressed days to make aspects; the progressed
//   Moon is the time-keeper of progressions. The outer planets barely move.
// - Tertiary progressions: the same set without the Moon, which moves a
//   sign every two or three months of life at that rate and would swamp
//   the list.
// - Solar arc directions: every planet from the Moon to Pluto and the
//   directed Ascendant and Midheaven. All move by the same arc, about a
//   degree a year, so each is a slow, clean timer.
//
// Targets (radix points):
// - The search screen's defaults: the Ascendant and Midheaven, the angles
//   whose accuracy a rectification is about, plus the Sun and Moon, the
//   lights an astrologer checks first.
// - Auto Rectify: the Ascendant and Midheaven only. It compares candidate
//   times of one day; the Sun's and Moon's positions hardly change across
//   them, so hits to the lights would add the same count to every candidate
//   and only blur the comparison. The Vertex and EastPoint follow from the
//   same sidereal time as the Midheaven and would repeat its evidence.
//
// Aspects: conjunction, square and opposition (the fourth harmonic). The
// hard aspects to the angles are the classical signatures of events; the
// trine and sextile would double the hits with weaker testimony.
//
// Orb: 1.0 degree for every type, the system's own default: a transit of
// Saturn stays within it for a few weeks, a progression for about a year,
// both finer than the date ranges of most recorded events.
#include <cstdio>
#include <initializer_list>
#include <string>

#include "core/session.h"
#include "rectify/search.h"

namespace {

using vintar::DynOptions;
using vintar::DynOptionSet;

constexpr int Moon = 1, Sun = 3, Mercury = 4, Venus = 5, Mars = 6, Jupiter = 7, Saturn = 8, Uranus = 9,
              Neptune = 10, Pluto = 11, Ascendant = 21, Midheaven = 22;

void Set(DynOptions& r, std::initializer_list<int> moving, std::initializer_list<int> targets) {
  for (int p : moving) r.DynamicPoints[p] = vintar::kTrue;
  for (int p : targets) r.RadixPoints[p] = vintar::kTrue;
  vintar::ApplyAspectHarmonic(r, 4);
  r.Orb = 1.0f;
}

DynOptionSet Build(std::initializer_list<int> targets) {
  DynOptionSet set;
  vintar::ResetDynOptions(set);
  Set(set[vintar::kTransits], {Jupiter, Saturn, Uranus, Neptune, Pluto}, targets);
  Set(set[vintar::kSecondary], {Sun, Moon, Mercury, Venus, Mars, Ascendant, Midheaven}, targets);
  Set(set[vintar::kTertiary], {Sun, Mercury, Venus, Mars, Ascendant, Midheaven}, targets);
  Set(set[vintar::kSolarArc],
      {Moon, Sun, Mercury, Venus, Mars, Jupiter, Saturn, Uranus, Neptune, Pluto, Ascendant, Midheaven}, targets);
  return set;
}

bool Write(const std::string& path, const DynOptionSet& set) {
  std::string error;
  if (!vintar::SaveDynOptions(set, path, error)) {
    std::fprintf(stderr, "%s: %s\n", path.c_str(), error.c_str());
    return false;
  }
  std::printf("wrote %s\n", path.c_str());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = vintar::EnsureBackslash(argc > 1 ? argv[1] : VINTAR_SOURCE_DATA_DIR);
  bool ok = Write(folder + vintar::OptionsFileName(vintar::OptionsFile::Defaults),
                  Build({Moon, Sun, Ascendant, Midheaven}));
  ok = Write(folder + vintar::OptionsFileName(vintar::OptionsFile::Auto), Build({Ascendant, Midheaven})) && ok;
  return ok ? 0 : 1;
}
