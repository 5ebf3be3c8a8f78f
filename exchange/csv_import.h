// Charts from delimited text ("ASCII formats"): named format definitions
// that say how a file's rows are laid out (delimiter, quote, lines to skip,
// the order of the fields and the date order), kept in a text file in the
// user data folder and edited there, and the import of a file's rows as the
// records of a new project.
//
// The definitions file is plain text, one definition per section:
//   [Name, date, time, zone, place, lat, lon]
//   Delimiter=,          (a character, or "tab")
//   Quote="              (empty for none)
//   SkipLines=1
//   Fields=name,date,time,zone,place,latitude,longitude
//   DateOrder=DMY        (DMY, MDY or YMD: how a numeric date reads)
// Field names: name, date, time, zone, place, latitude, longitude, and
// "skip" for a column to pass over. Values are read by the system's own
// parsers (dates, times, zones by mnemonic or offset, coordinates as 48N24
// or signed degrees, north and west positive).
//
// Checked by tests/exchange/csv_import_test.cpp: the shipped definitions,
// quoting, skipped lines, bad rows reported by line, and the file's round
// trip through the editor functions.
#pragma once

#include <string>
#include <vector>

#include "core/progress.h"
#include "core/records.h"
#include "core/session.h"

namespace vintar {

inline constexpr const char* kCsvFormatsFile = "csvformats.txt";
inline constexpr const char* kNoAsciiFormats = "[No ASCII Formats Available]";

struct CsvFormat {
  std::string Title;
  char Delimiter = ',';
  char Quote = '"';  // 0: none
  int SkipLines = 0;
  std::vector<std::string> Fields;
  std::string DateOrder = "DMY";
};

// The definitions: the user's file, else the shipped one in the system data
// folder. A missing or unreadable file gives none.
std::vector<CsvFormat> LoadCsvFormats(const Session& session);
// The text of a definitions file, and its reader (unknown keys and fields
// are left out; a section without fields is dropped).
std::string FormatCsvFormats(const std::vector<CsvFormat>& formats);
std::vector<CsvFormat> ParseCsvFormats(const std::string& text);

// The title of definition `index` (from 0); 0 when there is one, -1 when
// not, as the import screen's list fills itself.
int GetASCIITitle(const std::vector<CsvFormat>& formats, int index, std::string& title);
// The editor: stores the definitions in the user's file (atomically). False,
// with the reason, when a definition is not valid or the file cannot be
// written; nothing is changed then.
bool EditASCII(const Session& session, const std::vector<CsvFormat>& formats, std::string& error);

struct CsvImportResult {
  std::vector<EventRecord> Records;   // from 1
  std::vector<std::string> Skipped;   // "Line 7: ..." per row left out
  bool Cancelled = false;             // stopped by the user: no records
};

// Reads the rows of a delimited text by a definition, reporting its lines
// to `progress`; a cancel stops it with Cancelled set.
CsvImportResult ReadCsv(Session& session, const std::string& text, const CsvFormat& format,
                        Progress* progress = nullptr);

// The import into a new project at `datPath`, refused when it exists. A
// cancel writes nothing and returns false with `error` empty.
bool ImportCsv(Session& session, const std::string& csvPath, const std::string& datPath, const CsvFormat& format,
               CsvImportResult& result, std::string& error, Progress* progress = nullptr);

}  // namespace vintar
