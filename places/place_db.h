// The local place database, places.fil: fixed records of 37 bytes with no
// header, numbered from 1 (a 20-byte blank-padded name, an 8-byte latitude
// and a 9-byte longitude, both as text in the formats of FormatLatitude and
// FormatLongitude: north and west positive, degrees and minutes of arc).
// The file has no order; the place screen sorts its list of names at each
// load. A trailing partial record is not read and stays on disk until a
// deletion rewrites the file.
//
// The place screen's state lives in a PlaceScreen that the caller owns; the
// functions here are its buttons. Every write goes through core/file_io.h,
// and a deletion copies the records kept to places.tmp before places.fil is
// replaced from it, so a crash at any moment leaves the old file or the new.
//
// The user's file is in FolderTable[1]. Until the user has one, the place
// list reads the file shipped in the system data folder, and the first
// write copies it to the user's folder with the change made.
//
// Checked by tests/places/place_db_test.cpp against files built byte by byte.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vintar {

class Session;

inline constexpr int kPlaceRecordBytes = 37;
inline constexpr int kPlaceNameBytes = 20;
inline constexpr int kPlaceLatitudeBytes = 8;
inline constexpr int kPlaceLongitudeBytes = 9;
inline constexpr int16_t kMaxPlaces = 32767;  // record numbers are 16-bit

// Captions of the Find box.
inline constexpr const char* kFindPlaceTitle = "Find Place";
inline constexpr const char* kFindPlacePrompt = "Enter characters to find";

// One record as its three texts, right-trimmed.
struct PlaceRecord {
  std::string Name;
  std::string Latitude;
  std::string Longitude;
};

// The 37 bytes of a record: each field cut to its width and blank padded.
std::string EncodePlaceRecord(const PlaceRecord& record);
// The fields of the first 37 bytes of `bytes` (fewer bytes read as blanks).
PlaceRecord DecodePlaceRecord(std::string_view bytes);

// The user's places.fil and places.tmp.
std::string PlaceFilePath(const Session& session);
std::string PlaceTempPath(const Session& session);
// The file the list reads: the user's, or the shipped one while the user
// has none.
std::string PlaceReadPath(const Session& session);

// Every record the list can address (the first 32767), in record order.
// False when the file cannot be read (no file at all reads as none).
bool ReadPlaceRecords(const Session& session, std::vector<PlaceRecord>& records);

// State of the place screen.
struct PlaceScreen {
  int16_t PlaceCount = 0;
  int16_t CurrentPlace = 0;               // record number, 0 when none
  std::vector<std::string> PlaceList;     // names, sorted ascending
  std::vector<int16_t> PlaceIndex;        // record number of each list position
  bool PlaceNew = false;                  // the fields hold a record still to be added
  bool PlaceEdited = false;               // a field has changed
  std::string Name, Latitude, Longitude;  // the fields shown
};

// Reads the names and sorts the list (ignoring case; equal names by record
// number). The first name in the list becomes current. Without records, or
// when the file cannot be read, the list is empty, the fields blank and
// CurrentPlace 0: nothing is said, the screen goes on.
void LoadPlaces(Session& session, PlaceScreen& screen);

// List position (0-based) of a record number, -1 when it is not listed.
int PlacePosition(const PlaceScreen& screen, int16_t record);

// Shows a record in the fields and makes it current; the flags clear.
// False (and nothing changed) when the record cannot be read.
bool ShowPlace(Session& session, PlaceScreen& screen, int16_t record);

// "&Add": blank fields for a new record.
void AddPlace(PlaceScreen& screen);

// A typed change of one of the fields.
enum class PlaceField { Name, Latitude, Longitude };
void EditPlaceField(PlaceScreen& screen, PlaceField field, const std::string& text);

// Runs before the screen moves to another record and before Find, Delete
// and Select: offers to save a new or changed record. Returns false when a
// field is wrong (its message shown) and the screen must stay where it is.
bool SavePlaceEdits(Session& session, PlaceScreen& screen);

// Moves to a list position after SavePlaceEdits. False when it stopped or
// the position is not in the list.
bool MoveToPlace(Session& session, PlaceScreen& screen, int position);

// The list position Find chooses for `text`: the first entry whose leading
// characters, upper-cased, are not below the text upper-cased; the last
// entry when there is none; -1 for an empty list.
int FindPlacePosition(const PlaceScreen& screen, const std::string& text);
// Find: SavePlaceEdits, then makes that entry current. Returns its
// position, or -1 when nothing was found or the edits stopped it.
int FindPlace(Session& session, PlaceScreen& screen, const std::string& text);

// "&Delete...": asks for each marked list position in turn and purges the
// records confirmed, then reloads the list. False when SavePlaceEdits
// stopped it or a file could not be opened or written (nothing changed).
bool DeletePlaces(Session& session, PlaceScreen& screen, const std::vector<int>& markedPositions);

// Removes the given records (numbers from 1) from places.fil by way of
// places.tmp. A message and false on failure, with places.fil as it was.
bool PurgePlaceRecords(Session& session, const std::vector<int16_t>& records);

// Select: SavePlaceEdits, then the fields for the data entry screen with
// the name trimmed at both ends. `failed` when the edits stopped it or no
// record is current.
struct PlaceSelection {
  bool failed = true;
  std::string Name, Latitude, Longitude;
};
PlaceSelection SelectPlace(Session& session, PlaceScreen& screen);

// Put from a data entry screen: checks the three texts, then replaces the
// record of the same name (when the user agrees) or appends a new one.
// Returns the record number written, 0 when nothing was written.
int16_t PutPlace(Session& session, const std::string& name, const std::string& latitudeText,
                 const std::string& longitudeText);

}  // namespace vintar
