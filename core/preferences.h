// User preferences, kept in section "Vintar" of VINTAR2.INI in the
// configuration folder. Flags are 16-bit, -1 true and 0 false, stored as
// integers. LoadPreferences reads every key with its default and clamps the
// ranged ones; SavePreferences writes the keys that "Save Preferences" writes.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vintar {

class Session;

struct Preferences {
  std::string SystemDataPath;
  std::string SwissEphPath;
  std::string UserDataPath;
  int16_t SaveOnExit = -1;
  int16_t Sound = -1;
  int16_t Prompt = -1;
  int16_t TrueNode = 0;
  int16_t MonthFirst = 0;
  int16_t AutoSave = -1;
  int16_t CUAKeys = -1;
  int16_t AMPM = -1;
  int16_t PreferACSEmbedded = -1;
  int16_t Houses = 5;
  int16_t Progressions = 1;
  int16_t PointOnCusp = 3;
  int16_t WhichCusp = 1;
  int16_t Zodiac = 1;
  float UserAyan = 0.0f;
  float DynInterval = 0.1f;
  int16_t DynStepDays = 7;
  std::string WordProc;
  int16_t UseOtherWP = 0;  // the report opens in WordProc rather than the system's viewer
  std::array<std::string, 5> FilePath;  // 1..4
  std::array<std::string, 5> FileName;  // 1..4
  int16_t MinPeakWidth = 2;
  float PeakSDFactor = 1.9f;
  float ForcePeakSDFactor = 3.0f;
  int16_t MaxPeaks = 2;
  int16_t MaxGapBars = 4;
  int16_t AddCommonBars = 2;
  std::string HCTTFont = "CW Symbol";
  int16_t AutoAtlasLookup = 0;
  int16_t UseACS = 0;
  int16_t IllinoisWarning = -1;  // warn when an Illinois birth fell under its standard-time recording law
  std::string UranusGlyph = "191";
  std::string PlutoGlyph = "193";
  std::string CapricornGlyph = "137";
  // Auto Rectify. The graph weight below which the graph stage stops
  // narrowing the graphs to the slower planets; a higher value keeps the
  // faster planets in projects of few events.
  float AutoGraphMinWeight = 100.0f;
  // How the candidates are ranked: 0 by the overall score of the three
  // searches, 1 by the transit ratio alone (ties by the overall score).
  int16_t AutoScoreMode = 0;

  // The node point that is live in a chart: 19 true, 20 mean.
  int NodePoint() const { return TrueNode ? 19 : 20; }
};

// Section "Vintar" of the preference file.
std::string GetPreferenceText(const Session& session, const std::string& key, const std::string& def,
                              int capacity = 255);
long GetPreferenceInteger(const Session& session, const std::string& key, long def);
double GetPreferenceFloat(const Session& session, const std::string& key, double def);
// Any section of any profile file; an empty `file` means the preference file.
std::string GetProfileText(const Session& session, const std::string& section, const std::string& key,
                           const std::string& def, const std::string& file = "");
double GetProfileNumber(const Session& session, const std::string& section, const std::string& key,
                        double def, const std::string& file = "");
// An empty value deletes the key. Returns false when the file could not be written.
bool PutProfileText(const Session& session, const std::string& section, const std::string& key,
                    const std::string& value, const std::string& file = "");
bool PutProfileNumber(const Session& session, const std::string& section, const std::string& key, double number,
                      const std::string& file = "");

// Reads all preferences in load order into session.prefs.
void LoadPreferences(Session& session);
// Writes the keys of "Save Preferences" (without asking).
bool SavePreferences(Session& session);
// "Save Preferences" and "Restore Preferences" with their questions.
void SavePreferencesCommand(Session& session);
void RestorePreferencesCommand(Session& session);
// Every preference key with its current value as text, in load order.
std::vector<std::pair<std::string, std::string>> PreferenceListing(const Preferences& prefs);
// Whether `key` is one of the preference keys (ignoring case).
bool IsPreferenceKey(const std::string& key);

// Writes the recent-file pairs and DynStepDays, as at shutdown.
void SaveShutdownPreferences(Session& session);

}  // namespace vintar
