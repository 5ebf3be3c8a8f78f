// The position cache: for every record of a project, the positions of the
// points at the start and end of the record's date range, one file per
// coordinate and dynamic type beside the project (.geo, .gsp, .gtp, .gdi,
// .heo, .hsp, .htp, .hdi), 464 bytes a record, little-endian, no header.
//
// Positions are tropical (the precession term of the date is stored so that
// a reader can turn them sidereal) and computed at the record's stored
// moment, which carries delta-T; values are single precision. A record is
// recalculated only when the fields that its time accuracy uses have
// changed, or when it holds values no calculation gives (a damaged file).
// A run writes a new file beside the old one and renames it into place, so
// a failed or killed run leaves the old cache whole.
//
// A run shares the stale records out among threads, one per core. The
// ephemeris library is built with thread-local state (its whole working
// state is one thread-local structure: path, open files, last results), so
// threads do not disturb one another; each sets its own path and closes its
// own files. Each thread computes with its own copy of the session, and the
// calling thread writes the records in order, so the file does not depend
// on the number of threads. Checked against the positions of the moment
// computed directly, against the byte offsets of the record layout, and
// against a single thread's file.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/progress.h"
#include "core/session.h"

namespace vintar {

inline constexpr int kCacheRecordSize = 464;

struct EventPositionRecord {
  int16_t Year = 0, Month = 0, Day = 0;
  int16_t TimeAccuracy = 0;
  int16_t Hour = 0, Minute = 0, Second = 0;
  float Zone = 0;
  int16_t RangeDays = 0;
  float Longitude = 0, Latitude = 0;
  int32_t PrecessionArcsec = 0;
  std::array<float, kPoints + 1> StartPos{};  // 1..24
  std::array<float, kPoints + 1> EndPos{};
  std::array<int16_t, kPoints + 1> Motion{};
  std::array<float, kPoints + 1> StartLat{};
  std::array<float, kPoints + 1> EndLat{};
};

// Field by field, little-endian, exactly 464 bytes.
void EncodeCacheRecord(const EventPositionRecord& record, unsigned char* out);
EventPositionRecord DecodeCacheRecord(const unsigned char* in);

// Whether a decoded record holds only values a calculation can give: every
// position and latitude finite and within a circle either way, the zone and
// place finite. A record that fails this is stale, whatever its fields say.
bool CacheRecordUsable(const EventPositionRecord& record);

// The cache file of a project: the .dat path with the extension of the
// coordinate (1 or 2) and dynamic type (0 to 3).
std::string CacheFileName(const std::string& datPath, int coordinate, int dynamicType);

struct CacheRunStats {
  int Recalculated = 0;
  int Current = 0;
};

// Makes sure that the named cache of the session's open project is current,
// recalculating stale records only. Sets `cancelled` when the user stopped it
// through `progress` or the file could not be opened or written; what was
// written stays. A project with no records creates nothing. The session's
// current coordinate, type and method are restored afterwards.
//
// `workers` threads build the stale records (0: one per core); the calling
// thread alone reports progress, shows their messages and writes the file,
// which is the same byte for byte whatever the number. With one worker, or
// one stale record, everything runs on the calling thread.
void CalcEvents(Session& session, int coordinate, int dynamicType, int progressionMethod, bool& cancelled,
                Progress* progress = nullptr, CacheRunStats* stats = nullptr, int workers = 0);

// Half the span in days of an event's moment: its date range, plus a day
// for a date alone or half a day for a time known to the hour. The range
// of the event is its stored moment less and plus this.
double EventHalfSpan(const EventRecord& event);

// A cache file read in blocks, for a pass over its records in order.
// Records past `wanted` are never looked at, so a huge file costs nothing;
// a record cut short, or a stretch that cannot be read, counts as absent.
class CacheReader {
 public:
  CacheReader() = default;
  ~CacheReader();
  CacheReader(const CacheReader&) = delete;
  CacheReader& operator=(const CacheReader&) = delete;
  // False when there is no regular file to read: it then holds no records.
  bool Open(const std::string& path, long long wanted);
  long long Present() const { return present_; }
  // The bytes of record n (from 1), or null when the file does not hold it.
  const unsigned char* Record(long long n);

 private:
  bool ReadAt(unsigned char* out, size_t size, long long at);
  int fd_ = -1;
  long long present_ = 0;
  std::vector<unsigned char> block_;
  long long blockFirst_ = 0;
  long long blockCount_ = 0;
};

// Reads record n (from 1) of a cache file; false when the file is shorter.
bool ReadCacheRecord(const std::string& path, int n, EventPositionRecord& record);

}  // namespace vintar
