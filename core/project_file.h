// Project files: a project is a pair of text files with one stem. `<stem>.nat`
// holds the title, the natal details of the person the project is about and
// the definition of the data categories; `<stem>.dat` holds one EventRecord
// per line. Both are single-byte text (Latin-1, bytes kept as they stand) in
// the classic comma-separated field form: strings in double quotes without
// escapes, bare decimal numbers, CR LF line ends, read field by field.
//
// Version 1 files (text dates, times, zones and coordinates; an Enabled list
// in the .nat) are read; version 2 files (`VINTAR 2` marker, numeric record
// fields, floats in shortest single-precision form) are read and written.
// Category values live in "|" lists: each element is the trimmed text, one
// blank and a bar, so two elements read `Married |1900 |`.
//
// Julian days are those of calc/calendar.h and carry the delta-T of their
// year. Checked by byte-for-byte round trips of both versions, the sample
// projects in samples/, and malformed files that must fail with the record
// number instead of crashing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/records.h"

namespace vintar {

class Progress;
class Session;

// A category value or name of this text removes its slot instead of setting it.
inline constexpr const char* kDeleteCategory = "~!Delete!~";
// The most records that the editing, sorting, family and rectification
// commands accept.
inline constexpr int32_t kMaxRecordsForAction = 32000;
// The most records a project file may hold, and the most categories (the
// count is 16-bit). A file beyond either is refused with a message.
inline constexpr int32_t kMaxProjectRecords = 1000000;
inline constexpr int kMaxCategories = 32767;

// The header of a .dat that has no .nat yet: title "New Project", zone "UT".
void SetNewProjectHeader(ProjectHeader& header);
// The header cleared for a new session: Time "Unknown", the search window
// "0:00 am" to "11:59 pm", everything else empty, counts 0.
void ResetProjectHeader(ProjectHeader& header);
// The natal fields of a project made from other records, which has no
// natal chart of its own: time "Unknown", place "Nowhere" at 00N00 000W00,
// zone GMT +0:00. Name and date are the caller's.
void SetNoNatalChart(ProjectHeader& header);
// The .nat companion of a .dat: the right-trimmed path with its last four
// characters replaced by ".nat".
std::string NatPathFor(const std::string& datPath);

// 1 or 2 by the length of the second field of the file (more than 6
// characters: version 1, whose second field is a date text); 0 when the file
// cannot be read.
int DetectDataFormat(const std::string& path);

// Reads a .nat into `header`. A missing file gives the new-project header and
// no failure; one that is there but cannot be read (a folder, no permission,
// over 16 MB) is a read error. Version 1 checks its Enabled list and puts its
// length into header.RecordCount; the flags themselves are not kept, since
// the .dat reader enables every version 1 record. An unknown version marker leaves the
// header as it was, sets FormatVersion 0 and `failed`, without a message.
// Ends by computing the header's three Julian days.
void ReadProjectHeader(Session& session, const std::string& natPath, ProjectHeader& header, Progress* progress,
                       bool& failed);

// Reads a .dat into records[1..count] and rebuilds `index`. While
// session.MergeActive is set the records are added behind header.RecordCount
// and their categories renumbered through `categoryMap` (1-based, the current
// project's number of each category of the merged file); otherwise the array
// starts afresh. `showMessages` goes to the parsers of version 1 fields.
// A missing file clears NatalValid and leaves the count as it was (not a
// failure). A file that is there but cannot be read (a folder, no
// permission, larger than kMaxProjectFileBytes) shows the "File Read Error"
// box with the system's text; a read error shows it with the record number
// (also for a file of more than kMaxProjectRecords records). Both set
// header.RecordCount to 0 and return false.
bool ReadDataFile(Session& session, const std::string& datPath, ProjectHeader& header,
                  std::vector<EventRecord>& records, CategoryIndex& index, Progress* progress,
                  const std::vector<int>& categoryMap, bool showMessages);

// NatalJulianDay, EarliestJulianDay and LatestJulianDay from Date, ZoneTime
// and the three time texts, parsers silent. The seconds count as minutes
// (seconds/60), as the stored projects expect. A Time that does not parse
// (such as "Unknown") gives the midpoint of the other two.
void ComputeHeaderJulianDays(Session& session, ProjectHeader& header);

// Writes what session.project.Status marks as changed: the .nat when
// NatChanged, the .dat when DataChanged or the project is older than version
// 2. A blank path asks session.AskSavePath; a cancel clears DialogCancelled
// and returns without writing and without `failed`; a new path marks both
// files changed. Each file is written to a temporary file in its folder and
// renamed over the old one only when complete (see RecoverInterruptedSave
// for a save killed between the two renames), so a failed save leaves the
// old files as they were; it shows "Error whilst writing file:" and sets
// `failed`, leaving the change flags set. Write-protected files are refused
// with that message.
void WriteProject(Session& session, const std::string& path, ProjectHeader& header,
                  std::vector<EventRecord>& records, bool& failed, bool updateTitle);

// The exact bytes of the two version 2 files.
std::string FormatNatFile(const ProjectHeader& header);
std::string FormatDataRecord(const EventRecord& record);

// Category lists ----------------------------------------------------------

// The number of bars in a "|" list: its element count when well formed.
int CategoryElementCount(const std::string& list);
// Sets element `category` of a record's list of `categoryCount` elements;
// kDeleteCategory drops that slot so that later elements move down.
void SetCategoryValue(std::string& categories, int category, const std::string& text, int categoryCount);
// Defines category `category` in the header (raising CategoryCount when it
// lies beyond); the name kDeleteCategory drops it from both lists.
void SetCategoryDefinition(ProjectHeader& header, int category, const std::string& name, int type);
// The name (untrimmed element) and type (0 list, 1 numeric, 2 free text;
// 0 when missing) of a category.
void GetCategoryDefinition(const ProjectHeader& header, int category, std::string& name, int& type);
// Gathers the distinct values (ignoring case, first appearance in record
// order, "" counting as a value) of list category `category` of records
// 1..header.RecordCount into values[start..start+length-1]; `values` ends
// right behind them.
void FillCategoryList(Session& session, int category, const ProjectHeader& header,
                      const std::vector<EventRecord>& records, std::vector<std::string>& values, int start,
                      int32_t& length, bool& failed);
// Adds `text` to the values of category `category`: at the end of the flat
// list when that category's block is the last one and has values, otherwise
// by moving its block to the end with the text behind it.
void ExpandCategoryList(Session& session, int category, const ProjectHeader& header, const std::string& text,
                        CategoryIndex& index, bool& failed);
// Renumbers a merged record's categories: old element i goes to slot
// categoryMap[i] of a list as long as the largest number in the map.
void MapCategoryElements(std::string& categories, const std::vector<int>& categoryMap);
// Rebuilds the whole category value index from the records.
void RebuildCategoryIndex(Session& session, const ProjectHeader& header, const std::vector<EventRecord>& records,
                          CategoryIndex& index, Progress* progress);

// Record array ------------------------------------------------------------

// Grows `records` to `upperBound` (size upperBound + 1), keeping its content;
// never shrinks it. `failed` when memory runs out.
void ResizeEvents(std::vector<EventRecord>& records, int32_t upperBound, bool& failed);

// Project-level checks ----------------------------------------------------

// True, after its message, when the open project has more records than the
// editing, sorting, family and rectification commands accept.
bool ProjectTooLarge(Session& session);
// The natal check: whether Name and Place are filled and Date, Longitude,
// Latitude and ZoneTime (sign cut, read as a time) parse. Silent; returns the
// value that belongs in CurStatus::NatalValid, which the caller stores.
bool NatalCheck(Session& session, const ProjectHeader& header);

// Opens a project for display: the .nat and .dat into session.project, extra
// categories found in the first record defined as "Untitled<n>" free text,
// the natal check, the project paths and the window title. Returns false,
// with RecordCount and NatalValid cleared, when either file fails.
bool OpenProjectFiles(Session& session, const std::string& datPath, Progress* progress);

// Finishes or undoes a save of the project `datPath` that was killed between
// its two renames, and removes temporary files that dead saves left beside
// the two files. A save writes the .dat and .nat to temporary files first,
// renames the .dat, then the .nat: a .nat temporary whose .dat temporary is
// gone belongs to a save whose .dat is in place, so it is renamed over the
// .nat; one whose .dat temporary is still there belongs to a save that never
// began to replace anything, so both are removed. Opening and saving a
// project run this first. Returns true when a save was finished.
bool RecoverInterruptedSave(const std::string& datPath);

}  // namespace vintar
