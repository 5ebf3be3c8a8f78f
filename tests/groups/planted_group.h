// A group of eight real charts whose cached Moons and Suns are overwritten
// with planted longitudes, so that a test knows exactly which elements fall
// together in which harmonic.
#pragma once

#include <gtest/gtest.h>

#include <fstream>

#include "groups/group_search.h"
#include "support/test_support.h"

namespace vintar {

class PlantedGroup : public ::testing::Test {
 protected:
  void SetUp() override {
    ProjectState& p = t.session.project;
    p.ProjectPath = t.dir.file("family.dat");
    p.Events.assign(kCharts + 1, EventRecord{});
    for (int n = 1; n <= kCharts; ++n) {
      EventRecord& e = p.Events[n];
      e.Description = "Member " + std::to_string(n);
      e.Year = static_cast<int16_t>(1950 + 3 * n);
      e.Month = static_cast<uint8_t>(1 + n % 12);
      e.Day = static_cast<uint8_t>(3 + 2 * n);
      e.Hour = static_cast<uint8_t>(n % 24);
      e.DetailLevel = 3;
      e.Latitude = 51.5f;
      e.Enabled = kTrue;
    }
    p.Header.RecordCount = kCharts;
    p.Open = true;
    bool cancelled = false;
    CalcEvents(t.session, kGeocentric, kTransits, kNaibod, cancelled, nullptr, nullptr, 1);
    path = CacheFileName(p.ProjectPath, kGeocentric, kTransits);
    // Every Moon and Sun is first spread round the circle so that no
    // pattern arises by chance; the cases plant their own.
    for (int n = 1; n <= kCharts; ++n) {
      Plant(n, kMoon, 3.0 + 41.3 * n);
      Plant(n, kSun, 100.0 + 47.9 * n);
    }
  }

  void Plant(int record, int point, double longitude) {
    std::fstream f(path, std::ios::in | std::ios::out | std::ios::binary);
    unsigned char bytes[kCacheRecordSize];
    f.seekg((record - 1) * kCacheRecordSize);
    f.read(reinterpret_cast<char*>(bytes), kCacheRecordSize);
    EventPositionRecord r = DecodeCacheRecord(bytes);
    r.StartPos[point] = r.EndPos[point] = static_cast<float>(longitude < 0 ? -1.0 : GroupMod(longitude, 360.0));
    r.Motion[point] = longitude < 0 ? 0 : 1;
    EncodeCacheRecord(r, bytes);
    f.seekp((record - 1) * kCacheRecordSize);
    f.write(reinterpret_cast<const char*>(bytes), kCacheRecordSize);
  }

  void Points(std::initializer_list<SearchPair> pairs) {
    ClearSearchPoints(state);
    for (const SearchPair& pair : pairs) AddSearchPair(t.session, state, pair.First, pair.Second);
  }

  std::vector<int> ChartsOf(int k) {
    std::vector<int> charts;
    for (const GroupMatchItem& item : MatchItems(state, k)) charts.push_back(item.Chart);
    return charts;
  }

  static constexpr int kCharts = 8;
  testing::TestSession t;
  GroupSearchState state;
  std::string path;
};

}  // namespace vintar
