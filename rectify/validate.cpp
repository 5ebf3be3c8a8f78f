#include "rectify/validate.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <memory>
#include <random>

#include "calc/astro.h"
#include "calc/chart.h"
#include "calc/dynamic.h"
#include "core/calendar.h"
#include "core/parse.h"
#include "core/project_file.h"
#include "core/text.h"
#include "rectify/auto_rectify.h"
#include "rectify/graphs.h"
#include "rectify/rectification.h"

namespace vintar {
namespace {

namespace fs = std::filesystem;

constexpr int kLastMinute = 23 * 60 + 59;  // a window ends at 23:59 at the latest
constexpr double kYear = 365.25;
constexpr int kSlowMovers[] = {kJupiter, kSaturn, kUranus, kNeptune, kPluto};

// ---------------------------------------------------------------------------
// Draws. The standard distributions are not the same in every library, so
// the engine's 64 bits are mapped here: the top 53 bits as a double in
// [0, 1), whole numbers from that.

double Uniform(std::mt19937_64& rng) { return static_cast<double>(rng() >> 11) * 0x1.0p-53; }

int Below(std::mt19937_64& rng, int n) {
  return n <= 1 ? 0 : std::min(n - 1, static_cast<int>(Uniform(rng) * n));
}

// Each life has an engine of its own, so that life k of a seed does not
// depend on the lives before it.
std::mt19937_64 LifeEngine(uint64_t seed, int index) {
  std::seed_seq seq{static_cast<uint32_t>(seed), static_cast<uint32_t>(seed >> 32), static_cast<uint32_t>(index)};
  return std::mt19937_64(seq);
}

std::string ClockText(const Session& session, int minuteOfDay) {
  return FormatTime(minuteOfDay / 60, minuteOfDay % 60, 0, session.prefs.AMPM != 0);
}

// Hides the birth minute in a window `hours` wide inside the natal day (the
// angle search does not cross midnight), placed at random among all the
// windows that hold it: the true time is not the middle of its window.
void HideTime(const Session& session, int birthMinute, double hours, std::mt19937_64& rng, ProjectHeader& h) {
  const int width = static_cast<int>(std::clamp(std::lround(hours * 60.0), 1L, static_cast<long>(kLastMinute)));
  const int first = std::max(0, birthMinute - width), last = std::min(birthMinute, kLastMinute - width);
  const int start = first + Below(rng, last - first + 1);
  h.Time = "Unknown";
  h.EarliestTime = ClockText(session, start);
  h.LatestTime = ClockText(session, start + width);
}

// ---------------------------------------------------------------------------
// Synthetic lives.

const char* AspectName(int aspect) {
  return aspect == 0 ? "conjunction" : aspect == 180 ? "opposition" : "square";
}

// Every pass of `mover` over the conjunction, squares and opposition of both
// angles of the chart in slot 1, between two Julian days.
std::vector<SyntheticEvent> Passes(Session& s, int mover, const SyntheticLife& life, double from, double to) {
  std::vector<SyntheticEvent> passes;
  for (int angle : {kAscendant, kMidheaven}) {
    for (int aspect : {0, 90, 180, 270}) {
      HitQuery q;
      q.Point = mover;
      q.Target = Mod((angle == kAscendant ? life.Ascendant : life.Midheaven) + aspect, 360.0);
      q.SiderealOffset = s.charts.Slots[1].SiderealOffset;
      q.FromJD = from;
      while (q.FromJD < to) {
        const HitResult r = NextHit(s, q);
        if (r.Unavailable || r.Passes.empty()) break;
        for (double jd : r.Passes)
          if (jd >= from && jd < to) passes.push_back({mover, angle, aspect, jd, {}});
        const double next = r.Passes.back() + 1e-3;
        if (!(next > q.FromJD)) break;
        q.FromJD = next;
      }
    }
  }
  return passes;
}

// Moves `count` passes drawn at random from `pool` (without replacement) to `out`.
void Draw(std::vector<SyntheticEvent>& pool, int count, std::mt19937_64& rng, std::vector<SyntheticEvent>& out) {
  const int n = static_cast<int>(pool.size());
  for (int i = 0; i < std::min(count, n); ++i) {
    std::swap(pool[i], pool[i + Below(rng, n - i)]);
    out.push_back(pool[i]);
  }
}

// The event of a pass as a user records it: the date alone (read as noon),
// no zone, no place, as the sample projects hold their events.
EventRecord DatedEvent(const Session& s, const SyntheticEvent& e) {
  float day = 0;
  int month = 0, year = 0;
  RevJul(e.PassJD, day, month, year);
  RevJul(e.PassJD - DeltaT(year) / 24.0, day, month, year);  // the civil (universal time) date
  EventRecord r;
  r.Description = s.vocab.PointName[e.Mover] + " " + AspectName(e.Aspect) + (e.Angle == kAscendant ? " Asc" : " MC");
  r.Year = static_cast<int16_t>(year);
  r.Month = static_cast<uint8_t>(month);
  r.Day = static_cast<uint8_t>(day);
  r.Hour = 12;
  r.ZoneAbbr = "UT";
  r.Enabled = kTrue;
  return r;
}

bool BuildLife(Session& s, const ValidateOptions& options, int index, SyntheticLife& life, std::string& error) {
  std::mt19937_64 rng = LifeEngine(options.Seed, index);

  // Birth: a day from 1 Jan 1900 to 31 Dec 2000 and a minute of it, local
  // time; a place; the zone of its longitude in whole hours.
  const double firstDay = JulDay(1, 1, 1900);
  const int days = static_cast<int>(JulDay(31, 12, 2000) - firstDay) + 1;
  float day = 0;
  int month = 0, year = 0;
  RevJul(firstDay + Below(rng, days) + 0.5, day, month, year);
  const int birthMinute = Below(rng, 1440);
  const double latitude = std::round((Uniform(rng) * 120.0 - 60.0) * 60.0) / 60.0;
  const double longitude = std::round((Uniform(rng) * 360.0 - 180.0) * 60.0) / 60.0;

  ProjectHeader& h = life.Header;
  ResetProjectHeader(h);
  h.Title = "Synthetic life " + std::to_string(index);
  h.Name = "Life " + std::to_string(index);
  h.Date = FormatDate(s, static_cast<int>(day), month, year);
  h.Place = "Synthetic";
  h.Latitude = FormatLatitude(latitude);
  h.Longitude = FormatLongitude(longitude);
  h.ZoneTime = FormatZone(std::round(longitude / 15.0));
  life.TrueTime = ClockText(s, birthMinute);
  life.TrueHours = birthMinute / 60.0;
  HideTime(s, birthMinute, options.WindowHours, rng, h);

  if (!CalcChart(s, 1, h.Date, life.TrueTime, h.ZoneTime, h.Longitude, h.Latitude)) {
    error = "The true chart could not be cast.";
    return false;
  }
  life.Ascendant = s.charts.Longitude[kGeocentric][1][kAscendant];
  life.Midheaven = s.charts.Longitude[kGeocentric][1][kMidheaven];

  // Events: passes from age 3 to age 75, none after 2020, drawn at random.
  const double birth = s.charts.Slots[1].ChartJD;
  const double from = birth + 3 * kYear, to = std::min(birth + 75 * kYear, JulDay(1, 1, 2021));
  std::vector<SyntheticEvent> slow, mars;
  for (int mover : kSlowMovers) {
    std::vector<SyntheticEvent> p = Passes(s, mover, life, from, to);
    slow.insert(slow.end(), p.begin(), p.end());
  }
  const int fromMars = options.Mix == EventMix::Crossings ? options.Events / 2 : 0;
  if (fromMars > 0) {
    mars = Passes(s, kMars, life, from, to);
    Draw(mars, fromMars, rng, life.Events);
  }
  Draw(slow, options.Events - fromMars, rng, life.Events);
  if (life.Events.empty()) {
    error = "No transit to the angles falls within the life.";
    return false;
  }
  std::sort(life.Events.begin(), life.Events.end(),
            [](const SyntheticEvent& a, const SyntheticEvent& b) { return a.PassJD < b.PassJD; });
  for (SyntheticEvent& e : life.Events) e.Record = DatedEvent(s, e);
  return true;
}

}  // namespace

bool MakeSyntheticLife(Session& s, const ValidateOptions& options, int index, SyntheticLife& life,
                       std::string& error) {
  life = SyntheticLife{};
  try {
    return BuildLife(s, options, index, life, error);
  } catch (...) {
    error = "The life could not be made (out of memory).";
    return false;
  }
}

namespace {

// ---------------------------------------------------------------------------
// Running the lives.

// The run's temporary folder, removed when the run ends however it ends.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::error_code ec;
    const fs::path base = fs::temp_directory_path(ec);
    if (ec) return;
    for (int tries = 1; tries <= 1000 && path_.empty(); ++tries) {
      fs::path p = base / ("vintar-validate-" + std::to_string(::getpid()) + "-" + std::to_string(tries));
      if (fs::create_directory(p, ec)) path_ = p;
    }
  }
  ~ScratchFolder() {
    std::error_code ec;
    if (!path_.empty()) fs::remove_all(path_, ec);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  bool Ok() const { return !path_.empty(); }
  std::string File(const std::string& name) const { return (path_ / name).string(); }

 private:
  fs::path path_;
};

// A life's own session: the command's settings, its messages kept.
struct LifeSession {
  explicit LifeSession(const Session& from) {
    s.clock = from.clock;
    s.paths = from.paths;
    s.prefs = from.prefs;
    s.zones = from.zones;
    s.vocab = from.vocab;
    s.EphemerisPath = from.EphemerisPath;
    s.CenturyBase = from.CenturyBase;
  }
  std::string LastMessage() const { return sink.messages.empty() ? "" : sink.messages.back().text; }
  CapturingSink sink;
  Session s{sink};
};

// Auto Rectify's progress inside one life: its fraction within the life's
// share of the bar, its status lines hidden, the cancel request passed on.
class LifeProgress : public Progress {
 public:
  LifeProgress(Progress* outer, int done, int total) : outer_(outer), done_(done), total_(total) {}
  void Fraction(double f) override {
    if (outer_) outer_->Fraction((done_ + std::clamp(f, 0.0, 1.0)) / total_);
  }
  bool Cancelled() override { return outer_ && outer_->Cancelled(); }

 private:
  Progress* outer_;
  int done_, total_;
};

double CircularMinutes(double a, double b) {
  const double d = Mod(a - b, 24.0);
  return std::min(d, 24.0 - d) * 60.0;
}

// Writes the session's project to `path` and opens the copy, as a user's
// project is opened.
bool WriteAndOpen(LifeSession& ls, const std::string& path) {
  ProjectState& p = ls.s.project;
  p.Status.NatChanged = kTrue;
  p.Status.DataChanged = kTrue;
  bool failed = false;
  WriteProject(ls.s, path, p.Header, p.Events, failed, false);
  return !failed && OpenProjectFiles(ls.s, path, nullptr);
}

// Auto Rectify on the open project of the life's session. False when the
// user cancelled it (the life does not count).
bool Rectify(LifeSession& ls, const ValidateOptions& options, Progress& progress, ValidateLife& life) {
  Session& s = ls.s;
  life.Date = s.project.Header.Date;
  life.Earliest = s.project.Header.EarliestTime;
  life.Latest = s.project.Header.LatestTime;
  for (int i = 1; i <= s.project.Header.RecordCount; ++i) life.Events += s.project.Events[i].Enabled != 0;

  auto rect = std::make_unique<Rectification>();
  LoadGraphSettings(s, rect->graphs);
  AutoRectifyOptions autoOptions;
  autoOptions.Threads = options.Threads;
  const AutoRectifyResult r = RunAutoRectify(s, *rect, kAutoFromEvents, &progress, autoOptions);
  if (r.Cancelled) return false;
  if (!r.Rows.empty()) {
    life.GotTime = true;
    life.BestHours = r.Rows.front().Time;
    life.BestTime = r.Rows.front().TimeText;
    life.ErrorMinutes = CircularMinutes(life.BestHours, life.TrueHours);
  } else if (rect->peaks.Results.Count == 0) {
    life.NoAngles = true;
  } else {
    life.Failed = true;
    life.Message = ls.LastMessage().empty() ? r.Status : ls.LastMessage();
  }
  return true;
}

void Fail(ValidateLife& life, const std::string& message) {
  life.Failed = true;
  life.Message = message;
}

// One synthetic life, generated, written, opened and rectified.
bool RunSyntheticLife(Session& session, const ValidateOptions& options, const ScratchFolder& folder, int index,
                      Progress& progress, ValidateLife& life) {
  LifeSession ls(session);
  life.Name = "Life " + std::to_string(index);
  SyntheticLife made;
  std::string error;
  if (!MakeSyntheticLife(ls.s, options, index, made, error)) {
    life.Date = made.Header.Date;
    life.TrueTime = made.TrueTime;
    life.TrueHours = made.TrueHours;
    Fail(life, error);
    return true;
  }
  life.TrueTime = made.TrueTime;
  life.TrueHours = made.TrueHours;
  ProjectState& p = ls.s.project;
  p.Header = made.Header;
  p.Header.RecordCount = static_cast<int32_t>(made.Events.size());
  p.Events.assign(made.Events.size() + 1, EventRecord{});
  for (size_t i = 0; i < made.Events.size(); ++i) p.Events[i + 1] = made.Events[i].Record;
  if (!WriteAndOpen(ls, folder.File("life-" + std::to_string(index) + ".dat"))) {
    Fail(life, "The project could not be written: " + ls.LastMessage());
    return true;
  }
  return Rectify(ls, options, progress, life);
}

// A corpus project with a known time.
struct CorpusEntry {
  std::string Path, Name;
};

// The projects of the folder, by file name; those whose natal time is not a
// clock time go to `skipped`.
std::vector<CorpusEntry> ListCorpus(Session& session, const std::string& folder, std::vector<std::string>& skipped,
                                    std::string& error) {
  std::vector<CorpusEntry> found;
  std::error_code ec;
  if (!fs::is_directory(folder, ec)) {
    error = "The corpus folder was not found: " + folder;
    return found;
  }
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    const std::string path = it->path().string();
    if (EqualsIgnoreCase(PathExtension(path), ".dat") && it->is_regular_file(ec))
      found.push_back({path, PathFileName(path)});
  }
  if (ec) error = "The corpus folder could not be read: " + folder;
  std::sort(found.begin(), found.end(), [](const CorpusEntry& a, const CorpusEntry& b) { return a.Name < b.Name; });

  std::vector<CorpusEntry> known;
  LifeSession ls(session);
  for (const CorpusEntry& e : found) {
    ProjectHeader h;
    bool failed = false;
    ReadProjectHeader(ls.s, NatPathFor(e.Path), h, nullptr, failed);
    int16_t hours = 0, minutes = 0, seconds = 0;
    if (!failed && !Trim(h.Time).empty()) ParseTime(ls.s, h.Time, hours, minutes, seconds, false, failed);
    if (failed || Trim(h.Time).empty() || !FileExists(NatPathFor(e.Path)))
      skipped.push_back(e.Name);
    else
      known.push_back(e);
  }
  return known;
}

// One corpus project: opened, its time hidden in a copy, rectified.
bool RunCorpusLife(Session& session, const ValidateOptions& options, const ScratchFolder& folder,
                   const CorpusEntry& entry, int index, Progress& progress, ValidateLife& life) {
  LifeSession ls(session);
  life.Name = entry.Name;
  if (!OpenProjectFiles(ls.s, entry.Path, nullptr)) {
    Fail(life, "The project could not be opened: " + ls.LastMessage());
    return true;
  }
  ProjectHeader& h = ls.s.project.Header;
  int16_t hours = 0, minutes = 0, seconds = 0;
  bool failed = false;
  ParseTime(ls.s, h.Time, hours, minutes, seconds, false, failed);
  life.Date = h.Date;
  life.TrueTime = h.Time;
  life.TrueHours = hours + minutes / 60.0 + seconds / 3600.0;
  std::mt19937_64 rng = LifeEngine(options.Seed, index);
  HideTime(ls.s, std::clamp(hours * 60 + minutes, 0, kLastMinute), options.WindowHours, rng, h);
  const std::string copy = folder.File("life-" + std::to_string(index) + ".dat");
  if (!WriteAndOpen(ls, copy)) {
    Fail(life, "The project could not be written: " + ls.LastMessage());
    return true;
  }
  // The project's own graph settings go with it.
  std::error_code ec;
  if (FileExists(GraphSettingsFileName(entry.Path)))
    fs::copy_file(GraphSettingsFileName(entry.Path), GraphSettingsFileName(copy), ec);
  return Rectify(ls, options, progress, life);
}

void Summarise(ValidateReport& report) {
  std::vector<double> errors;
  for (const ValidateLife& life : report.Lives) {
    report.NoAngles += life.NoAngles;
    report.Failed += life.Failed;
    if (!life.GotTime) continue;
    errors.push_back(life.ErrorMinutes);
    report.Within5 += life.ErrorMinutes <= 5.0;
    report.Within15 += life.ErrorMinutes <= 15.0;
    report.Within60 += life.ErrorMinutes <= 60.0;
  }
  report.Timed = static_cast<int>(errors.size());
  if (errors.empty()) return;
  std::sort(errors.begin(), errors.end());
  const size_t n = errors.size();
  report.MedianMinutes = n % 2 ? errors[n / 2] : (errors[n / 2 - 1] + errors[n / 2]) / 2.0;
  report.Percentile90Minutes = errors[static_cast<size_t>(std::ceil(0.9 * static_cast<double>(n))) - 1];
}

}  // namespace

ValidateReport RunValidation(Session& session, const ValidateOptions& options, Progress* progress) {
  ValidateReport report;
  const auto started = std::chrono::steady_clock::now();
  try {
    const bool corpus = !options.Corpus.empty();
    if (!(options.WindowHours > 0.0 && options.WindowHours <= 24.0) ||
        (!corpus && (options.Lives < 1 || options.Events < 1))) {
      report.Ok = false;
      report.Error = "Lives and events must be at least 1 and the window from 0 to 24 hours.";
    }
    ScratchFolder folder;
    if (report.Ok && !folder.Ok()) {
      report.Ok = false;
      report.Error = "No temporary folder could be made for the lives.";
    }
    std::vector<CorpusEntry> entries;
    if (report.Ok && corpus) {
      entries = ListCorpus(session, options.Corpus, report.Skipped, report.Error);
      report.Ok = report.Error.empty();
    }
    const int total = corpus ? static_cast<int>(entries.size()) : options.Lives;
    for (int k = 1; report.Ok && k <= total; ++k) {
      if (progress) {
        progress->Status("Life " + std::to_string(k) + " of " + std::to_string(total));
        progress->Fraction(static_cast<double>(k - 1) / total);
      }
      if (progress && progress->Cancelled()) {
        report.Cancelled = true;
        break;
      }
      LifeProgress inner(progress, k - 1, total);
      ValidateLife life;
      const bool finished = corpus ? RunCorpusLife(session, options, folder, entries[k - 1], k, inner, life)
                                   : RunSyntheticLife(session, options, folder, k, inner, life);
      if (!finished) {
        report.Cancelled = true;
        break;
      }
      report.Lives.push_back(life);
    }
    if (progress && report.Ok && !report.Cancelled) progress->Fraction(1.0);
  } catch (...) {
    report.Ok = false;
    report.Error = "The validation stopped on an internal error.";
  }
  Summarise(report);
  report.Seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
  return report;
}

}  // namespace vintar
