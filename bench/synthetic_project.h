// A generated project of many charts with a warm transit cache, for the
// benchmarks of the passes over a project (tabulation, criteria search):
// random dates from 1900 to 2000, times, places up to 60 degrees of
// latitude, each with time and place, and cache records of random
// longitudes marked current, so that no ephemeris work enters the figures.
#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "calc/cache.h"
#include "core/session.h"

namespace vintar::bench {

struct SyntheticProject {
  CapturingSink sink;
  Session session{sink};
  std::filesystem::path dir;

  // `folder` names the temporary folder under the system's, one per benchmark.
  SyntheticProject(const std::string& folder, int charts) : dir(std::filesystem::temp_directory_path() / folder) {
    namespace fs = std::filesystem;
    fs::remove_all(dir);
    fs::create_directories(dir);
    StartupOptions options;
    options.ConfigDir = (dir / "config").string();
    options.UserDataPath = (dir / "userdata").string();
    StartSession(session, options);
    ProjectState& p = session.project;
    p.ProjectPath = (dir / "big.dat").string();
    p.Events.assign(charts + 1, EventRecord{});
    p.Header.RecordCount = charts;
    p.Open = true;
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> turn(0.0, 360.0), lat(-60.0, 60.0);
    std::vector<unsigned char> bytes(static_cast<size_t>(charts) * kCacheRecordSize);
    for (int n = 1; n <= charts; ++n) {
      EventRecord& e = p.Events[n];
      e.Description = "Chart " + std::to_string(n);
      e.Year = static_cast<int16_t>(1900 + rng() % 100);
      e.Month = static_cast<uint8_t>(1 + rng() % 12);
      e.Day = static_cast<uint8_t>(1 + rng() % 28);
      e.Hour = static_cast<uint8_t>(rng() % 24);
      e.Minute = static_cast<uint8_t>(rng() % 60);
      e.DetailLevel = 3;
      e.Longitude = static_cast<float>(turn(rng) - 180.0);
      e.Latitude = static_cast<float>(lat(rng));
      e.Enabled = kTrue;
      EventPositionRecord r;
      r.Year = e.Year, r.Month = e.Month, r.Day = e.Day, r.TimeAccuracy = e.DetailLevel;
      r.Hour = e.Hour, r.Minute = e.Minute, r.Second = 0;
      r.Zone = e.ZoneHours, r.Longitude = e.Longitude, r.Latitude = e.Latitude;
      for (int q = 1; q <= kPoints; ++q) {
        r.StartPos[q] = r.EndPos[q] = static_cast<float>(turn(rng));
        r.StartLat[q] = r.EndLat[q] = 0.5f;
        r.Motion[q] = 1;
      }
      EncodeCacheRecord(r, bytes.data() + static_cast<size_t>(n - 1) * kCacheRecordSize);
    }
    std::ofstream(CacheFileName(p.ProjectPath, kGeocentric, kTransits), std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    for (auto& method : session.cache.Valid[kGeocentric][kTransits]) method = kTrue;
  }
  ~SyntheticProject() { std::filesystem::remove_all(dir); }
  SyntheticProject(const SyntheticProject&) = delete;
  SyntheticProject& operator=(const SyntheticProject&) = delete;
};

}  // namespace vintar::bench
