#include "calc/cache.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <condition_variable>
#include <cstring>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "calc/astro.h"
#include "core/calendar.h"
#include "calc/chart.h"
#include "calc/dynamic.h"
#include "calc/ephemeris.h"
#include "core/file_io.h"
#include "core/parse.h"
#include "core/text.h"

namespace vintar {
namespace {

// Byte offsets of the record's fields.
constexpr int kOffYear = 0, kOffMonth = 2, kOffDay = 4, kOffAccuracy = 6, kOffHour = 8, kOffMinute = 10,
              kOffSecond = 12, kOffZone = 14, kOffRange = 18, kOffLongitude = 20, kOffLatitude = 24,
              kOffPrecession = 28, kOffStartPos = 32, kOffEndPos = 128, kOffMotion = 224, kOffStartLat = 272,
              kOffEndLat = 368;
static_assert(kOffEndLat + 4 * kPoints == kCacheRecordSize);

// Records read at a time while checking a cache, and written at most at a
// time when consecutive records are recalculated.
constexpr int kBlockRecords = 2048;
constexpr int kWriteRecords = 64;
// The status line of a run names every record that is recalculated, and
// every this-many current records.
constexpr int kStatusEvery = 256;

void PutU16(unsigned char* p, uint16_t v) {
  p[0] = static_cast<unsigned char>(v & 0xFF);
  p[1] = static_cast<unsigned char>(v >> 8);
}
void PutU32(unsigned char* p, uint32_t v) {
  for (int i = 0; i < 4; ++i) p[i] = static_cast<unsigned char>((v >> (8 * i)) & 0xFF);
}
void PutI16(unsigned char* p, int16_t v) { PutU16(p, static_cast<uint16_t>(v)); }
void PutF32(unsigned char* p, float f) {
  uint32_t u;
  std::memcpy(&u, &f, 4);
  PutU32(p, u);
}
uint32_t GetU32(const unsigned char* p) {
  return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 | static_cast<uint32_t>(p[2]) << 16 |
         static_cast<uint32_t>(p[3]) << 24;
}
int16_t GetI16(const unsigned char* p) { return static_cast<int16_t>(static_cast<uint16_t>(p[0] | p[1] << 8)); }
float GetF32(const unsigned char* p) {
  uint32_t u = GetU32(p);
  float f;
  std::memcpy(&f, &u, 4);
  return f;
}

// Whether a cached record still describes the event: the fields that the
// event's time accuracy uses must be equal; the others are not looked at.
bool IsCurrent(const EventPositionRecord& c, const EventRecord& e) {
  if (c.TimeAccuracy != e.DetailLevel || c.Day != e.Day || c.Month != e.Month || c.Year != e.Year ||
      c.RangeDays != e.DayRange)
    return false;
  if (e.DetailLevel > 0 && !(c.Zone == e.ZoneHours)) return false;
  if (e.DetailLevel > 1 && (c.Hour != e.Hour || c.Minute != e.Minute || c.Second != e.Second)) return false;
  if (e.DetailLevel > 2 && !(c.Longitude == e.Longitude && c.Latitude == e.Latitude)) return false;
  return true;
}


// The new cache file, written through a temporary file that replaces the
// old one only when it is complete: a run that fails or is killed leaves
// the old cache as it was. Records go out in order, in batches.
class CacheWriter {
 public:
  bool Open(const std::string& path) {
    stream_.SetDerived();
    return stream_.Open(path) == 0;
  }
  bool IsOpen() const { return stream_.IsOpen(); }
  bool Add(const unsigned char* bytes) {
    pending_.insert(pending_.end(), bytes, bytes + kCacheRecordSize);
    return pending_.size() < kWriteRecords * kCacheRecordSize || Flush();
  }
  bool Commit() { return Flush() && stream_.Commit() == 0; }

 private:
  bool Flush() {
    const int err = stream_.Write(pending_.data(), pending_.size());
    pending_.clear();
    return err == 0;
  }
  StagedStream stream_;
  std::vector<unsigned char> pending_;
};

void SetMissing(EventPositionRecord& r, int point, int16_t motion) {
  r.StartPos[point] = r.EndPos[point] = -1.0f;
  r.StartLat[point] = r.EndLat[point] = -1.0f;
  r.Motion[point] = motion;
}

struct RunSettings {
  int coordinate = kGeocentric;
  int type = kTransits;
  bool asteroids = false;
  double radixJD = 0.0;
  const SlotPositions* radix = nullptr;
};

// The new content of one record: positions at the start and end of its
// date range (slots 1 and 2), a station inside it in slot 3.
EventPositionRecord BuildRecord(Session& session, const EventRecord& e, const RunSettings& run) {
  EventPositionRecord r;
  r.Year = e.Year;
  r.Month = e.Month;
  r.Day = e.Day;
  r.TimeAccuracy = e.DetailLevel;
  r.Hour = e.Hour;
  r.Minute = e.Minute;
  r.Second = e.Second;
  r.Zone = e.ZoneHours;
  r.RangeDays = e.DayRange;
  r.Longitude = e.Longitude;
  r.Latitude = e.Latitude;

  const double span = EventHalfSpan(e);
  const double jd = RecordJulianDay(e);
  const double t1 = jd - span, t2 = jd + span;
  const int c = run.coordinate;
  ChartTables& tables = session.charts;
  DynamicOptions options;
  options.Asteroids = run.asteroids;
  options.Radix = run.radix;

  // The slots start empty for every record, so that nothing a calculation
  // leaves unset can carry over from the record before: the record depends
  // on its event alone, whichever thread builds it after whichever other.
  for (int coordinate = kGeocentric; coordinate <= kHeliocentric; ++coordinate)
    for (int slot = 1; slot <= 3; ++slot) tables.Longitude[coordinate][slot].fill(-1.0);

  r.PrecessionArcsec = DynamicPositions(session, 1, t1, run.radixJD, run.type, 0.0, options);
  const bool instant = span == 0.0;
  bool angles = false;
  if (instant && run.type == kTransits) {
    // The chart of the moment at the event's place.
    const double jd0 = JulDay(e.Day, e.Month, e.Year);
    const double ut = e.Hour + e.Minute / 60.0 + e.Second / 3600.0 + e.ZoneHours;
    const double ramc = Ramc(LocalSidereal(SiderealAtZero(jd0), ut), e.Longitude);
    ComputeAngles(session, 1, ramc, MeanObliquity(CenturiesFrom1900(jd)), e.Latitude, 0.0);
    angles = true;
  }
  const int endSlot = instant ? 1 : 2;
  if (!instant) DynamicPositions(session, 2, t2, run.radixJD, run.type, 0.0, options);

  for (int p = 1; p < kAscendant; ++p) {
    const double s1 = tables.Longitude[c][1][p], s2 = tables.Longitude[c][endSlot][p];
    const double l1 = tables.Latitude[c][1][p], l2 = tables.Latitude[c][endSlot][p];
    if (s1 < 0.0 || s2 < 0.0) {
      SetMissing(r, p, -1);
      continue;
    }
    if (instant && run.type == kTransits) {
      r.StartPos[p] = r.EndPos[p] = static_cast<float>(s1);
      r.StartLat[p] = r.EndLat[p] = static_cast<float>(l1);
      r.Motion[p] = tables.LongSpeed[c][1][p] >= 0.0 ? 1 : 2;
      continue;
    }
    const bool retro1 = tables.Retrograde[1][p] != 0;
    const bool retro2 = tables.Retrograde[endSlot][p] != 0;
    if (retro1 == retro2 || c == kHeliocentric || run.type != kTransits) {
      // Start to end always runs forward through the zodiac.
      const bool swap = c == kGeocentric && retro1;
      r.StartPos[p] = static_cast<float>(swap ? s2 : s1);
      r.EndPos[p] = static_cast<float>(swap ? s1 : s2);
      r.StartLat[p] = static_cast<float>(swap ? l2 : l1);
      r.EndLat[p] = static_cast<float>(swap ? l1 : l2);
      r.Motion[p] = swap ? -2 : -1;
      continue;
    }
    // A station inside the range: its moment by linear interpolation of the
    // speeds, and the turning point as one end of the arc.
    const double v1 = std::fabs(tables.LongSpeed[kGeocentric][1][p]);
    const double v2 = std::fabs(tables.LongSpeed[kGeocentric][2][p]);
    const double t = v1 + v2 > 0.0 ? t1 + v1 * (t2 - t1) / (v1 + v2) : (t1 + t2) / 2.0;
    ComputePositions(session, 3, p, p, CenturiesFrom1900(t), 0.0);
    const double s3 = tables.Longitude[c][3][p], l3 = tables.Latitude[c][3][p];
    if (s3 < 0.0) {
      SetMissing(r, p, -1);
      continue;
    }
    const bool ahead = Mod(s2 - s1, 360.0) < 180.0;
    r.Motion[p] = 0;
    if (!retro1) {  // turned retrograde: the station is the highest point
      r.EndPos[p] = static_cast<float>(s3);
      r.EndLat[p] = static_cast<float>(l3);
      r.StartPos[p] = static_cast<float>(ahead ? s1 : s2);
      r.StartLat[p] = static_cast<float>(ahead ? l1 : l2);
    } else {  // turned direct: the station is the lowest point
      r.StartPos[p] = static_cast<float>(s3);
      r.StartLat[p] = static_cast<float>(l3);
      r.EndPos[p] = static_cast<float>(ahead ? s2 : s1);
      r.EndLat[p] = static_cast<float>(ahead ? l2 : l1);
    }
  }

  // The angles exist for the moment of a transit chart only.
  for (int p = kAscendant; p <= kEastPoint; ++p) {
    const double lon = tables.Longitude[c][1][p];
    if (angles && lon >= 0.0) {
      r.StartPos[p] = r.EndPos[p] = static_cast<float>(lon);
      r.StartLat[p] = r.EndLat[p] = 0.0f;
      r.Motion[p] = 1;
    } else {
      SetMissing(r, p, 1);
    }
  }

  if (!run.asteroids)
    for (int p = kChiron; p < kTrueNode; ++p) SetMissing(r, p, -1);
  return r;
}

std::string StatusText(const Session& session, int n, int count, const EventRecord& e) {
  return "Record " + std::to_string(n) + " of " + std::to_string(count) + ": " + e.Description + ", " +
         FormatDate(session, e.Day, e.Month, e.Year) + " (" + std::to_string(static_cast<int>(100.0 * n / count)) +
         "%)";
}

// The stale records of a run, built in record order and handed to the
// writer one by one. With one worker they are built on the calling thread
// with the session itself, as they are asked for. With more, worker threads
// build them ahead, each with a copy of the session (its own chart tables)
// and its own ephemeris state, and the writer takes them in order; a worker
// runs at most a window of records ahead of the writer. Messages that a
// worker's calculation shows are kept with the record and shown by the
// writer's thread when it takes the record, so that they reach the user in
// the order a single thread would show them.
class RecordBuilders {
 public:
  RecordBuilders(Session& session, const std::vector<int>& stale, const RunSettings& run, int workers)
      : main_(session), events_(session.project.Events), stale_(stale), run_(run) {
    workers = std::clamp<long long>(workers, 1, static_cast<long long>(stale.size()));
    if (workers < 2) return;
    window_ = static_cast<size_t>(workers) * kAheadPerWorker;
    ring_.resize(window_);
    {
      // The workers read the events from this session; their copies go without.
      EventsAside aside(session.project.Events);
      for (int i = 0; i < workers; ++i) {
        auto w = std::make_unique<Worker>();
        w->session = std::make_unique<Session>(session, w->sink);
        w->session->charts.EphemerisCalls = 0;
        // The ephemeris keeps its path per thread: the worker sets it anew.
        w->session->EphemerisPath.clear();
        workers_.push_back(std::move(w));
      }
    }
    for (auto& w : workers_) {
      try {
        threads_.emplace_back(&RecordBuilders::Work, this, std::ref(*w));
      } catch (...) {
        break;  // no more threads to be had: those started share the work
      }
    }
  }

  ~RecordBuilders() {
    {
      std::lock_guard<std::mutex> lock(mutex_);
      stop_ = true;
    }
    space_.notify_all();
    for (std::thread& t : threads_) t.join();
    for (const auto& w : workers_) main_.charts.EphemerisCalls += w->session->charts.EphemerisCalls;
  }

  RecordBuilders(const RecordBuilders&) = delete;
  RecordBuilders& operator=(const RecordBuilders&) = delete;

  // The bytes of stale record i (from 0, in order); false when it could not
  // be built.
  bool Take(size_t i, unsigned char* bytes) {
    if (threads_.empty()) {
      EncodeCacheRecord(BuildRecord(main_, events_[stale_[i]], run_), bytes);
      return true;
    }
    Built& slot = ring_[i % window_];
    std::vector<CapturingSink::Entry> messages;
    bool failed;
    {
      std::unique_lock<std::mutex> lock(mutex_);
      if (!slot.ready) {
        // Caught up with the workers: sleep until a batch is ready rather
        // than waking for every record.
        waiting_ = true;
        built_.wait(lock, [&] { return BatchReady(i); });
        waiting_ = false;
      }
      std::memcpy(bytes, slot.bytes, kCacheRecordSize);
      messages = std::move(slot.messages);
      failed = slot.failed;
      slot.ready = false;
      ++taken_;
    }
    space_.notify_all();
    for (const CapturingSink::Entry& m : messages) main_.ShowMessage(m.text, m.flags, m.title);
    return !failed;
  }

 private:
  // How far a worker may run ahead of the writer, in records per worker.
  static constexpr size_t kAheadPerWorker = 64;
  // Records the writer waits for at once when it has caught up (at most
  // the window of one worker).
  static constexpr size_t kBatch = 16;
  // Consecutive records a worker takes at once: neighbouring events are
  // often near in time, and the ephemeris reuses what it read for the last.
  static constexpr size_t kChunk = 8;

  struct Worker {
    CapturingSink sink;
    std::unique_ptr<Session> session;
  };
  struct Built {
    unsigned char bytes[kCacheRecordSize];
    std::vector<CapturingSink::Entry> messages;
    bool failed = false;
    bool ready = false;
  };
  // Moves a vector out for the length of a scope and puts it back after.
  struct EventsAside {
    explicit EventsAside(std::vector<EventRecord>& events) : place(events), kept(std::move(events)) {
      place.clear();
    }
    ~EventsAside() { place = std::move(kept); }
    std::vector<EventRecord>& place;
    std::vector<EventRecord> kept;
  };

  // Whether stale records i to i + kBatch - 1 (those there are) are all
  // built. Called with the mutex held.
  bool BatchReady(size_t i) const {
    const size_t end = std::min(stale_.size(), i + kBatch);
    for (size_t j = i; j < end; ++j)
      if (!ring_[j % window_].ready) return false;
    return true;
  }

  void Work(Worker& w) {
    for (;;) {
      size_t first, end;
      {
        std::unique_lock<std::mutex> lock(mutex_);
        space_.wait(lock, [&] { return stop_ || next_ >= stale_.size() || next_ + kChunk <= taken_ + window_; });
        if (stop_ || next_ >= stale_.size()) break;
        // Smaller chunks towards the end, so that the workers finish together.
        const size_t left = stale_.size() - next_;
        first = next_;
        end = next_ = next_ + std::clamp<size_t>(left / (2 * workers_.size()), 1, kChunk);
      }
      for (size_t i = first; i < end; ++i) Build(w, i);
    }
    CloseEphemeris();  // this thread's files
  }

  // Builds stale record i into its slot, which the writer has left: it
  // took the record that used the slot last.
  void Build(Worker& w, size_t i) {
    Built& slot = ring_[i % window_];
    bool failed = false;
    std::vector<CapturingSink::Entry> messages;
    try {
      w.sink.Clear();
      EncodeCacheRecord(BuildRecord(*w.session, events_[stale_[i]], run_), slot.bytes);
      messages = std::move(w.sink.messages);
    } catch (...) {
      failed = true;
    }
    bool wake;
    {
      std::lock_guard<std::mutex> lock(mutex_);
      slot.messages = std::move(messages);
      slot.failed = failed;
      slot.ready = true;
      wake = waiting_ && BatchReady(taken_);
    }
    if (wake) built_.notify_one();
  }

  Session& main_;
  const std::vector<EventRecord>& events_;
  const std::vector<int>& stale_;
  const RunSettings run_;
  std::vector<std::unique_ptr<Worker>> workers_;
  std::vector<std::thread> threads_;
  std::vector<Built> ring_;
  size_t window_ = 1;
  std::mutex mutex_;
  std::condition_variable built_;  // a record is ready
  std::condition_variable space_;  // the writer took one, or the run stops
  size_t next_ = 0;                // the next stale record to build
  size_t taken_ = 0;               // stale records the writer has taken
  bool stop_ = false;
  bool waiting_ = false;           // the writer sleeps until a batch is ready
};

// The recalculation behind the progress screen. Returns false when the
// run was cancelled or the file failed. Nothing is written while every
// record is current; from the first stale one on, the whole file is written
// anew, the current records copied as they stand. A cancelled run keeps
// what it has written and the old records after it. The stale records are
// known before any is built, so that the builders can work ahead.
bool Recalculate(Session& session, const std::string& path, int count, RunSettings run, Progress* progress,
                 CacheRunStats* stats, int workers) {
  CacheReader old;
  old.Open(path, count);
  std::vector<int> stale;
  for (int n = 1; n <= count; ++n) {
    const unsigned char* cached = old.Record(n);
    bool current = cached != nullptr;
    if (current) {
      const EventPositionRecord record = DecodeCacheRecord(cached);
      current = IsCurrent(record, session.project.Events[n]) && CacheRecordUsable(record);
    }
    if (!current) stale.push_back(n);
  }

  CacheWriter out;
  // Copies records first..last of the old file into the new one. A record
  // that can no longer be read ends the copy: a failure when every record
  // must be there to keep the new file's records in their places.
  auto copyOld = [&](long long first, long long last, bool all) {
    for (long long k = first; k <= last; ++k) {
      const unsigned char* bytes = old.Record(k);
      if (bytes == nullptr) return !all;
      if (!out.Add(bytes)) return false;
    }
    return true;
  };

  SlotPositions radix;
  std::unique_ptr<RecordBuilders> builders;  // ends before the radix it reads
  size_t nextStale = 0;
  unsigned char bytes[kCacheRecordSize];
  for (int n = 1; n <= count; ++n) {
    if (progress && progress->Cancelled()) {
      // Keep what was done, and the old records behind it.
      builders.reset();
      if (out.IsOpen() && copyOld(n, old.Present(), false)) out.Commit();
      return false;
    }
    const EventRecord& e = session.project.Events[n];
    const bool isStale = nextStale < stale.size() && stale[nextStale] == n;
    if (progress) {
      if (isStale || n % kStatusEvery == 0 || n == count) progress->Status(StatusText(session, n, count, e));
      progress->Fraction(static_cast<double>(n) / count);
    }
    if (!isStale) {
      if (stats) ++stats->Current;
      if (out.IsOpen() && !copyOld(n, n, true)) return false;
      continue;
    }
    if (!out.IsOpen()) {
      if (!out.Open(path) || !copyOld(1, n - 1, true)) return false;
      if (run.type == kSolarArc) {
        // Every record moves the same radix chart: compute it once.
        DynamicOptions options;
        options.Asteroids = run.asteroids;
        DynamicPositions(session, 3, run.radixJD, run.radixJD, kTransits, 0.0, options);
        radix = CopySlotPositions(session, 3);
        for (int c = kGeocentric; c <= kHeliocentric; ++c)
          for (int p = kAscendant; p <= kEastPoint; ++p) radix.Longitude[c][p] = -1.0;
        run.radix = &radix;
      }
      builders = std::make_unique<RecordBuilders>(session, stale, run, workers);
    }
    if (!builders->Take(nextStale++, bytes) || !out.Add(bytes)) return false;
    if (stats) ++stats->Recalculated;
  }
  builders.reset();
  return !out.IsOpen() || out.Commit();
}

}  // namespace

CacheReader::~CacheReader() {
  if (fd_ >= 0) ::close(fd_);
}

bool CacheReader::Open(const std::string& path, long long wanted) {
  fd_ = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd_ < 0) return false;
  struct stat info {};
  if (::fstat(fd_, &info) != 0 || !S_ISREG(info.st_mode)) return false;
  // Whole records only: a record cut short counts as absent.
  present_ = std::min<long long>(wanted, static_cast<long long>(info.st_size) / kCacheRecordSize);
  return true;
}

const unsigned char* CacheReader::Record(long long n) {
  if (n < 1 || n > present_) return nullptr;
  if (n < blockFirst_ || n >= blockFirst_ + blockCount_) {
    const long long count = std::min<long long>(kBlockRecords, present_ - n + 1);
    block_.resize(static_cast<size_t>(count) * kCacheRecordSize);
    if (!ReadAt(block_.data(), block_.size(), (n - 1) * kCacheRecordSize)) {
      // An unreadable stretch is treated as absent from here on.
      present_ = n - 1;
      blockCount_ = 0;
      return nullptr;
    }
    blockFirst_ = n;
    blockCount_ = count;
  }
  return block_.data() + (n - blockFirst_) * kCacheRecordSize;
}

bool CacheReader::ReadAt(unsigned char* out, size_t size, long long at) {
  size_t done = 0;
  while (done < size) {
    ssize_t r = ::pread(fd_, out + done, size - done, static_cast<off_t>(at + static_cast<long long>(done)));
    if (r < 0 && errno == EINTR) continue;
    if (r <= 0) return false;
    done += static_cast<size_t>(r);
  }
  return true;
}

void EncodeCacheRecord(const EventPositionRecord& r, unsigned char* out) {
  std::memset(out, 0, kCacheRecordSize);
  PutI16(out + kOffYear, r.Year);
  PutI16(out + kOffMonth, r.Month);
  PutI16(out + kOffDay, r.Day);
  PutI16(out + kOffAccuracy, r.TimeAccuracy);
  PutI16(out + kOffHour, r.Hour);
  PutI16(out + kOffMinute, r.Minute);
  PutI16(out + kOffSecond, r.Second);
  PutF32(out + kOffZone, r.Zone);
  PutI16(out + kOffRange, r.RangeDays);
  PutF32(out + kOffLongitude, r.Longitude);
  PutF32(out + kOffLatitude, r.Latitude);
  PutU32(out + kOffPrecession, static_cast<uint32_t>(r.PrecessionArcsec));
  for (int p = 1; p <= kPoints; ++p) {
    const int i = p - 1;
    PutF32(out + kOffStartPos + 4 * i, r.StartPos[p]);
    PutF32(out + kOffEndPos + 4 * i, r.EndPos[p]);
    PutI16(out + kOffMotion + 2 * i, r.Motion[p]);
    PutF32(out + kOffStartLat + 4 * i, r.StartLat[p]);
    PutF32(out + kOffEndLat + 4 * i, r.EndLat[p]);
  }
}

EventPositionRecord DecodeCacheRecord(const unsigned char* in) {
  EventPositionRecord r;
  r.Year = GetI16(in + kOffYear);
  r.Month = GetI16(in + kOffMonth);
  r.Day = GetI16(in + kOffDay);
  r.TimeAccuracy = GetI16(in + kOffAccuracy);
  r.Hour = GetI16(in + kOffHour);
  r.Minute = GetI16(in + kOffMinute);
  r.Second = GetI16(in + kOffSecond);
  r.Zone = GetF32(in + kOffZone);
  r.RangeDays = GetI16(in + kOffRange);
  r.Longitude = GetF32(in + kOffLongitude);
  r.Latitude = GetF32(in + kOffLatitude);
  r.PrecessionArcsec = static_cast<int32_t>(GetU32(in + kOffPrecession));
  for (int p = 1; p <= kPoints; ++p) {
    const int i = p - 1;
    r.StartPos[p] = GetF32(in + kOffStartPos + 4 * i);
    r.EndPos[p] = GetF32(in + kOffEndPos + 4 * i);
    r.Motion[p] = GetI16(in + kOffMotion + 2 * i);
    r.StartLat[p] = GetF32(in + kOffStartLat + 4 * i);
    r.EndLat[p] = GetF32(in + kOffEndLat + 4 * i);
  }
  return r;
}

bool CacheRecordUsable(const EventPositionRecord& r) {
  // Longitudes lie in 0 to 360 or are negative for "not computed";
  // latitudes are small. Anything else, NaN and infinities among it, comes
  // from a damaged file.
  auto fine = [](float v) { return std::isfinite(v) && v >= -360.0f && v <= 360.0f; };
  if (!std::isfinite(r.Zone) || !std::isfinite(r.Longitude) || !std::isfinite(r.Latitude)) return false;
  for (int p = 1; p <= kPoints; ++p)
    if (!fine(r.StartPos[p]) || !fine(r.EndPos[p]) || !fine(r.StartLat[p]) || !fine(r.EndLat[p])) return false;
  return true;
}

std::string CacheFileName(const std::string& datPath, int coordinate, int dynamicType) {
  static constexpr const char* kTypeLetters[4] = {"eo", "sp", "tp", "di"};
  const char* prefix = coordinate == kHeliocentric ? ".h" : ".g";
  const int type = std::clamp(dynamicType, 0, 3);
  return ReplaceExtension(RTrim(datPath), std::string(prefix) + kTypeLetters[type]);
}

namespace {

bool NatalDateKnown(Session& session) {
  int16_t day = 0, month = 0, year = 0;
  bool failed = false;
  ParseDate(session, session.project.Header.Date, day, month, year, false, failed);
  return !failed && !Trim(session.project.Header.Date).empty();
}

}  // namespace

double EventHalfSpan(const EventRecord& e) {
  // A date alone is the whole day and a day either side of noon; a zone
  // without a clock time half a day more.
  double span = e.DayRange;
  if (e.DetailLevel == 0)
    span += 1.0;
  else if (e.DetailLevel == 1)
    span += 0.5;
  return span;
}

bool ReadCacheRecord(const std::string& path, int n, EventPositionRecord& record) {
  if (n < 1) return false;
  const int fd = ::open(path.c_str(), O_RDONLY);
  if (fd < 0) return false;
  unsigned char bytes[kCacheRecordSize];
  size_t done = 0;
  const off_t at = static_cast<off_t>(n - 1) * kCacheRecordSize;
  while (done < sizeof bytes) {
    ssize_t r = ::pread(fd, bytes + done, sizeof bytes - done, at + static_cast<off_t>(done));
    if (r < 0 && errno == EINTR) continue;
    if (r <= 0) break;
    done += static_cast<size_t>(r);
  }
  ::close(fd);
  if (done != sizeof bytes) return false;
  record = DecodeCacheRecord(bytes);
  return true;
}

void CalcEvents(Session& session, int coordinate, int dynamicType, int progressionMethod, bool& cancelled,
                Progress* progress, CacheRunStats* stats, int workers) {
  CacheState& cache = session.cache;
  const int16_t savedCoordinate = cache.Coordinate, savedType = cache.DynamicType,
                savedMethod = cache.ProgressionMethod;
  cancelled = false;
  if (coordinate < kGeocentric || coordinate > kHeliocentric || dynamicType < kTransits ||
      dynamicType > kSolarArc || progressionMethod < kNaibod || progressionMethod > kMeanQuotidian) {
    cancelled = true;
    return;
  }
  cache.Coordinate = static_cast<int16_t>(coordinate);
  cache.DynamicType = static_cast<int16_t>(dynamicType);
  cache.ProgressionMethod = static_cast<int16_t>(progressionMethod);
  int16_t& valid = cache.Valid[coordinate][dynamicType][progressionMethod];

  try {
    ProjectState& project = session.project;
    const int count = std::min<long long>(project.Header.RecordCount,
                                          static_cast<long long>(project.Events.size()) - 1);
    if (count <= 0) {
      valid = kTrue;  // nothing to keep: no file is made
    } else {
      const std::string path = CacheFileName(project.ProjectPath, coordinate, dynamicType);
      // The cache never stands in for a project file.
      const bool usable = !Trim(project.ProjectPath).empty() && !EqualsIgnoreCase(path, RTrim(project.ProjectPath)) &&
                          !EqualsIgnoreCase(path, ReplaceExtension(RTrim(project.ProjectPath), ".nat"));
      if (!usable) {
        cancelled = true;
      } else if (dynamicType != kTransits && !NatalDateKnown(session)) {
        // Progressions and directions run from the birth: without a natal
        // date every moment would fail, each with its own message.
        session.ShowMessage("The natal date of this project is missing or not valid, so progressions and "
                            "directions cannot be calculated.",
                            kIconExclamation, "Vintar");
        cancelled = true;
      } else if (!FileExists(path) || !valid) {
        if (progress) {
          const auto& types = session.vocab.DynamicMethodName;
          const auto& coords = session.vocab.CoordName;
          std::string heading = "Recalculating";
          if (static_cast<size_t>(dynamicType) < types.size() && static_cast<size_t>(coordinate) < coords.size())
            heading += " " + types[dynamicType] + " (" + coords[coordinate] + ")";
          progress->Caption(heading);
        }
        RunSettings run;
        run.coordinate = coordinate;
        run.type = dynamicType;
        run.asteroids = cache.AsteroidsOn != 0;
        run.radixJD = project.Header.NatalJulianDay;
        if (workers < 1) workers = static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
        cancelled = !Recalculate(session, path, count, run, progress, stats, workers);
      }
    }
  } catch (...) {
    cancelled = true;
  }

  if (cancelled) {
    cache.NeedsGraphRecalc = kTrue;
  } else {
    valid = kTrue;
  }
  cache.Coordinate = savedCoordinate;
  cache.DynamicType = savedType;
  cache.ProgressionMethod = savedMethod;
}

}  // namespace vintar
