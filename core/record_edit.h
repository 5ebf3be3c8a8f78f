// Editing a project by hand: the record list of the data entry screen and
// the rules behind its fields (year markers, date ranges, detail levels,
// zones, category values), adding, deleting and enabling records, the copy
// taken on opening that makes cancel possible, the natal entry checks and
// the category screen. Screens gather values and call these; so do the
// command line and the tests. Every message goes through
// Session::ShowMessage; nothing here throws.
//
// Units: dates in the calendar of the date parser (astronomical years),
// DayRange in days (above 180 a year marker), zone offsets in hours added to
// local time to reach Universal Time, longitudes west positive, so Local
// Mean Time is longitude / 15 hours. Record moments (EventRecord::JulianDay)
// are recomputed on OK through core/calendar.h and carry delta-T.
// Checked by tests/core/record_edit_test.cpp: the list line format, markers
// and ranges, the category value rules, cancel restoring the copy, and the
// category screen's rebuild of every record.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/records.h"

namespace vintar {

class Session;

// Detail levels of a record.
enum RecordDetail : int { kDetailNoTime = 0, kDetailZoneOnly = 1, kDetailExactTime = 2, kDetailTimePlace = 3 };
// A range above this is a year marker; above kMaxUsableRange a record is
// left out of the work (shown with "X").
inline constexpr int kMarkerRange = 180;
inline constexpr int kMaxUsableRange = 15;
// The range of a year marker: 1 July plus or minus half a year.
inline constexpr int kYearMarkerRange = 182;

// The line of record `number` in the data list (Latin-1, tabs kept).
std::string RecordListLine(const Session& session, const EventRecord& record, int32_t number);

// Fields ------------------------------------------------------------------

// Whether a date text is a year alone (digits only, above 31).
bool IsYearAlone(const std::string& text);

// Leaving the date field: a year alone asks "Year Marker?"; Yes turns the
// text into "1 Jul <year>" and `rangeText` into "182". The date is parsed
// with messages on; on success it goes into the record (and a marker's
// range too) and `dateText` becomes its formatted form. Returns !failed.
bool LeaveDateField(Session& session, EventRecord& record, std::string& dateText, std::string& rangeText);

// Leaving the range field. A blank or non-numeric text is refused; a range
// from 16 to 180 is stored after the "Date Range Error" box (the record will
// be disabled on OK). Returns false when refused.
bool LeaveRangeField(Session& session, EventRecord& record, const std::string& rangeText);

// The fields a detail level shows.
struct DetailFields {
  bool zone = false, time = false, place = false;
};
DetailFields FieldsForDetail(int level);
// Stores the level (clamped to 0..3) and clears Validated.
void SetDetailLevel(EventRecord& record, int level);

// Leaving the zone mnemonic field: a mnemonic of the zone table fills
// `zoneTimeText` with its offset and the record's zone; any other text is
// kept as the record's abbreviation. Upper-cased, at most 5 characters.
void LeaveZoneMnemonicField(Session& session, EventRecord& record, std::string& mnemonic, std::string& zoneTimeText);
// Leaving the zone time field: parsed with messages on, shown back formatted.
bool LeaveZoneTimeField(Session& session, EventRecord& record, std::string& zoneTimeText);
bool LeaveTimeField(Session& session, EventRecord& record, std::string& timeText);
bool LeaveLatitudeField(Session& session, EventRecord& record, std::string& latitudeText);
// With the mnemonic "LMT" the zone becomes longitude / 15 hours, shown in
// `zoneTimeText` through FormatZone.
bool LeaveLongitudeField(Session& session, EventRecord& record, std::string& longitudeText, const std::string& mnemonic,
                         std::string& zoneTimeText);
// The zone of Local Mean Time at a longitude (west positive), in hours.
double LocalMeanTimeZone(double longitude);

// "Item must not be left blank." for a blank required field. Returns true
// when the text is filled.
bool CheckNotBlank(Session& session, const std::string& text);

// Where Enter and the arrows move in the entry fields: with CUAKeys off,
// Enter and Down go to the next field and Up to the previous one; with it
// on they do nothing special.
enum class EntryKey { Enter, Down, Up, Other };
int EntryKeyMove(const Session& session, EntryKey key);  // +1, -1 or 0

// Category values -----------------------------------------------------------

// Whether a text is a number (sign, digits, point, exponent; blanks around).
bool IsNumericText(const std::string& text);
// Sets category `category` of record `number` from the entry `text`, by the
// category's type: numeric refuses what is not a number ("Non-Numeric
// Value"); a list looks the text up ignoring case (taking the list's
// spelling) and asks "New List Item" for a new one, OK expanding the list.
// A refusal or Cancel clears `text` and returns false. Blank is accepted.
bool SetRecordCategory(Session& session, ProjectState& project, int32_t number, int category, std::string& text);

// Records -----------------------------------------------------------------

// Appends an empty enabled record behind RecordCount, growing Events in
// steps of 100. Returns its number, 0 when memory ran out.
int32_t AddRecord(ProjectState& project);
// "Verify Delete" with the record's line; on OK the records behind it move
// down by one. Returns whether it was deleted.
bool DeleteRecord(Session& session, ProjectState& project, int32_t number);
bool SetRecordEnabled(ProjectState& project, int32_t number, bool enabled);
void SetAllRecordsEnabled(ProjectState& project, bool enabled);

// The values of the fields of one record as typed; a field not given is
// left as it stands. The fields are applied in the screen's order, each as
// it would be on leaving it, then the ones the detail level shows must not
// be blank.
struct RecordFields {
  std::optional<std::string> description, date, time, zone, place, latitude, longitude;
  std::optional<int> range, detail;
  std::vector<std::pair<int, std::string>> categories;  // category number, value
};
// Returns false, after the field's message, at the first field refused; the
// record keeps what was applied before it.
bool ApplyRecordFields(Session& session, ProjectState& project, int32_t number, const RecordFields& fields);

// Opening, OK and cancel ------------------------------------------------------

// What the screen copies aside on opening, so that cancel can restore it.
struct RecordEditCopy {
  bool held = false;
  std::vector<EventRecord> Events;
  ProjectHeader Header;
  CurStatus Status;
  CategoryIndex Categories;
  bool AutoAtlasLookup = false;
  bool UseACS = false;
};
// Refuses with "Too Many Records" above 32000 records; otherwise copies the
// project aside, DataChangedSaved takes DataChanged and EventsBackedUp is set.
bool BeginRecordEdit(Session& session, RecordEditCopy& copy);
// Whether the records or the header differ from the copy.
bool RecordsChangedSinceCopy(const Session& session, const RecordEditCopy& copy);
// OK: a last empty record is dropped; every record not yet Validated is
// checked (its date through the parser with messages on, a range of 16 to
// 180 disables it) and its moment recomputed; CacheDirty takes DataChanged.
// Returns false, leaving the copy held, with the number of the refused record
// in `badRecord`.
bool FinishRecordEdit(Session& session, RecordEditCopy& copy, int32_t& badRecord);
// Cancel: with changes, "Retain Changes?"; No restores the copy. Returns
// whether the changes were kept.
bool CancelRecordEdit(Session& session, RecordEditCopy& copy);

// Natal entry -------------------------------------------------------------

struct NatalFields {
  std::string Name, Date, Time, ZoneMnemonic, ZoneTime, Place, Latitude, Longitude, Earliest, Latest;
};
// The header's natal fields as the screen shows them.
NatalFields NatalFieldsFromHeader(const ProjectHeader& header);
// OK of the natal entry screen: blank name or place are refused with their
// boxes, the rest by the parsers with messages on ("Unknown" is a time).
// On success the formatted fields go to the header, its moments are
// recomputed, NatChanged is set and NatalValid takes the natal check.
bool ApplyNatalEntry(Session& session, const NatalFields& fields);

// The category screen -----------------------------------------------------

struct CategoryEntry {
  std::string name;
  int type = 0;       // 0 list, 1 numeric, 2 free text
  int oldNumber = 0;  // its number in the header, 0 for a new one
};
struct CategoryEditor {
  std::vector<CategoryEntry> entries;  // in screen order
  std::vector<int> deleted;            // old numbers
};
CategoryEditor LoadCategoryEditor(const ProjectHeader& header);
std::string CategoryTypeText(int type);
// The list line: name, a tab, the type text.
std::string CategoryListLine(const CategoryEntry& entry);
// Adds "Category <n>" (n the next number) of `type`; returns its position (0-based).
int AddCategory(CategoryEditor& editor, int type);
// Moves entry `position` up (delta -1) or down (+1); false at the ends.
bool MoveCategory(CategoryEditor& editor, int position, int delta);
bool RenameCategory(CategoryEditor& editor, int position, const std::string& name);
// The check of a typed name before RenameCategory: "Item must not be left
// blank." or the bar, which separates the stored names. True when usable.
bool CheckCategoryName(Session& session, const std::string& name);
bool DeleteCategory(CategoryEditor& editor, int position);
// Save: with deletions, "Confirm Deletion" (Cancel saves nothing). When the
// order, names or types differ from the header, every record's Categories
// is rebuilt in the new order with deleted slots dropped, the header's lists
// and the category index are rebuilt, and DataChanged and NatChanged are set.
// Returns false when cancelled or on a bad entry (a blank name, a type out of range).
bool SaveCategories(Session& session, const CategoryEditor& editor);

}  // namespace vintar
