#include "places/place_db.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <set>
#include <utility>

#include "core/file_io.h"
#include "core/messages.h"
#include "core/parse.h"
#include "core/session.h"
#include "core/text.h"

namespace vintar {
namespace {

constexpr const char* kPlaceTitle = "Vintar";

// The whole file, or its errno. A file larger than the small-file limit is
// refused; it could never have been made by the place screen.
int ReadPlaceBytes(const std::string& path, std::string& bytes) {
  bytes.clear();
  return ReadFileBytes(path, bytes, kMaxSmallFileBytes);
}

// Whole records in `bytes`, and the part of them the 16-bit list can address.
size_t WholeRecords(const std::string& bytes) { return bytes.size() / kPlaceRecordBytes; }
int16_t AddressableRecords(const std::string& bytes) {
  return static_cast<int16_t>(std::min<size_t>(WholeRecords(bytes), kMaxPlaces));
}

PlaceRecord RecordAt(const std::string& bytes, int16_t record) {
  return DecodePlaceRecord(std::string_view(bytes).substr(size_t(record - 1) * kPlaceRecordBytes));
}

std::string Field(std::string_view text, size_t width) {
  std::string out(text.substr(0, width));
  out.resize(width, ' ');
  return out;
}

void ShowReadFailure(Session& session, const std::string& path, int err) {
  session.ShowMessage("Unable to open the place file " + path + kLineEnd + FileErrorText(err), kIconExclamation,
                      kPlaceTitle);
}

// Creates the folder of `path` when it is missing (a new user's data folder).
void EnsureFolderOf(const std::string& path) {
  std::error_code ec;
  std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ec);
}

bool WriteWithMessage(Session& session, const std::string& path, const std::string& bytes) {
  EnsureFolderOf(path);
  std::string error;
  if (WriteFileAtomically(path, bytes, error)) return true;
  session.ShowMessage(error, kIconExclamation, kPlaceTitle);
  return false;
}

// Writes `record` as record number `number` of the current file: in place
// when it exists, else as the next record after the whole ones (which takes
// the place of a partial record at the end). Returns the number, 0 on
// failure with its message shown.
int16_t WriteRecord(Session& session, int16_t number, const PlaceRecord& record) {
  std::string bytes;
  int err = ReadPlaceBytes(PlaceReadPath(session), bytes);
  if (err != 0 && err != ENOENT) {
    ShowReadFailure(session, PlaceReadPath(session), err);
    return 0;
  }
  size_t whole = WholeRecords(bytes);
  if (number <= 0 || size_t(number) > whole) {
    if (whole >= size_t(kMaxPlaces)) {
      session.ShowMessage("The place database is full: it holds at most 32767 places.", kIconExclamation,
                          kPlaceTitle);
      return 0;
    }
    number = static_cast<int16_t>(whole + 1);
    bytes.resize(whole * kPlaceRecordBytes);
    bytes += EncodePlaceRecord(record);
  } else {
    bytes.replace(size_t(number - 1) * kPlaceRecordBytes, kPlaceRecordBytes, EncodePlaceRecord(record));
  }
  return WriteWithMessage(session, PlaceFilePath(session), bytes) ? number : 0;
}

// Parses the two coordinate fields with their messages; the stored texts
// are the formatted values.
bool CheckCoordinates(Session& session, const std::string& latitudeText, const std::string& longitudeText,
                      bool longitudeFirst, std::string& latitude, std::string& longitude) {
  double lat = 0.0, lon = 0.0;
  bool failed = false;
  if (longitudeFirst) {
    ParseLongitude(session, longitudeText, lon, true, failed);
    if (failed) return false;
  }
  ParseLatitude(session, latitudeText, lat, true, failed);
  if (failed) return false;
  if (!longitudeFirst) {
    ParseLongitude(session, longitudeText, lon, true, failed);
    if (failed) return false;
  }
  latitude = FormatLatitude(lat);
  longitude = FormatLongitude(lon);
  return true;
}

void BlankFields(PlaceScreen& screen) {
  screen.Name.clear();
  screen.Latitude.clear();
  screen.Longitude.clear();
}

// Puts the current record back in the fields after a cancelled entry.
void RestoreCurrent(Session& session, PlaceScreen& screen) {
  screen.PlaceNew = screen.PlaceEdited = false;
  if (screen.CurrentPlace <= 0 || !ShowPlace(session, screen, screen.CurrentPlace)) BlankFields(screen);
}

}  // namespace

std::string EncodePlaceRecord(const PlaceRecord& record) {
  return Field(record.Name, kPlaceNameBytes) + Field(record.Latitude, kPlaceLatitudeBytes) +
         Field(record.Longitude, kPlaceLongitudeBytes);
}

PlaceRecord DecodePlaceRecord(std::string_view bytes) {
  std::string raw = Field(bytes, kPlaceRecordBytes);
  std::string_view v(raw);
  return {RTrim(v.substr(0, kPlaceNameBytes)), RTrim(v.substr(kPlaceNameBytes, kPlaceLatitudeBytes)),
          RTrim(v.substr(kPlaceNameBytes + kPlaceLatitudeBytes, kPlaceLongitudeBytes))};
}

std::string PlaceFilePath(const Session& session) {
  return session.paths.FolderTable[1] + session.paths.PlaceFile;
}

std::string PlaceTempPath(const Session& session) {
  return session.paths.FolderTable[2] + session.paths.PlaceTempFile;
}

std::string PlaceReadPath(const Session& session) {
  std::string user = PlaceFilePath(session);
  // Anything standing at the user's path is the user's file, so that an
  // unreadable one is reported rather than passed over for the shipped one.
  std::error_code ec;
  if (std::filesystem::symlink_status(user, ec).type() != std::filesystem::file_type::not_found) return user;
  std::string shipped = session.paths.FolderTable[0] + session.paths.PlaceFile;
  return FileExists(shipped) ? shipped : user;
}

bool ReadPlaceRecords(const Session& session, std::vector<PlaceRecord>& records) {
  records.clear();
  std::string bytes;
  int err = ReadPlaceBytes(PlaceReadPath(session), bytes);
  if (err != 0) return err == ENOENT;
  int16_t count = AddressableRecords(bytes);
  records.reserve(size_t(count));
  for (int r = 1; r <= count; ++r) records.push_back(RecordAt(bytes, int16_t(r)));
  return true;
}

void LoadPlaces(Session& session, PlaceScreen& screen) {
  screen.PlaceCount = 0;
  screen.CurrentPlace = 0;
  screen.PlaceList.clear();
  screen.PlaceIndex.clear();
  screen.PlaceNew = screen.PlaceEdited = false;
  BlankFields(screen);

  std::string bytes;
  if (ReadPlaceBytes(PlaceReadPath(session), bytes) != 0) return;
  int16_t count = AddressableRecords(bytes);
  std::vector<std::pair<std::string, int16_t>> entries;
  entries.reserve(size_t(count));
  for (int r = 1; r <= count; ++r) entries.emplace_back(RecordAt(bytes, int16_t(r)).Name, int16_t(r));
  std::stable_sort(entries.begin(), entries.end(),
                   [](const auto& a, const auto& b) { return CompareIgnoreCase(a.first, b.first) < 0; });
  screen.PlaceCount = count;
  for (auto& [name, record] : entries) {
    screen.PlaceList.push_back(std::move(name));
    screen.PlaceIndex.push_back(record);
  }
  if (count > 0) {
    PlaceRecord first = RecordAt(bytes, screen.PlaceIndex.front());
    screen.CurrentPlace = screen.PlaceIndex.front();
    screen.Name = first.Name;
    screen.Latitude = first.Latitude;
    screen.Longitude = first.Longitude;
  }
}

int PlacePosition(const PlaceScreen& screen, int16_t record) {
  auto it = std::find(screen.PlaceIndex.begin(), screen.PlaceIndex.end(), record);
  return it == screen.PlaceIndex.end() ? -1 : int(it - screen.PlaceIndex.begin());
}

bool ShowPlace(Session& session, PlaceScreen& screen, int16_t record) {
  std::string bytes;
  if (ReadPlaceBytes(PlaceReadPath(session), bytes) != 0) return false;
  if (record <= 0 || record > AddressableRecords(bytes)) return false;
  PlaceRecord r = RecordAt(bytes, record);
  screen.CurrentPlace = record;
  screen.Name = r.Name;
  screen.Latitude = r.Latitude;
  screen.Longitude = r.Longitude;
  screen.PlaceNew = screen.PlaceEdited = false;
  return true;
}

void AddPlace(PlaceScreen& screen) {
  screen.PlaceNew = true;
  screen.PlaceEdited = false;
  BlankFields(screen);
}

void EditPlaceField(PlaceScreen& screen, PlaceField field, const std::string& text) {
  std::string& target = field == PlaceField::Name       ? screen.Name
                        : field == PlaceField::Latitude ? screen.Latitude
                                                        : screen.Longitude;
  if (target == text) return;
  target = text;
  screen.PlaceEdited = true;
}

bool SavePlaceEdits(Session& session, PlaceScreen& screen) {
  // Changes typed with no record on the screen can only become a new one.
  bool isNew = screen.PlaceNew || (screen.PlaceEdited && screen.CurrentPlace <= 0);
  if (!isNew && !screen.PlaceEdited) return true;

  if (Trim(screen.Name).empty()) {
    session.ShowMessage("You must enter a place name.", kIconExclamation, "No Place Name");
    return false;
  }
  PlaceRecord record{screen.Name, "", ""};
  if (!CheckCoordinates(session, screen.Latitude, screen.Longitude, false, record.Latitude, record.Longitude))
    return false;

  std::string question = isNew ? std::string("Do you wish to save the new record that") + kLineEnd +
                                     "you have just entered?"
                               : std::string("Do you wish to save the changes that") + kLineEnd +
                                     "you made to the record?";
  if (session.ShowMessage(question, kOkCancel + kIconQuestion, "Save Changes?") != kOk) {
    RestoreCurrent(session, screen);
    return true;
  }
  int16_t written = WriteRecord(session, isNew ? int16_t(0) : screen.CurrentPlace, record);
  if (written == 0) return false;
  LoadPlaces(session, screen);
  ShowPlace(session, screen, written);
  return true;
}

bool MoveToPlace(Session& session, PlaceScreen& screen, int position) {
  if (!SavePlaceEdits(session, screen)) return false;
  if (position < 0 || size_t(position) >= screen.PlaceIndex.size()) return false;
  return ShowPlace(session, screen, screen.PlaceIndex[size_t(position)]);
}

int FindPlacePosition(const PlaceScreen& screen, const std::string& text) {
  if (screen.PlaceList.empty()) return -1;
  for (size_t i = 0; i < screen.PlaceList.size(); ++i) {
    std::string_view name(screen.PlaceList[i]);
    if (CompareIgnoreCase(name.substr(0, text.size()), text) >= 0) return int(i);
  }
  return int(screen.PlaceList.size()) - 1;
}

int FindPlace(Session& session, PlaceScreen& screen, const std::string& text) {
  if (!SavePlaceEdits(session, screen)) return -1;
  int position = FindPlacePosition(screen, text);
  if (position < 0 || !ShowPlace(session, screen, screen.PlaceIndex[size_t(position)])) return -1;
  return position;
}

bool DeletePlaces(Session& session, PlaceScreen& screen, const std::vector<int>& markedPositions) {
  // Record numbers stay valid through a save of the edits; list positions
  // do not, so the marks are taken as records first.
  std::vector<std::pair<int16_t, std::string>> marked;
  std::set<int16_t> seen;
  for (int position : markedPositions) {
    if (position < 0 || size_t(position) >= screen.PlaceIndex.size()) continue;
    int16_t record = screen.PlaceIndex[size_t(position)];
    if (seen.insert(record).second) marked.emplace_back(record, screen.PlaceList[size_t(position)]);
  }
  if (!SavePlaceEdits(session, screen)) return false;

  std::vector<int16_t> drop;
  for (const auto& [record, name] : marked) {
    std::string text = std::string("Delete this place record?") + kLineEnd + kLineEnd + name;
    if (session.ShowMessage(text, kYesNo + kIconQuestion, "Confirm Deletion") == kYes) drop.push_back(record);
  }
  if (drop.empty()) return true;
  bool ok = PurgePlaceRecords(session, drop);
  int16_t current = screen.CurrentPlace;
  LoadPlaces(session, screen);
  // The record that was current stays so when it was kept (its number moves
  // down by the records dropped before it).
  if (ok && current > 0 && std::find(drop.begin(), drop.end(), current) == drop.end()) {
    int16_t shift = static_cast<int16_t>(std::count_if(drop.begin(), drop.end(), [&](int16_t r) { return r < current; }));
    ShowPlace(session, screen, static_cast<int16_t>(current - shift));
  }
  return ok;
}

bool PurgePlaceRecords(Session& session, const std::vector<int16_t>& records) {
  const std::string source = PlaceReadPath(session);
  const std::string target = PlaceFilePath(session);
  const std::string temp = PlaceTempPath(session);
  std::string bytes;
  if (int err = ReadPlaceBytes(source, bytes); err != 0) {
    ShowReadFailure(session, source, err);
    return false;
  }
  std::set<int16_t> drop(records.begin(), records.end());
  std::string kept;
  size_t whole = WholeRecords(bytes);
  kept.reserve(whole * kPlaceRecordBytes);
  for (size_t r = 1; r <= whole; ++r) {
    if (r <= size_t(kMaxPlaces) && drop.count(static_cast<int16_t>(r))) continue;
    kept.append(bytes, (r - 1) * kPlaceRecordBytes, kPlaceRecordBytes);
  }

  // Stage the records kept in places.tmp (any old one goes), then replace
  // places.fil from it in one rename, then remove places.tmp. A crash leaves
  // places.fil whole, old or new, and at worst a places.tmp that the next
  // deletion removes.
  std::remove(temp.c_str());
  if (!WriteWithMessage(session, temp, kept)) return false;
  std::string staged;
  if (int err = ReadPlaceBytes(temp, staged); err != 0 || staged != kept) {
    ShowReadFailure(session, temp, err != 0 ? err : EIO);
    std::remove(temp.c_str());
    return false;
  }
  bool ok = WriteWithMessage(session, target, staged);
  std::remove(temp.c_str());
  return ok;
}

PlaceSelection SelectPlace(Session& session, PlaceScreen& screen) {
  PlaceSelection out;
  if (!SavePlaceEdits(session, screen) || screen.CurrentPlace <= 0) return out;
  out.failed = false;
  out.Name = Trim(screen.Name);
  out.Latitude = screen.Latitude;
  out.Longitude = screen.Longitude;
  return out;
}

int16_t PutPlace(Session& session, const std::string& name, const std::string& latitudeText,
                 const std::string& longitudeText) {
  std::string trimmed = Trim(name);
  if (trimmed.empty()) {
    session.ShowMessage("Place Name must not be blank. Please enter a place name.", kIconStop,
                        "Invalid Place Name");
    return 0;
  }
  PlaceRecord record{trimmed.substr(0, kPlaceNameBytes), "", ""};
  if (!CheckCoordinates(session, latitudeText, longitudeText, true, record.Latitude, record.Longitude)) return 0;

  std::string bytes;
  int err = ReadPlaceBytes(PlaceReadPath(session), bytes);
  if (err != 0 && err != ENOENT) {
    ShowReadFailure(session, PlaceReadPath(session), err);
    return 0;
  }
  // The name matches a stored one whose first letters are the name: the
  // same name first, else the first record that begins with it.
  std::string key = UCase(record.Name);
  int16_t exact = 0, prefix = 0;
  int16_t count = AddressableRecords(bytes);
  for (int r = 1; r <= count && exact == 0; ++r) {
    std::string stored = RecordAt(bytes, int16_t(r)).Name;
    if (EqualsIgnoreCase(stored, key))
      exact = int16_t(r);
    else if (prefix == 0 && StartsWithIgnoreCase(stored, key))
      prefix = int16_t(r);
  }
  int16_t match = exact != 0 ? exact : prefix;
  if (match != 0) {
    PlaceRecord old = RecordAt(bytes, match);
    std::string text = std::string("This place name already exists on the place database. Do you wish to "
                                   "replace this record?") +
                       kLineEnd + kLineEnd + old.Name + kLineEnd + old.Latitude + " " + old.Longitude;
    if (session.ShowMessage(text, kYesNo + kIconQuestion, kPlaceTitle) == kYes)
      return WriteRecord(session, match, record);
  }
  return WriteRecord(session, 0, record);
}

}  // namespace vintar
