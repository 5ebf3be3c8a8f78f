#include "core/project_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <new>
#include <system_error>
#include <unordered_set>

#include "core/calendar.h"
#include "core/file_io.h"
#include "core/parse.h"
#include "core/progress.h"
#include "core/session.h"
#include "core/text.h"

namespace vintar {

namespace {

// The run-time error texts that the read messages quote.
constexpr const char* kTypeMismatch = "Type mismatch";
constexpr const char* kOverflow = "Overflow";
constexpr const char* kPastEnd = "Input past end of file";
constexpr const char* kOutOfMemory = "Out of memory";
constexpr const char* kDeviceError = "Device I/O error";

constexpr const char* kReadErrorTitle = "File Read Error";

// Raised inside this file only; every public routine catches it.
struct FileError {
  std::string text;
};

// The text of a failed open or read; a file over the reader's limit says so.
std::string ReadFailureText(int err, uint64_t limit) {
  if (err == EFBIG)
    return "File too large: the most this program reads is " + std::to_string(limit >> 20) + " MB.";
  if (err == EINVAL) return FileErrorText(err) + " (not a regular file)";
  return FileErrorText(err);
}

// The classic field reader. Leading blanks are skipped; a field that starts
// with a double quote runs to the next double quote and whatever follows up
// to the delimiter is dropped; an unquoted field runs to the next comma or
// line end and is trimmed. A comma and a line end (CR, LF or CR LF) both end
// a field. Reading a field when nothing is left is "Input past end of file".
class FieldReader {
 public:
  // Reads `data`, which must outlive the reader.
  explicit FieldReader(std::string_view data) : data_(data) {}

  void Rewind() {
    pos_ = 0;
    afterComma_ = false;
  }

  // End of file for the record loops: nothing but blanks and line ends left.
  bool AtEnd() const {
    for (size_t i = pos_; i < data_.size(); ++i) {
      char c = data_[i];
      if (c != ' ' && c != '\t' && c != '\r' && c != '\n') return false;
    }
    return true;
  }

  size_t Position() const { return pos_; }
  size_t Size() const { return data_.size(); }

  // One whole line without its line end.
  std::string Line() {
    if (pos_ >= data_.size()) throw FileError{kPastEnd};
    size_t end = pos_;
    while (end < data_.size() && data_[end] != '\r' && data_[end] != '\n') ++end;
    std::string line(data_.substr(pos_, end - pos_));
    pos_ = end;
    SkipLineEnd();
    afterComma_ = false;
    return line;
  }

  std::string Text() {
    bool quoted = false;
    return Field(quoted);
  }

  template <typename T>
  T Integer() {
    double value = Number();
    value = std::nearbyint(value);  // round half to even, as the classic conversion does
    if (value < static_cast<double>(std::numeric_limits<T>::min()) ||
        value > static_cast<double>(std::numeric_limits<T>::max()))
      throw FileError{kOverflow};
    return static_cast<T>(value);
  }

  float Single() {
    std::string token = NumericToken();
    if (token.empty()) return 0.0f;
    float value = 0.0f;
    auto [ptr, ec] = std::from_chars(token.data(), token.data() + token.size(), value);
    if (ec == std::errc::result_out_of_range) return OutOfRange<float>(token);
    if (ec != std::errc() || ptr != token.data() + token.size()) throw FileError{kTypeMismatch};
    return value;
  }

 private:
  std::string Field(bool& quoted) {
    while (pos_ < data_.size() && (data_[pos_] == ' ' || data_[pos_] == '\t')) ++pos_;
    if (pos_ >= data_.size()) {
      if (!afterComma_) throw FileError{kPastEnd};
      afterComma_ = false;  // a trailing comma leaves one empty field
      quoted = false;
      return std::string();
    }
    std::string text;
    if (data_[pos_] == '"') {
      quoted = true;
      size_t close = data_.find('"', pos_ + 1);
      if (close == std::string_view::npos) close = data_.size();
      text = std::string(data_.substr(pos_ + 1, close - pos_ - 1));
      pos_ = std::min(close + 1, data_.size());
      while (pos_ < data_.size() && !IsDelimiter(data_[pos_])) ++pos_;
    } else {
      quoted = false;
      size_t end = pos_;
      while (end < data_.size() && !IsDelimiter(data_[end])) ++end;
      text = Trim(data_.substr(pos_, end - pos_));
      pos_ = end;
    }
    afterComma_ = false;
    if (pos_ < data_.size()) {
      if (data_[pos_] == ',') {
        ++pos_;
        afterComma_ = true;
      } else {
        SkipLineEnd();
      }
    }
    return text;
  }

  static bool IsDelimiter(char c) { return c == ',' || c == '\r' || c == '\n'; }

  void SkipLineEnd() {
    if (pos_ < data_.size() && data_[pos_] == '\r') ++pos_;
    if (pos_ < data_.size() && data_[pos_] == '\n') ++pos_;
  }

  // An unquoted field that is a decimal number (sign, digits, point,
  // exponent) or empty; anything else is a type mismatch.
  std::string NumericToken() {
    bool quoted = false;
    std::string token = Field(quoted);
    if (quoted) throw FileError{kTypeMismatch};
    if (token.empty()) return token;
    size_t i = 0;
    if (token[i] == '+' || token[i] == '-') ++i;
    size_t digits = 0;
    while (i < token.size() && IsDigit(token[i])) ++i, ++digits;
    if (i < token.size() && token[i] == '.') {
      ++i;
      while (i < token.size() && IsDigit(token[i])) ++i, ++digits;
    }
    if (digits == 0) throw FileError{kTypeMismatch};
    if (i < token.size() && (token[i] == 'e' || token[i] == 'E')) {
      ++i;
      if (i < token.size() && (token[i] == '+' || token[i] == '-')) ++i;
      size_t expDigits = 0;
      while (i < token.size() && IsDigit(token[i])) ++i, ++expDigits;
      if (expDigits == 0) throw FileError{kTypeMismatch};
    }
    if (i != token.size()) throw FileError{kTypeMismatch};
    if (token[0] == '+') token.erase(0, 1);  // from_chars takes no plus sign
    return token;
  }

  double Number() {
    std::string token = NumericToken();
    if (token.empty()) return 0.0;
    double value = 0.0;
    auto [ptr, ec] = std::from_chars(token.data(), token.data() + token.size(), value);
    if (ec == std::errc::result_out_of_range) return OutOfRange<double>(token);
    if (ec != std::errc() || ptr != token.data() + token.size()) throw FileError{kTypeMismatch};
    return value;
  }

  // A number too small to hold is zero; one too large overflows.
  template <typename T>
  static T OutOfRange(const std::string& token) {
    size_t e = token.find_first_of("eE");
    if (e != std::string::npos && e + 1 < token.size() && token[e + 1] == '-') return T(0);
    throw FileError{kOverflow};
  }

  static bool IsDigit(char c) { return c >= '0' && c <= '9'; }

  std::string_view data_;
  size_t pos_ = 0;
  bool afterComma_ = false;
};

// A write that failed with `err` on `path`.
struct WriteFailure {
  int err;
  std::string path;
};

// The mark of a .nat temporary file staged together with its .dat.
constexpr const char* kPairKind = "pair";

std::string TooManyCategoriesText(long long count) {
  return "Too many categories (" + std::to_string(count) + "): a project holds at most " +
         std::to_string(kMaxCategories) + ".";
}

// The format of .dat bytes by the length of the second field: a version 1
// date text is longer than 6 characters, a version 2 year is not. A file too
// short for two fields counts as version 2 and fails when its records are read.
int FormatOfData(std::string_view bytes) {
  FieldReader reader(bytes);
  std::string second;
  try {
    reader.Text();
    second = reader.Text();
  } catch (const FileError&) {
  }
  return second.size() > 6 ? 1 : 2;
}

std::string Quoted(const std::string& text) { return "\"" + text + "\""; }

std::string FormatSingle(float value) {
  char buffer[32];
  auto [ptr, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
  if (ec != std::errc()) return "0";
  return std::string(buffer, ptr);
}

void ShowReadError(Session& session, const std::string& path, const std::string& errorText) {
  session.ShowMessage("Error whilst attempting to read from file: " + path + kLineEnd + kLineEnd + errorText,
                      kIconExclamation, kReadErrorTitle);
}

void ShowRecordReadError(Session& session, const std::string& path, int32_t record, const std::string& errorText) {
  session.ShowMessage("Error whilst attempting to read from file: " + path + kLineEnd + kLineEnd + "Record " +
                          std::to_string(record) + kLineEnd + kLineEnd + errorText,
                      kIconExclamation, kReadErrorTitle);
}

void ShowWriteError(Session& session, const std::string& errorText) {
  session.ShowMessage(std::string("Error whilst writing file:") + kLineEnd + kLineEnd + errorText,
                      kIconExclamation, "Vintar");
}

// The eleven header strings, in file order.
template <typename Header>
auto HeaderStrings(Header& h) {
  return std::array{&h.Title,     &h.Name,         &h.Date,     &h.Time,         &h.Place,      &h.Latitude,
                    &h.Longitude, &h.ZoneMnemonic, &h.ZoneTime, &h.EarliestTime, &h.LatestTime};
}

// Grows the array when index `next` would pass its upper bound.
void EnsureSlot(std::vector<EventRecord>& records, int32_t next, int32_t count) {
  if (static_cast<size_t>(next) >= records.size()) {
    bool failed = false;
    ResizeEvents(records, count + 100, failed);
    if (failed) throw FileError{kOutOfMemory};
  }
}

// The raw elements of a "|" list, 1-based (element 0 unused), at most `capacity`.
std::vector<std::string> SplitCategoryList(const std::string& list, int capacity) {
  std::vector<std::string> elements = SplitOnText(list, "|", capacity);
  elements.insert(elements.begin(), std::string());
  return elements;
}

// A list of `count` slots from 1-based raw elements, each trimmed.
std::string JoinTrimmed(const std::vector<std::string>& elements, int count, int skipSlot) {
  std::string out;
  for (int i = 1; i <= count; ++i) {
    if (i == skipSlot) continue;
    if (i < static_cast<int>(elements.size())) out += Trim(elements[i]);
    out += " |";
  }
  return out;
}

// A parsed value stored in a byte field; out of range is an overflow of the
// record, as it would be for a number read straight from the file.
uint8_t ToByte(int value) {
  if (value < 0 || value > 255) throw FileError{kOverflow};
  return static_cast<uint8_t>(value);
}

void ReadVersion1Record(Session& session, FieldReader& reader, EventRecord& record, bool showMessages) {
  record.Description = reader.Text();
  std::string dateText = reader.Text();
  record.DayRange = reader.Integer<uint8_t>();
  record.DetailLevel = reader.Integer<uint8_t>();
  record.ZoneAbbr = Trim(reader.Text());
  std::string zoneText = reader.Text();
  std::string timeText = reader.Text();
  record.Placename = reader.Text();
  std::string longitudeText = reader.Text();
  std::string latitudeText = reader.Text();

  bool failed = false;
  float zoneHours = 0.0f;
  std::string mnemonic;
  ParseZone(session, zoneText, zoneHours, mnemonic, showMessages, failed);
  record.ZoneHours = zoneHours;

  int16_t day = 0, month = 0, year = 0;
  ParseDate(session, dateText, day, month, year, showMessages, failed);
  record.Year = year;
  record.Month = ToByte(month);
  record.Day = ToByte(day);

  if (Trim(timeText).empty()) {
    record.Hour = 12;
    record.Minute = 0;
    record.Second = 0;
  } else {
    int16_t hours = 0, minutes = 0, seconds = 0;
    ParseTime(session, timeText, hours, minutes, seconds, showMessages, failed);
    record.Hour = ToByte(hours);
    record.Minute = ToByte(minutes);
    record.Second = ToByte(seconds);
  }

  double longitude = 0.0, latitude = 0.0;
  ParseLongitude(session, longitudeText, longitude, showMessages, failed);
  ParseLatitude(session, latitudeText, latitude, showMessages, failed);
  record.Longitude = static_cast<float>(longitude);
  record.Latitude = static_cast<float>(latitude);
  record.Reserved = 0;
  record.Categories.clear();
}

void ReadVersion2Record(FieldReader& reader, EventRecord& record) {
  record.Description = RTrim(reader.Text());
  record.Year = reader.Integer<int16_t>();
  record.Month = reader.Integer<uint8_t>();
  record.Day = reader.Integer<uint8_t>();
  record.Hour = reader.Integer<uint8_t>();
  record.Minute = reader.Integer<uint8_t>();
  record.Second = reader.Integer<uint8_t>();
  record.DayRange = reader.Integer<uint8_t>();
  record.DetailLevel = reader.Integer<uint8_t>();
  record.ZoneAbbr = RTrim(reader.Text());
  record.ZoneHours = reader.Single();
  record.Placename = RTrim(reader.Text());
  record.Longitude = reader.Single();
  record.Latitude = reader.Single();
  record.Enabled = reader.Integer<int16_t>();
  record.Reserved = reader.Integer<int16_t>();
  record.Categories = reader.Text();
  // Ranges of 180 days and more are not analysed.
  if (record.DayRange > 179) record.Enabled = kFalse;
}

// Julian day of a header date at one of its time texts: the seconds are
// divided by 60 like the minutes, which the stored natal days rely on.
double HeaderMoment(int day, int month, int year, double zoneHours, int hours, int minutes, int seconds) {
  double dayFraction = day + (zoneHours + hours + minutes / 60.0 + seconds / 60.0) / 24.0;
  return JulDay(dayFraction, month, year) + DeltaT(year) / 24.0;
}

}  // namespace

// ---------------------------------------------------------------------------

void SetNewProjectHeader(ProjectHeader& header) {
  header = ProjectHeader{};
  header.FormatVersion = 2;
  header.Title = "New Project";
  header.ZoneMnemonic = "UT";
  header.EarliestTime = "0:00 AM";
  header.LatestTime = "11:59 PM";
}

void ResetProjectHeader(ProjectHeader& header) {
  header = ProjectHeader{};
  header.Time = "Unknown";
  header.EarliestTime = "0:00 am";
  header.LatestTime = "11:59 pm";
}

void SetNoNatalChart(ProjectHeader& header) {
  header.Time = "Unknown";
  header.Place = "Nowhere";
  header.Latitude = "00N00";
  header.Longitude = "000W00";
  header.ZoneMnemonic = "GMT";
  header.ZoneTime = "+0:00";
}

std::string NatPathFor(const std::string& datPath) {
  std::string path = RTrim(datPath);
  if (path.size() >= 4) path.resize(path.size() - 4);
  return path + ".nat";
}

int DetectDataFormat(const std::string& path) {
  try {
    // The first two fields are all it looks at.
    std::string bytes;
    if (ReadFilePrefix(path, bytes, 1 << 20) != 0) return 0;
    return FormatOfData(bytes);
  } catch (...) {
    return 0;
  }
}

void ReadProjectHeader(Session& session, const std::string& natPath, ProjectHeader& header, Progress* progress,
                       bool& failed) {
  failed = true;
  try {
    std::string bytes;
    if (int err = ReadFileBytes(natPath, bytes, kMaxSmallFileBytes)) {
      if (err == ENOENT) {
        // A .dat without its companion opens as a new project.
        SetNewProjectHeader(header);
        failed = false;
      } else {
        ShowReadError(session, natPath, ReadFailureText(err, kMaxSmallFileBytes));
      }
      return;
    }
    if (progress) progress->Status("Reading File " + RTrim(natPath));
    FieldReader reader(bytes);
    try {
      std::vector<std::string> tokens = SplitOnAny(Trim(reader.Line()), " ,", 2);
      double version = 1.0;
      if (tokens.size() == 2 && EqualsIgnoreCase(tokens[0], "VINTAR")) version = Val(tokens[1]);

      // Read into a copy so that a damaged file leaves no half-read header.
      ProjectHeader read = header;
      if (version == 1.0) {
        reader.Rewind();
        for (std::string* field : HeaderStrings(read)) *field = reader.Text();
        read.CategoryNames.clear();
        read.CategoryTypes.clear();
        read.CategoryCount = 0;
        read.RecordCount = 0;
        // The Enabled flags follow, one a line. They are checked and
        // counted but not kept: the .dat reader enables every version 1
        // record whatever this list says, and holding a record slot for
        // each flag would let a small file claim a vast array.
        int32_t count = 0;
        while (!reader.AtEnd()) {
          reader.Integer<int16_t>();
          ++count;
        }
        read.RecordCount = count;
        read.FormatVersion = 1;
      } else if (version == 2.0) {
        for (std::string* field : HeaderStrings(read)) *field = reader.Text();
        read.CategoryNames = reader.Text();
        read.CategoryTypes = reader.Text();
        const int categories = CategoryElementCount(read.CategoryNames);
        if (categories > kMaxCategories) throw FileError{TooManyCategoriesText(categories)};
        read.CategoryCount = static_cast<int16_t>(categories);
        read.RecordCount = 0;
        read.FormatVersion = 2;
      } else {
        // A version this program does not know: the open is given up quietly.
        header.FormatVersion = 0;
        return;
      }
      header = std::move(read);
      failed = false;
    } catch (const FileError& e) {
      ShowReadError(session, natPath, e.text);
      return;
    }
    ComputeHeaderJulianDays(session, header);
  } catch (const std::bad_alloc&) {
    ShowReadError(session, natPath, kOutOfMemory);
    failed = true;
  } catch (...) {
    ShowReadError(session, natPath, kDeviceError);
    failed = true;
  }
}

bool ReadDataFile(Session& session, const std::string& datPath, ProjectHeader& header,
                  std::vector<EventRecord>& records, CategoryIndex& index, Progress* progress,
                  const std::vector<int>& categoryMap, bool showMessages) {
  const std::string& path = datPath;
  std::string bytes;
  if (int err = ReadFileBytes(path, bytes, kMaxProjectFileBytes)) {
    header.FormatVersion = 0;
    session.project.Status.NatalValid = kFalse;
    // A missing .dat is an empty project; one that is there but cannot be
    // read is an error, so that nothing is ever saved over it.
    if (err == ENOENT) return true;
    ShowReadError(session, path, ReadFailureText(err, kMaxProjectFileBytes));
    header.RecordCount = 0;
    return false;
  }
  try {
    header.FormatVersion = static_cast<int16_t>(FormatOfData(bytes));
  } catch (...) {
    header.FormatVersion = 2;
  }
  const bool merging = session.MergeActive != 0;
  const int version = header.FormatVersion == 1 ? 1 : 2;
  int32_t count = 0;
  try {
    FieldReader reader(bytes);
    if (progress) {
      progress->Caption("Reading File " + RTrim(path));
      progress->Status("Reading File " + RTrim(path));
    }
    if (records.empty()) records.resize(1);
    if (merging) {
      // Behind the records already held; a count larger than the array is
      // not to be trusted.
      count = std::clamp<int32_t>(header.RecordCount, 0, static_cast<int32_t>(records.size()) - 1);
    } else {
      records.assign(2, EventRecord{});
    }

    while (!reader.AtEnd()) {
      if (count >= kMaxProjectRecords) {
        ++count;
        throw FileError{"Too many records: a project holds at most " + std::to_string(kMaxProjectRecords) + "."};
      }
      EnsureSlot(records, count + 1, count);
      ++count;
      EventRecord record;
      if (version == 1) {
        // The Enabled list of a version 1 .nat never survives: an open starts
        // the array afresh and a merge adds behind the current records.
        ReadVersion1Record(session, reader, record, showMessages);
        record.Enabled = kTrue;
      } else {
        ReadVersion2Record(reader, record);
      }
      if (merging) MapCategoryElements(record.Categories, categoryMap);
      record.JulianDay = RecordJulianDay(record);
      records[count] = std::move(record);
      if (progress && count % 10 == 0) {
        progress->Status("Records Read: " + std::to_string(count));
        if (reader.Size() > 0) progress->Fraction(static_cast<double>(reader.Position()) / reader.Size());
      }
    }
    if (progress) progress->Status("Records Read: " + std::to_string(count));
    header.RecordCount = count;
    RebuildCategoryIndex(session, header, records, index, progress);
    return true;
  } catch (const FileError& e) {
    ShowRecordReadError(session, path, count, e.text);
  } catch (const std::bad_alloc&) {
    ShowRecordReadError(session, path, count, kOutOfMemory);
  } catch (...) {
    ShowRecordReadError(session, path, count, kDeviceError);
  }
  header.RecordCount = 0;
  return false;
}

void ComputeHeaderJulianDays(Session& session, ProjectHeader& header) {
  try {
    bool failed = false;
    int16_t day = 0, month = 0, year = 0;
    ParseDate(session, header.Date, day, month, year, false, failed);
    float zoneHours = 0.0f;
    std::string mnemonic;
    ParseZone(session, header.ZoneTime, zoneHours, mnemonic, false, failed);

    auto moment = [&](const std::string& timeText, bool& timeFailed) {
      int16_t h = 0, m = 0, s = 0;
      ParseTime(session, timeText, h, m, s, false, timeFailed);
      return HeaderMoment(day, month, year, zoneHours, h, m, s);
    };
    bool ignored = false;
    header.EarliestJulianDay = moment(header.EarliestTime, ignored);
    header.LatestJulianDay = moment(header.LatestTime, ignored);
    bool timeFailed = false;
    double natal = moment(header.Time, timeFailed);
    header.NatalJulianDay = timeFailed ? (header.EarliestJulianDay + header.LatestJulianDay) / 2.0 : natal;
  } catch (...) {
    // Parsers and calendar arithmetic do not throw; nothing to report here.
  }
}

std::string FormatNatFile(const ProjectHeader& header) {
  std::string out = std::string("VINTAR 2") + kLineEnd;
  bool first = true;
  for (const std::string* field : HeaderStrings(header)) {
    if (!first) out += ',';
    out += Quoted(RTrim(*field));
    first = false;
  }
  out += kLineEnd;
  out += Quoted(RTrim(header.CategoryNames)) + "," + Quoted(RTrim(header.CategoryTypes)) + kLineEnd;
  return out;
}

std::string FormatDataRecord(const EventRecord& r) {
  std::string out;
  out.reserve(160);
  out += Quoted(r.Description);
  for (int value : {static_cast<int>(r.Year), static_cast<int>(r.Month), static_cast<int>(r.Day),
                    static_cast<int>(r.Hour), static_cast<int>(r.Minute), static_cast<int>(r.Second),
                    static_cast<int>(r.DayRange), static_cast<int>(r.DetailLevel)})
    out += "," + std::to_string(value);
  out += "," + Quoted(r.ZoneAbbr);
  out += "," + FormatSingle(r.ZoneHours);
  out += "," + Quoted(r.Placename);
  out += "," + FormatSingle(r.Longitude);
  out += "," + FormatSingle(r.Latitude);
  out += "," + std::to_string(r.Enabled);
  out += "," + std::to_string(r.Reserved);
  out += "," + Quoted(r.Categories);
  out += kLineEnd;
  return out;
}

void WriteProject(Session& session, const std::string& path, ProjectHeader& header,
                  std::vector<EventRecord>& records, bool& failed, bool updateTitle) {
  failed = false;
  CurStatus& status = session.project.Status;
  StagedFile natFile, datFile;
  std::string errorText;
  try {
    std::string target = path;
    if (Trim(target).empty()) {
      const std::string kept = session.project.ProjectPath;
      std::string chosen;
      bool accepted = session.AskSavePath && session.AskSavePath(chosen);
      if (!accepted || Trim(chosen).empty()) {
        session.DialogCancelled = 0;
        return;
      }
      target = chosen;
      if (!EqualsIgnoreCase(target, kept)) {
        status.NatChanged = kTrue;
        status.DataChanged = kTrue;
      }
      UpdateTitle(session, target);
    }

    const bool writeNat = status.NatChanged != 0;
    const bool writeDat = status.DataChanged != 0 || header.FormatVersion < 2;
    const std::string natTarget = NatPathFor(target);
    RecoverInterruptedSave(target);

    // Both files are complete on disk before either replaces its old copy:
    // the .dat is staged first and the .nat under the same token, marked as
    // one of a pair, so that recovery can tell how far a killed save got.
    if (writeDat) {
      int32_t last = std::min<int32_t>(header.RecordCount, static_cast<int32_t>(records.size()) - 1);
      std::string bytes;
      for (int32_t i = 1; i <= last; ++i) bytes += FormatDataRecord(records[i]);
      if (int err = StageFile(target, bytes, datFile)) throw WriteFailure{err, target};
    }
    if (writeNat) {
      const std::string kind = writeDat ? kPairKind : "";
      if (int err = StageFile(natTarget, FormatNatFile(header), natFile, datFile.token, kind))
        throw WriteFailure{err, natTarget};
    }
    if (writeDat) {
      if (int err = CommitFile(datFile)) throw WriteFailure{err, target};
      status.DataChanged = kFalse;
    }
    if (writeNat) {
      // Should this rename fail, the staged .nat stays for recovery: the
      // new .dat is already in place.
      if (int err = CommitFile(natFile)) {
        if (writeDat) natFile.temp.clear();
        throw WriteFailure{err, natTarget};
      }
      status.NatChanged = kFalse;
    }
    if (writeDat && updateTitle) UpdateTitle(session, target);
    header.FormatVersion = 2;
    return;
  } catch (const WriteFailure& e) {
    errorText = WriteErrorText(e.err, e.path);
  } catch (const FileError& e) {
    errorText = e.text;
  } catch (const std::bad_alloc&) {
    errorText = kOutOfMemory;
  } catch (...) {
    errorText = kDeviceError;
  }
  // The .nat of a pair goes first: a pair's .nat alone means its .dat is in place.
  DiscardFile(natFile);
  DiscardFile(datFile);
  ShowWriteError(session, errorText);
  failed = true;
}

// Category lists ------------------------------------------------------------

int CategoryElementCount(const std::string& list) {
  return static_cast<int>(std::count(list.begin(), list.end(), '|'));
}

void SetCategoryValue(std::string& categories, int category, const std::string& text, int categoryCount) {
  try {
    std::vector<std::string> elements = SplitCategoryList(categories, categoryCount);
    if (text == kDeleteCategory) {
      categories = JoinTrimmed(elements, categoryCount, category);
      return;
    }
    if (category >= 1 && category <= categoryCount) {
      if (static_cast<int>(elements.size()) <= category) elements.resize(category + 1);
      elements[category] = text;
      // Slots between the old end and the new element stay empty.
    }
    categories = JoinTrimmed(elements, categoryCount, 0);
  } catch (...) {
    // Out of memory: the list stays as it was.
  }
}

void SetCategoryDefinition(ProjectHeader& header, int category, const std::string& name, int type) {
  if (category < 1 || category > kMaxCategories) return;
  if (name == kDeleteCategory) {
    if (category > header.CategoryCount) return;
    SetCategoryValue(header.CategoryNames, category, kDeleteCategory, header.CategoryCount);
    SetCategoryValue(header.CategoryTypes, category, kDeleteCategory, header.CategoryCount);
    --header.CategoryCount;
    return;
  }
  if (category > header.CategoryCount) header.CategoryCount = static_cast<int16_t>(category);
  SetCategoryValue(header.CategoryNames, category, name, header.CategoryCount);
  SetCategoryValue(header.CategoryTypes, category, std::to_string(type), header.CategoryCount);
}

void GetCategoryDefinition(const ProjectHeader& header, int category, std::string& name, int& type) {
  name.clear();
  type = 0;
  if (category < 1) return;
  std::vector<std::string> names = SplitCategoryList(header.CategoryNames, category);
  if (static_cast<int>(names.size()) > category) name = names[category];
  std::vector<std::string> types = SplitCategoryList(header.CategoryTypes, category);
  if (static_cast<int>(types.size()) > category) type = ToIntSaturated(Val(types[category]));
}

void FillCategoryList(Session& session, int category, const ProjectHeader& header,
                      const std::vector<EventRecord>& records, std::vector<std::string>& values, int start,
                      int32_t& length, bool& failed) {
  failed = false;
  length = 0;
  if (category < 1 || category > header.CategoryCount) {
    session.ShowMessage("FillCategoryList Error - Invalid Category Number: ' + Format(Category%), vbOKOnly");
    failed = true;
    return;
  }
  try {
    if (start < 1) start = 1;
    values.resize(static_cast<size_t>(start));
    std::unordered_set<std::string> known;
    int32_t last = std::min<int32_t>(header.RecordCount, static_cast<int32_t>(records.size()) - 1);
    for (int32_t i = 1; i <= last; ++i) {
      std::vector<std::string> elements = SplitCategoryList(records[i].Categories, category);
      if (static_cast<int>(elements.size()) <= category) continue;
      std::string value = Trim(elements[category]);
      if (!known.insert(UCase(value)).second) continue;
      values.push_back(std::move(value));
      ++length;
    }
  } catch (...) {
    failed = true;
  }
}

void ExpandCategoryList(Session& session, int category, const ProjectHeader& header, const std::string& text,
                        CategoryIndex& index, bool& failed) {
  failed = false;
  if (category < 1 || category > header.CategoryCount) {
    session.ShowMessage("ExpandCategoryList Error - Invalid Category Number: ' + Format(Category%), vbOKOnly");
    failed = true;
    return;
  }
  try {
    size_t slots = static_cast<size_t>(header.CategoryCount) + 1;
    if (index.CategoryStart.size() < slots) index.CategoryStart.resize(slots, 0);
    if (index.CategoryLength.size() < slots) index.CategoryLength.resize(slots, 0);
    if (index.CategoryValues.empty()) index.CategoryValues.resize(1);
    auto& values = index.CategoryValues;
    const int start = index.CategoryStart[category];
    const int length = index.CategoryLength[category];

    int lastStart = 0;
    for (size_t c = 1; c < slots; ++c) lastStart = std::max<int>(lastStart, index.CategoryStart[c]);
    const bool isLast = start == lastStart && length >= 1 && start + length == static_cast<int>(values.size());

    if (start < 0 || length < 0 || static_cast<size_t>(start) + static_cast<size_t>(length) > values.size())
      throw FileError{kOverflow};
    if (isLast) {
      values.push_back(text);
    } else {
      // The old block stays where it is, unused.
      const int newStart = static_cast<int>(values.size());
      for (int k = 0; k < length; ++k) values.push_back(values[static_cast<size_t>(start + k)]);
      values.push_back(text);
      index.CategoryStart[category] = newStart;
    }
    index.CategoryLength[category] = length + 1;
  } catch (const FileError& e) {
    session.ShowMessage(e.text + kLineEnd + kLineEnd + "Unable to expand category list.", kIconExclamation, "Error");
    failed = true;
  } catch (...) {
    session.ShowMessage(std::string(kOutOfMemory) + kLineEnd + kLineEnd + "Unable to expand category list.",
                        kIconExclamation, "Error");
    failed = true;
  }
}

void MapCategoryElements(std::string& categories, const std::vector<int>& categoryMap) {
  int highest = 0;
  for (size_t i = 1; i < categoryMap.size(); ++i) highest = std::max(highest, categoryMap[i]);
  highest = std::min(highest, kMaxCategories);
  if (highest < 1) return;
  try {
    std::vector<std::string> old = SplitCategoryList(categories, highest);
    std::vector<std::string> slots(static_cast<size_t>(highest) + 1);
    for (size_t i = 1; i < old.size() && i < categoryMap.size(); ++i) {
      int target = categoryMap[i];
      if (target >= 1 && target <= highest) slots[static_cast<size_t>(target)] = old[i];
    }
    std::string out;
    for (int i = 1; i <= highest; ++i) out += slots[static_cast<size_t>(i)] + " |";
    categories = std::move(out);
  } catch (...) {
    // Out of memory: the record keeps its list.
  }
}

void RebuildCategoryIndex(Session& session, const ProjectHeader& header, const std::vector<EventRecord>& records,
                          CategoryIndex& index, Progress* progress) {
  (void)session;
  const int count = std::clamp<int>(header.CategoryCount, 0, kMaxCategories);
  index.CategoryValues.assign(1, std::string());
  index.CategoryStart.assign(static_cast<size_t>(count) + 1, 0);
  index.CategoryLength.assign(static_cast<size_t>(count) + 1, 0);
  if (count == 0) return;

  // One pass over the header lists and one over each record's list, so that
  // the time grows with the size of the project, never with its square.
  std::vector<std::string> names = SplitCategoryList(header.CategoryNames, count);
  std::vector<std::string> types = SplitCategoryList(header.CategoryTypes, count);
  std::vector<bool> isList(static_cast<size_t>(count) + 1, false);
  for (int c = 1; c <= count; ++c)
    isList[c] = c >= static_cast<int>(types.size()) || ToIntSaturated(Val(types[c])) == 0;

  // Distinct values of each list category in order of first appearance,
  // compared ignoring case.
  std::vector<std::vector<std::string>> gathered(static_cast<size_t>(count) + 1);
  std::vector<std::unordered_set<std::string>> seen(static_cast<size_t>(count) + 1);
  const int32_t last = std::min<int32_t>(header.RecordCount, static_cast<int32_t>(records.size()) - 1);
  for (int32_t i = 1; i <= last; ++i) {
    const std::vector<std::string> elements = SplitCategoryList(records[i].Categories, count);
    for (size_t c = 1; c < elements.size(); ++c) {
      if (!isList[c]) continue;
      std::string value = Trim(elements[c]);
      if (seen[c].insert(UCase(value)).second) gathered[c].push_back(std::move(value));
    }
  }

  int32_t running = 1;
  for (int c = 1; c <= count; ++c) {
    if (progress) progress->Status("Reading Category Data: " + (c < static_cast<int>(names.size()) ? names[c] : ""));
    if (!isList[c]) continue;
    index.CategoryStart[c] = running;
    index.CategoryLength[c] = static_cast<int32_t>(gathered[c].size());
    running += index.CategoryLength[c];
    for (std::string& value : gathered[c]) index.CategoryValues.push_back(std::move(value));
  }
}

void ResizeEvents(std::vector<EventRecord>& records, int32_t upperBound, bool& failed) {
  failed = false;
  if (upperBound < 0) return;
  try {
    if (records.size() < static_cast<size_t>(upperBound) + 1) records.resize(static_cast<size_t>(upperBound) + 1);
  } catch (...) {
    failed = true;
  }
}

bool ProjectTooLarge(Session& session) {
  const int32_t count = session.project.Header.RecordCount;
  if (count <= kMaxRecordsForAction) return false;
  session.ShowMessage(std::string("The current project is too large to perform this action.") + kLineEnd +
                          "The current project has " + std::to_string(count) +
                          " records, but the most allowed for this action is " +
                          std::to_string(kMaxRecordsForAction) + kLineEnd +
                          "If you wish to use this function, then you must first split the project into smaller "
                          "files, using the File/Data Options/Split menu items.",
                      kIconExclamation);
  return true;
}

bool NatalCheck(Session& session, const ProjectHeader& header) {
  bool valid = true;
  bool failed = false;
  if (Trim(header.Name).empty()) valid = false;
  int16_t day = 0, month = 0, year = 0;
  ParseDate(session, header.Date, day, month, year, false, failed);
  if (failed) valid = false;
  if (Trim(header.Place).empty()) valid = false;
  double angle = 0.0;
  ParseLongitude(session, header.Longitude, angle, false, failed);
  if (failed) valid = false;
  ParseLatitude(session, header.Latitude, angle, false, failed);
  if (failed) valid = false;
  std::string zone = header.ZoneTime;
  if (!zone.empty() && (zone[0] == '-' || zone[0] == '+')) zone.erase(0, 1);
  int16_t h = 0, m = 0, s = 0;
  ParseTime(session, zone, h, m, s, false, failed);
  if (failed) valid = false;
  return valid;
}

bool RecoverInterruptedSave(const std::string& datPath) {
  bool finished = false;
  try {
    const std::string dat = RTrim(datPath);
    const std::string nat = NatPathFor(dat);
    for (const TemporaryFile& t : FindTemporaries(nat)) {
      if (!t.stale || t.kind != kPairKind) continue;
      const std::string datTemp = TemporaryName(dat, t.token, "");
      if (::access(datTemp.c_str(), F_OK) == 0) {
        ::unlink(t.path.c_str());
        ::unlink(datTemp.c_str());
      } else if (RenameDurably(t.path, nat) == 0) {
        finished = true;
      }
    }
    RemoveStaleTemporaries(dat);
    RemoveStaleTemporaries(nat);
  } catch (...) {
    // Out of memory: the temporary files stay for the next time.
  }
  return finished;
}

namespace {

// Defines categories CategoryCount + 1 to `count` as free text named
// "Untitled<n>", building both lists once instead of once a category.
void AddUntitledCategories(ProjectHeader& header, int count) {
  const int known = header.CategoryCount;
  std::vector<std::string> names = SplitCategoryList(header.CategoryNames, known);
  std::vector<std::string> types = SplitCategoryList(header.CategoryTypes, known);
  std::string nameList, typeList;
  for (int i = 1; i <= count; ++i) {
    if (i <= known) {
      if (i < static_cast<int>(names.size())) nameList += Trim(names[i]);
      if (i < static_cast<int>(types.size())) typeList += Trim(types[i]);
    } else {
      nameList += "Untitled" + std::to_string(i);
      typeList += "2";
    }
    nameList += " |";
    typeList += " |";
  }
  header.CategoryNames = std::move(nameList);
  header.CategoryTypes = std::move(typeList);
  header.CategoryCount = static_cast<int16_t>(count);
}

}  // namespace

bool OpenProjectFiles(Session& session, const std::string& datPath, Progress* progress) {
  ProjectState& project = session.project;
  const int16_t merge = session.MergeActive;
  session.MergeActive = 0;  // an open, never a merge
  bool ok = false;
  try {
    const std::string natPath = NatPathFor(datPath);
    RecoverInterruptedSave(datPath);
    project.Status.NatChanged = kFalse;
    project.Status.DataChanged = kFalse;
    ResetProjectHeader(project.Header);
    bool failed = false;
    ReadProjectHeader(session, natPath, project.Header, progress, failed);
    if (!failed) {
      ok = ReadDataFile(session, datPath, project.Header, project.Events, project.Categories, progress, {}, true);
    }
    if (ok && project.Header.RecordCount > 0 && project.Events.size() > 1) {
      // Categories added to the .dat by hand: define them as free text.
      const long long bars = CategoryElementCount(project.Events[1].Categories);
      const int known = project.Header.CategoryCount;
      if (bars > kMaxCategories) {
        ShowRecordReadError(session, datPath, 1, TooManyCategoriesText(bars));
        ok = false;
      } else if (bars > known) {
        project.Categories.CategoryStart.resize(static_cast<size_t>(bars) + 1, 0);
        project.Categories.CategoryLength.resize(static_cast<size_t>(bars) + 1, 0);
        AddUntitledCategories(project.Header, static_cast<int>(bars));
      }
    }
    if (ok) {
      project.Status.NatalValid = NatalCheck(session, project.Header) ? kTrue : kFalse;
      project.ProjectPath = datPath;
      project.ProjectFolder = PathFolder(datPath);
      std::string name = PathFileName(datPath);
      project.ProjectStem = name.size() >= 4 ? name.substr(0, name.size() - 4) : name;
      project.Status.NatPath = natPath;
      UpdateTitle(session, datPath);
      session.TitlePanel = "Current Project: " + project.Header.Title;
    }
  } catch (...) {
    ok = false;
  }
  if (!ok) {
    project.Header.RecordCount = 0;
    project.Status.NatalValid = kFalse;
  }
  session.MergeActive = merge;
  return ok;
}

}  // namespace vintar
