// Interpretation files: the prepared paragraphs of the group report, kept in
// a small binary file per group type (`Family.int` ...) and one common file
// (`general.int`). A file is a header of table offsets and a pair depth,
// then tables of 6-byte entries (text position and length), then the texts.
// Every position counts in bytes from 1; every number is little-endian.
// Texts are single-byte (Latin-1) with CR LF between paragraphs.
//
// The whole file is read into memory when it is opened, and every entry and
// text position is checked against the bytes held, so no file, however
// damaged, makes the reader read outside it. Checked by tests/groups against
// files made by the builder in interpretation_source.h, files laid out by
// hand in the triangular (older) and square pair tables, and damaged bytes.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/session.h"

namespace vintar {

inline constexpr int kInterpretationHeaderBytes = 154;
inline constexpr int kInterpretationTables = 20;
// Texts that stand in for a missing entry and for an entry without text.
inline constexpr const char* kNoTextOfThisType = "No text available for information of this type.";
inline constexpr const char* kNoTextForTopic = "No text available for this topic.";

struct InterpretationHeader {
  int16_t Version = 0;
  std::array<int32_t, 21> TableOffset{};  // 1..20, 0 = table absent
  int16_t PairDepth = 0;
  std::array<uint8_t, 70> Rest{};  // the rest of the header, unused
};

// One opened file: the whole file is read into memory at open (the files
// are small), so reading an entry never touches the disk again.
struct InterpretationFile {
  std::string Path;
  std::string Bytes;
  InterpretationHeader Header;
  int64_t Base = 0;  // 207 + 12*PairDepth, 1-based like every position in the file
  bool IsOpen() const { return !Path.empty(); }
};

// Decodes the 154 header bytes at the start of `bytes`; false when there are
// fewer.
bool DecodeInterpretationHeader(const std::string& bytes, InterpretationHeader& h);

// Opens `path`. False with no message when it cannot be read; false with
// "Version Number Error" when Version is 300 or more (the file is then
// still held open); false with "Interpretation File Error" when the file is
// shorter than its header.
bool OpenInterpretation(Session& session, const std::string& path, InterpretationFile& file);
// Points per side of the pair table: 26 below version 200, else 36.
int InterpretationPointCount(const InterpretationHeader& h);
// The entry number (from 0) that the selectors address in `table`; false
// when they are out of range or there is no such table.
bool TableEntryNumber(const InterpretationHeader& h, int table, int64_t a, int64_t b, int64_t c, int64_t& entry);
// 1-based absolute byte position of the entry; 0 when the table's offset is
// 0 (or there is no such table); Base - 1 for selectors out of range.
int64_t EntryPosition(const InterpretationHeader& h, int64_t base, int table, int a, int b, int c);
// The text of an entry (CR LF between paragraphs), true. Otherwise one of
// the two placeholders and false: kNoTextForTopic for an entry without
// text, kNoTextOfThisType for an absent table, a closed file or an entry or
// text that lies outside the file.
bool ReadInterpretation(const InterpretationFile& file, int table, int a, int b, int c, std::string& text);
// Interpretation index of chart point 1..24 (and the extra point 25), 0 for
// any other number: 1-3 keep their number, 4-18 add 1, both nodes give 20,
// 21-24 add 1, 25 gives 21.
int InterpretationIndex(int point);
// The file in the user data folder, else in the system data folder; empty
// when it is in neither.
std::string FindInterpretationFile(const Session& session, const std::string& fileName);
// The six short group type descriptions (table 4, items 11..16 of
// general.int); placeholders when general.int is missing or unreadable.
std::array<std::string, 6> GroupTypeDescriptions(Session& session);

}  // namespace vintar
