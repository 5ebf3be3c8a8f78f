#include "core/record_edit.h"

#include <algorithm>
#include <cctype>

#include "core/calendar.h"
#include "core/parse.h"
#include "core/project_file.h"
#include "core/session.h"
#include "core/text.h"

namespace vintar {
namespace {

constexpr const char* kPlusMinus = "\xB1";

bool InRange(const ProjectState& project, int32_t number) {
  return number >= 1 && number <= project.Header.RecordCount && number < static_cast<int32_t>(project.Events.size());
}

bool IsEmptyRecord(const EventRecord& r) { return Trim(r.Description).empty() && r.Day == 0; }

void MarkChanged(ProjectState& project, EventRecord& record) {
  record.Validated = kFalse;
  project.Status.DataChanged = kTrue;
}

uint8_t ToByte(int value) { return static_cast<uint8_t>(ClampInteger(value, 0, 255)); }

}  // namespace

std::string RecordListLine(const Session& session, const EventRecord& record, int32_t number) {
  if (IsEmptyRecord(record)) return "";
  std::string line = std::to_string(number) + ") " + record.Description.substr(0, 50) + "\t";
  if (record.DayRange <= kMarkerRange)
    line += FormatDate(session, record.Day, record.Month, record.Year) + "\t" + kPlusMinus +
            ZeroPad(record.DayRange, 2) + " Days ";
  else
    line += "Year " + ZeroPad(record.Year, 4) + "\tMarker ";
  if (record.DetailLevel != kDetailNoTime) line += "*";
  if (!record.Enabled || record.DayRange > kMaxUsableRange) line += "X";
  return line;
}

// Fields ----------------------------------------------------------------------

bool IsYearAlone(const std::string& text) {
  std::string t = Trim(text);
  return !t.empty() && t.size() <= 5 && IsAllDigits(t) && Val(t) > 31;
}

bool CheckNotBlank(Session& session, const std::string& text) {
  if (!Trim(text).empty()) return true;
  session.ShowMessage("Item must not be left blank.", kIconExclamation, "Blank field");
  return false;
}

bool LeaveDateField(Session& session, EventRecord& record, std::string& dateText, std::string& rangeText) {
  if (!CheckNotBlank(session, dateText)) return false;
  std::string text = Trim(dateText);
  bool marker = false;
  if (IsYearAlone(text) && session.ShowMessage("Do you wish this event to be entered as a year marker?",
                                               kYesNo + kIconQuestion, "Year Marker?") == kYes) {
    text = "1 Jul " + text;
    rangeText = std::to_string(kYearMarkerRange);
    marker = true;
  }
  int16_t day = record.Day, month = record.Month, year = record.Year;
  bool failed = false;
  ParseDate(session, text, day, month, year, true, failed);
  if (failed) return false;
  record.Day = ToByte(day);
  record.Month = ToByte(month);
  record.Year = year;
  if (marker) record.DayRange = kYearMarkerRange;
  record.Validated = kFalse;
  dateText = FormatDate(session, day, month, year);
  return true;
}

bool LeaveRangeField(Session& session, EventRecord& record, const std::string& rangeText) {
  if (!CheckNotBlank(session, rangeText)) return false;
  std::string text = Trim(rangeText);
  if (!IsAllDigits(text)) {
    session.ShowMessage("The date range must be a whole number of days.", kIconExclamation, "Date Range Error");
    return false;
  }
  // Anything above a byte is a marker anyway.
  int range = text.size() > 3 ? 255 : ClampInteger(ToIntSaturated(Val(text)), 0, 255);
  if (range > kMaxUsableRange && range <= kMarkerRange)
    session.ShowMessage("Date range of " + std::to_string(range) +
                            " days is too large to be used. This event will be disabled if you choose the OK button.",
                        kIconExclamation, "Date Range Error");
  record.DayRange = static_cast<uint8_t>(range);
  record.Validated = kFalse;
  return true;
}

DetailFields FieldsForDetail(int level) {
  DetailFields f;
  f.zone = level >= kDetailZoneOnly;
  f.time = level >= kDetailExactTime;
  f.place = level >= kDetailTimePlace;
  return f;
}

void SetDetailLevel(EventRecord& record, int level) {
  record.DetailLevel = static_cast<uint8_t>(ClampInteger(level, kDetailNoTime, kDetailTimePlace));
  record.Validated = kFalse;
}

void LeaveZoneMnemonicField(Session& session, EventRecord& record, std::string& mnemonic, std::string& zoneTimeText) {
  mnemonic = UCase(Trim(mnemonic)).substr(0, 5);
  record.ZoneAbbr = mnemonic;
  record.Validated = kFalse;
  if (mnemonic.empty() || session.zones.Find(mnemonic) == 0) return;
  float hours = 0.0f;
  std::string found;
  bool failed = false;
  ParseZone(session, mnemonic, hours, found, false, failed);
  if (failed) return;
  record.ZoneHours = hours;
  zoneTimeText = FormatZone(hours);
}

bool LeaveZoneTimeField(Session& session, EventRecord& record, std::string& zoneTimeText) {
  if (!CheckNotBlank(session, zoneTimeText)) return false;
  float hours = 0.0f;
  std::string mnemonic;
  bool failed = false;
  ParseZone(session, zoneTimeText, hours, mnemonic, true, failed);
  if (failed) return false;
  record.ZoneHours = hours;
  record.Validated = kFalse;
  zoneTimeText = FormatZone(hours);
  return true;
}

bool LeaveTimeField(Session& session, EventRecord& record, std::string& timeText) {
  if (!CheckNotBlank(session, timeText)) return false;
  int16_t h = 0, m = 0, s = 0;
  bool failed = false;
  ParseTime(session, timeText, h, m, s, true, failed);
  if (failed) return false;
  record.Hour = ToByte(h);
  record.Minute = ToByte(m);
  record.Second = ToByte(s);
  record.Validated = kFalse;
  timeText = FormatTime(h, m, s, session.prefs.AMPM != 0);
  return true;
}

bool LeaveLatitudeField(Session& session, EventRecord& record, std::string& latitudeText) {
  if (!CheckNotBlank(session, latitudeText)) return false;
  double value = 0.0;
  bool failed = false;
  ParseLatitude(session, latitudeText, value, true, failed);
  if (failed) return false;
  record.Latitude = static_cast<float>(value);
  record.Validated = kFalse;
  latitudeText = FormatLatitude(value);
  return true;
}

double LocalMeanTimeZone(double longitude) { return longitude / 15.0; }

bool LeaveLongitudeField(Session& session, EventRecord& record, std::string& longitudeText, const std::string& mnemonic,
                         std::string& zoneTimeText) {
  if (!CheckNotBlank(session, longitudeText)) return false;
  double value = 0.0;
  bool failed = false;
  ParseLongitude(session, longitudeText, value, true, failed);
  if (failed) return false;
  record.Longitude = static_cast<float>(value);
  record.Validated = kFalse;
  longitudeText = FormatLongitude(value);
  if (EqualsIgnoreCase(Trim(mnemonic), "LMT")) {
    record.ZoneHours = static_cast<float>(LocalMeanTimeZone(value));
    zoneTimeText = FormatZone(LocalMeanTimeZone(value));
  }
  return true;
}

int EntryKeyMove(const Session& session, EntryKey key) {
  if (session.prefs.CUAKeys != 0) return 0;
  switch (key) {
    case EntryKey::Enter:
    case EntryKey::Down:
      return 1;
    case EntryKey::Up:
      return -1;
    default:
      return 0;
  }
}

// Category values ---------------------------------------------------------------

bool IsNumericText(const std::string& text) {
  std::string t = Trim(text);
  size_t i = 0, n = t.size();
  if (i < n && (t[i] == '+' || t[i] == '-')) ++i;
  size_t digits = 0;
  while (i < n && std::isdigit(static_cast<unsigned char>(t[i]))) ++i, ++digits;
  if (i < n && t[i] == '.') {
    ++i;
    while (i < n && std::isdigit(static_cast<unsigned char>(t[i]))) ++i, ++digits;
  }
  if (digits == 0) return false;
  if (i < n && (t[i] == 'e' || t[i] == 'E')) {
    ++i;
    if (i < n && (t[i] == '+' || t[i] == '-')) ++i;
    size_t exponent = 0;
    while (i < n && std::isdigit(static_cast<unsigned char>(t[i]))) ++i, ++exponent;
    if (exponent == 0) return false;
  }
  return i == n;
}

bool SetRecordCategory(Session& session, ProjectState& project, int32_t number, int category, std::string& text) {
  const ProjectHeader& header = project.Header;
  if (!InRange(project, number) || category < 1 || category > header.CategoryCount) return false;
  std::string name;
  int type = 0;
  GetCategoryDefinition(header, category, name, type);
  std::string value = Trim(text);
  if (value.find('|') != std::string::npos) {
    session.ShowMessage("A category value may not contain the character '|'.", kIconExclamation, "Vintar");
    text.clear();
    return false;
  }
  if (type == 1 && !value.empty() && !IsNumericText(value)) {
    session.ShowMessage("This category can only accept numeric values. Please try again.", kIconExclamation,
                        "Non-Numeric Value");
    text.clear();
    return false;
  }
  if (type == 0 && !value.empty()) {
    CategoryIndex& index = project.Categories;
    bool found = false;
    if (static_cast<size_t>(category) < index.CategoryStart.size() &&
        static_cast<size_t>(category) < index.CategoryLength.size()) {
      const int64_t start = index.CategoryStart[category];
      const int64_t end = start + index.CategoryLength[category];
      for (int64_t k = std::max<int64_t>(start, 1); k < end && k < static_cast<int64_t>(index.CategoryValues.size());
           ++k) {
        if (EqualsIgnoreCase(Trim(index.CategoryValues[k]), value)) {
          value = Trim(index.CategoryValues[k]);
          found = true;
          break;
        }
      }
    }
    if (!found) {
      int answer = session.ShowMessage(
          "The item '" + value + "' is not already on the list of possible items for this category." + kLineEnd +
              "Do you wish to add it to the list?" + kLineEnd + "Choose OK to add it, or CANCEL to try again.",
          kOkCancel + kIconQuestion, "New List Item");
      if (answer != kOk) {
        text.clear();
        return false;
      }
      bool failed = false;
      ExpandCategoryList(session, category, header, value, index, failed);
      if (failed) return false;
    }
  }
  EventRecord& record = project.Events[number];
  SetCategoryValue(record.Categories, category, value, header.CategoryCount);
  MarkChanged(project, record);
  text = value;
  return true;
}

// Records -----------------------------------------------------------------------

int32_t AddRecord(ProjectState& project) {
  const int32_t number = project.Header.RecordCount + 1;
  if (number < 1 || number > kMaxProjectRecords) return 0;
  if (static_cast<int32_t>(project.Events.size()) <= number) {
    bool failed = false;
    ResizeEvents(project.Events, (number / 100 + 1) * 100, failed);
    if (failed) return 0;
  }
  project.Events[number] = EventRecord{};
  project.Header.RecordCount = number;
  project.Status.DataChanged = kTrue;
  return number;
}

bool DeleteRecord(Session& session, ProjectState& project, int32_t number) {
  if (!InRange(project, number)) return false;
  const std::string text = std::string("Are you sure that you wish to delete the current entry?") + kLineEnd +
                           kLineEnd + RecordListLine(session, project.Events[number], number);
  if (session.ShowMessage(text, kOkCancel + kIconQuestion, "Verify Delete") != kOk) return false;
  const int32_t count = project.Header.RecordCount;
  std::move(project.Events.begin() + number + 1, project.Events.begin() + count + 1, project.Events.begin() + number);
  project.Events[count] = EventRecord{};
  project.Header.RecordCount = count - 1;
  project.Status.DataChanged = kTrue;
  return true;
}

bool SetRecordEnabled(ProjectState& project, int32_t number, bool enabled) {
  if (!InRange(project, number)) return false;
  EventRecord& r = project.Events[number];
  const int16_t flag = enabled ? kTrue : kFalse;
  if (r.Enabled != flag) {
    r.Enabled = flag;
    project.Status.DataChanged = kTrue;
  }
  return true;
}

void SetAllRecordsEnabled(ProjectState& project, bool enabled) {
  const int32_t last = std::min<int32_t>(project.Header.RecordCount, static_cast<int32_t>(project.Events.size()) - 1);
  for (int32_t i = 1; i <= last; ++i) SetRecordEnabled(project, i, enabled);
}

bool ApplyRecordFields(Session& session, ProjectState& project, int32_t number, const RecordFields& fields) {
  if (!InRange(project, number)) return false;
  EventRecord& r = project.Events[number];
  MarkChanged(project, r);
  if (fields.description) r.Description = *fields.description;
  if (fields.detail) SetDetailLevel(r, *fields.detail);
  const DetailFields shown = FieldsForDetail(r.DetailLevel);
  if (fields.date) {
    std::string date = *fields.date, range = std::to_string(r.DayRange);
    if (!LeaveDateField(session, r, date, range)) return false;
  }
  if (fields.range && !LeaveRangeField(session, r, std::to_string(*fields.range))) return false;
  if (fields.zone) {
    std::string zone = Trim(*fields.zone);
    if (shown.zone && !CheckNotBlank(session, zone)) return false;
    if (!zone.empty()) {
      float hours = 0.0f;
      std::string mnemonic;
      bool failed = false;
      ParseZone(session, zone, hours, mnemonic, true, failed);
      if (failed) return false;
      r.ZoneAbbr = mnemonic.substr(0, 5);
      r.ZoneHours = hours;
    }
  }
  if (fields.time) {
    std::string time = *fields.time;
    if (!LeaveTimeField(session, r, time)) return false;
  }
  if (fields.place) r.Placename = Trim(*fields.place);
  if (fields.latitude) {
    std::string latitude = *fields.latitude;
    if (!LeaveLatitudeField(session, r, latitude)) return false;
  }
  std::string zoneText;
  if (fields.longitude) {
    std::string longitude = *fields.longitude;
    if (!LeaveLongitudeField(session, r, longitude, r.ZoneAbbr, zoneText)) return false;
  } else if (fields.zone && EqualsIgnoreCase(r.ZoneAbbr, "LMT")) {
    r.ZoneHours = static_cast<float>(LocalMeanTimeZone(r.Longitude));
  }
  for (const auto& [category, value] : fields.categories) {
    std::string text = value;
    if (!SetRecordCategory(session, project, number, category, text)) return false;
  }
  if (shown.place && !CheckNotBlank(session, r.Placename)) return false;
  return true;
}

// Opening, OK and cancel ------------------------------------------------------------

bool BeginRecordEdit(Session& session, RecordEditCopy& copy) {
  ProjectState& p = session.project;
  const int32_t count = p.Header.RecordCount;
  if (count > kMaxRecordsForAction) {
    session.ShowMessage(
        "It is not possible to edit individual records when the number of records exceeds 32000. This project has " +
            std::to_string(count) +
            " records. If you wish to edit them, then use the \"Split\" option to create smaller projects.",
        kIconExclamation, "Too Many Records");
    return false;
  }
  try {
    copy.Events = p.Events;
    copy.Header = p.Header;
    copy.Status = p.Status;
    copy.Categories = p.Categories;
  } catch (...) {
    copy = RecordEditCopy{};
    session.ShowMessage("Out of memory", kIconExclamation, "Vintar");
    return false;
  }
  copy.held = true;
  copy.AutoAtlasLookup = session.prefs.AutoAtlasLookup != 0;
  copy.UseACS = session.prefs.UseACS != 0;
  p.Status.DataChangedSaved = p.Status.DataChanged;
  p.Status.EventsBackedUp = kTrue;
  return true;
}

bool RecordsChangedSinceCopy(const Session& session, const RecordEditCopy& copy) {
  const ProjectState& p = session.project;
  if (!copy.held) return false;
  if (p.Header.RecordCount != copy.Header.RecordCount) return true;
  if (FormatNatFile(p.Header) != FormatNatFile(copy.Header)) return true;
  const int32_t count = p.Header.RecordCount;
  if (static_cast<int32_t>(p.Events.size()) <= count || static_cast<int32_t>(copy.Events.size()) <= count) return true;
  for (int32_t i = 1; i <= count; ++i)
    if (FormatDataRecord(p.Events[i]) != FormatDataRecord(copy.Events[i])) return true;
  return false;
}

namespace {

void ReleaseCopy(Session& session, RecordEditCopy& copy) {
  copy = RecordEditCopy{};
  session.project.Status.EventsBackedUp = kFalse;
  session.project.Status.CacheDirty = session.project.Status.DataChanged;
}

}  // namespace

bool FinishRecordEdit(Session& session, RecordEditCopy& copy, int32_t& badRecord) {
  badRecord = 0;
  ProjectState& p = session.project;
  int32_t& count = p.Header.RecordCount;
  count = std::min<int32_t>(count, static_cast<int32_t>(p.Events.size()) - 1);
  if (count >= 1 && IsEmptyRecord(p.Events[count])) {
    p.Events[count] = EventRecord{};
    --count;
    p.Status.DataChanged = kTrue;
  }
  for (int32_t i = 1; i <= count; ++i) {
    EventRecord& r = p.Events[i];
    if (r.Validated) continue;
    // The stored date must read back as the same date.
    int16_t day = 0, month = 0, year = 0;
    bool failed = r.Day < 1 || r.Month < 1 || r.Month > 12, parserSaid = false;
    if (!failed) {
      ParseDate(session, FormatDate(session, r.Day, r.Month, r.Year), day, month, year, true, parserSaid);
      failed = parserSaid || day != r.Day || month != r.Month || year != r.Year;
    }
    if (failed) {
      if (!parserSaid)
        session.ShowMessage("The date of record " + std::to_string(i) + " is not valid. Please correct it.",
                            kIconExclamation, "Error in Date");
      badRecord = i;
      return false;
    }
    if (r.DayRange > kMaxUsableRange && r.DayRange <= kMarkerRange && r.Enabled) {
      r.Enabled = kFalse;
      p.Status.DataChanged = kTrue;
    }
    r.JulianDay = RecordJulianDay(r);
    r.Validated = kTrue;
  }
  // Fields edited one by one on the screen mark the record only; the data
  // file needs writing whenever the records differ from the copy.
  if (RecordsChangedSinceCopy(session, copy)) p.Status.DataChanged = kTrue;
  ReleaseCopy(session, copy);
  return true;
}

bool CancelRecordEdit(Session& session, RecordEditCopy& copy) {
  if (!copy.held) return true;
  if (!RecordsChangedSinceCopy(session, copy)) {
    ReleaseCopy(session, copy);
    return true;
  }
  const std::string text = std::string("You have made changes to this data. Do you wish to retain these changes?") +
                           kLineEnd + "Click YES to retain the changes." + kLineEnd +
                           "Click NO to discard the changes.";
  if (session.ShowMessage(text, kYesNo + kIconQuestion, "Retain Changes?") == kYes) {
    ReleaseCopy(session, copy);
    return true;
  }
  ProjectState& p = session.project;
  p.Events = std::move(copy.Events);
  p.Header = std::move(copy.Header);
  p.Status = std::move(copy.Status);
  p.Categories = std::move(copy.Categories);
  copy = RecordEditCopy{};
  p.Status.EventsBackedUp = kFalse;
  return false;
}

// Natal entry ---------------------------------------------------------------------

NatalFields NatalFieldsFromHeader(const ProjectHeader& h) {
  return {h.Name,  h.Date,     h.Time,      h.ZoneMnemonic, h.ZoneTime,
          h.Place, h.Latitude, h.Longitude, h.EarliestTime, h.LatestTime};
}

bool ApplyNatalEntry(Session& session, const NatalFields& f) {
  if (Trim(f.Name).empty()) {
    session.ShowMessage("Name must not be blank. Please add a name.", kIconExclamation, "Error in Name");
    return false;
  }
  if (Trim(f.Place).empty()) {
    session.ShowMessage("Place must not be blank. Please add a place name.", kIconExclamation, "Error in Place");
    return false;
  }
  const bool ampm = session.prefs.AMPM != 0;
  bool failed = false;
  int16_t day = 0, month = 0, year = 0;
  ParseDate(session, f.Date, day, month, year, true, failed);
  if (failed) return false;

  auto parseTime = [&](const std::string& text, std::string& out) {
    int16_t h = 0, m = 0, s = 0;
    ParseTime(session, text, h, m, s, true, failed);
    if (!failed) out = FormatTime(h, m, s, ampm);
    return !failed;
  };
  std::string time = "Unknown";
  if (!EqualsIgnoreCase(Trim(f.Time), "Unknown") && !parseTime(f.Time, time)) return false;

  std::string mnemonic = UCase(Trim(f.ZoneMnemonic)).substr(0, 5);
  float hours = 0.0f;
  std::string found;
  if (!mnemonic.empty() && session.zones.Find(mnemonic) > 0)
    ParseZone(session, mnemonic, hours, found, true, failed);
  else
    ParseZone(session, f.ZoneTime, hours, found, true, failed);
  if (failed) return false;

  double latitude = 0.0, longitude = 0.0;
  ParseLatitude(session, f.Latitude, latitude, true, failed);
  if (failed) return false;
  ParseLongitude(session, f.Longitude, longitude, true, failed);
  if (failed) return false;
  // Local Mean Time follows the longitude, as on the data entry screen.
  double zoneHours = EqualsIgnoreCase(mnemonic, "LMT") ? LocalMeanTimeZone(longitude) : hours;
  std::string earliest, latest;
  if (!parseTime(f.Earliest, earliest) || !parseTime(f.Latest, latest)) return false;

  ProjectState& p = session.project;
  ProjectHeader& h = p.Header;
  h.Name = Trim(f.Name);
  h.Date = FormatDate(session, day, month, year);
  h.Time = time;
  h.ZoneMnemonic = mnemonic;
  h.ZoneTime = FormatZone(zoneHours);
  h.Place = Trim(f.Place);
  h.Latitude = FormatLatitude(latitude);
  h.Longitude = FormatLongitude(longitude);
  h.EarliestTime = earliest;
  h.LatestTime = latest;
  ComputeHeaderJulianDays(session, h);
  p.Status.NatChanged = kTrue;
  p.Status.NatalEdited = kTrue;
  p.Status.NatalValid = NatalCheck(session, h) ? kTrue : kFalse;
  return true;
}

// The category screen --------------------------------------------------------------

CategoryEditor LoadCategoryEditor(const ProjectHeader& header) {
  CategoryEditor editor;
  for (int c = 1; c <= header.CategoryCount; ++c) {
    CategoryEntry e;
    GetCategoryDefinition(header, c, e.name, e.type);
    e.name = Trim(e.name);
    e.oldNumber = c;
    editor.entries.push_back(std::move(e));
  }
  return editor;
}

std::string CategoryTypeText(int type) {
  switch (type) {
    case 0:
      return "List of items";
    case 1:
      return "Numeric";
    case 2:
      return "Free text";
    default:
      return "Unknown";
  }
}

std::string CategoryListLine(const CategoryEntry& entry) { return entry.name + "\t" + CategoryTypeText(entry.type); }

int AddCategory(CategoryEditor& editor, int type) {
  CategoryEntry e;
  e.name = "Category " + std::to_string(editor.entries.size() + 1);
  e.type = ClampInteger(type, 0, 2);
  editor.entries.push_back(std::move(e));
  return static_cast<int>(editor.entries.size()) - 1;
}

bool MoveCategory(CategoryEditor& editor, int position, int delta) {
  const int count = static_cast<int>(editor.entries.size());
  const int target = position + delta;
  if (position < 0 || position >= count || target < 0 || target >= count || delta == 0) return false;
  std::swap(editor.entries[position], editor.entries[target]);
  return true;
}

bool RenameCategory(CategoryEditor& editor, int position, const std::string& name) {
  const std::string trimmed = Trim(name);
  if (position < 0 || position >= static_cast<int>(editor.entries.size()) || trimmed.empty() ||
      trimmed.find('|') != std::string::npos || trimmed == kDeleteCategory)
    return false;
  editor.entries[position].name = trimmed;
  return true;
}

bool CheckCategoryName(Session& session, const std::string& name) {
  if (!CheckNotBlank(session, name)) return false;
  if (name.find('|') == std::string::npos && Trim(name) != kDeleteCategory) return true;
  session.ShowMessage("A category name may not contain the character '|'.", kIconExclamation, "Vintar");
  return false;
}

bool DeleteCategory(CategoryEditor& editor, int position) {
  if (position < 0 || position >= static_cast<int>(editor.entries.size())) return false;
  if (editor.entries[position].oldNumber > 0) editor.deleted.push_back(editor.entries[position].oldNumber);
  editor.entries.erase(editor.entries.begin() + position);
  return true;
}

bool SaveCategories(Session& session, const CategoryEditor& editor) {
  ProjectState& p = session.project;
  ProjectHeader& header = p.Header;
  if (editor.entries.size() > static_cast<size_t>(kMaxCategories)) return false;
  for (const CategoryEntry& e : editor.entries) {
    if (!CheckNotBlank(session, e.name)) return false;
    if (e.name.find('|') != std::string::npos || e.type < 0 || e.type > 2) return false;
  }
  if (!editor.deleted.empty()) {
    const std::string text = std::string("You have chosen to delete one or more existing categories.") + kLineEnd +
                             "If you proceed then any data stored in these categories will also be deleted." +
                             kLineEnd + "Do you wish to proceed?";
    if (session.ShowMessage(text, kOkCancel + kIconExclamation, "Confirm Deletion") != kOk) return false;
  }
  bool differs = static_cast<int>(editor.entries.size()) != header.CategoryCount;
  for (size_t i = 0; !differs && i < editor.entries.size(); ++i) {
    const CategoryEntry& e = editor.entries[i];
    std::string name;
    int type = 0;
    GetCategoryDefinition(header, static_cast<int>(i) + 1, name, type);
    differs = e.oldNumber != static_cast<int>(i) + 1 || e.name != Trim(name) || e.type != type;
  }
  if (!differs) return true;

  try {
    const int32_t count = std::min<int32_t>(header.RecordCount, static_cast<int32_t>(p.Events.size()) - 1);
    std::vector<std::string> lists(static_cast<size_t>(std::max<int32_t>(count, 0)) + 1);
    for (int32_t r = 1; r <= count; ++r) {
      const std::string& old = p.Events[r].Categories;
      const std::vector<std::string> elements = SplitOnText(old, "|", CategoryElementCount(old) + 1);
      std::string list;
      for (const CategoryEntry& e : editor.entries) {
        const bool kept = e.oldNumber >= 1 && static_cast<size_t>(e.oldNumber) <= elements.size();
        list += (kept ? Trim(elements[e.oldNumber - 1]) : std::string()) + " |";
      }
      lists[r] = std::move(list);
    }
    ProjectHeader rebuilt = header;
    rebuilt.CategoryNames.clear();
    rebuilt.CategoryTypes.clear();
    rebuilt.CategoryCount = 0;
    for (size_t i = 0; i < editor.entries.size(); ++i)
      SetCategoryDefinition(rebuilt, static_cast<int>(i) + 1, editor.entries[i].name, editor.entries[i].type);
    for (int32_t r = 1; r <= count; ++r) p.Events[r].Categories = std::move(lists[r]);
    header = std::move(rebuilt);
  } catch (...) {
    session.ShowMessage("Out of memory", kIconExclamation, "Vintar");
    return false;
  }
  RebuildCategoryIndex(session, header, p.Events, p.Categories, nullptr);
  p.Status.DataChanged = kTrue;
  p.Status.NatChanged = kTrue;
  return true;
}

}  // namespace vintar
